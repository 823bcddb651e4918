// The description of an interface, out of the type library in the module's own resources.
#pragma once

#include "platform/owners.h"

namespace velandoc {

/// The library `libid` is looked for among the module's TYPELIB resources. Failures are the
/// system's; TYPE_E_LIBNOTREGISTERED if the module does not carry it.
HRESULT LoadTypeInfo(REFGUID libid, WORD major, WORD minor, REFIID iid, ComPtr<ITypeInfo>& info);

}  // namespace velandoc
