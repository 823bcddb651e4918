// The program's own module, for the commands that make the component's objects in this process.
#pragma once

#include "platform/atl/atl_module.h"

namespace velandoc {

/// Its locks are what such objects hold, so it must outlive them. It registers nothing.
class CommandModule : public CAtlModule {
 public:
  HRESULT AddCommonRGSReplacements(IRegistrarBase* /*registrar*/) override { return S_OK; }
};

}  // namespace velandoc
