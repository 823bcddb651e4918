// CVelandocModule, the library's ATL module: its object map, its AppID, its type library.
#pragma once

#include "platform/atl/atl_module.h"

namespace velandoc {

class CVelandocModule final : public CAtlDllModuleT<CVelandocModule> {
 public:
  /// APPID, the AppID's GUID. E_OUTOFMEMORY if it can't be added.
  HRESULT AddCommonRGSReplacements(IRegistrarBase* registrar) override;

  static std::span<_ATL_OBJMAP_ENTRY> GetObjectMap();
  static WORD GetAppIdScript();
  static TypeLibrary GetTypeLibrary();
};

/// The only instance.
CVelandocModule& Module();

}  // namespace velandoc
