// The description of an interface, out of the type library in the module's own resources.
#pragma once

#include "platform/owners.h"

namespace velandoc {

/// The library `libid` is looked for among the module's TYPELIB resources 1 to 4;
/// TYPE_E_LIBNOTREGISTERED if it is none of them.
HRESULT LoadTypeInfo(REFGUID libid, WORD major, WORD minor, REFIID iid, ComPtr<ITypeInfo>& info);

}  // namespace velandoc
