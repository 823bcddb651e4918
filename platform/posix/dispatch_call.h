// What IDispatch does with a table of members, by the rules of the system's ITypeInfo.
#pragma once

#include <span>

#include "platform/posix/dispatch_member.h"

namespace velandoc {

using DispatchMembers = std::span<const DispatchMember>;

/// `names[0]` is the member, the others its arguments, all without regard to case.
/// DISP_E_UNKNOWNNAME if one is not known; its place and, for an unknown member, every place is
/// then DISPID_UNKNOWN.
HRESULT FindDispatchIds(DispatchMembers members, LPOLESTR* names, UINT count, DISPID* ids);

/// Calls the member of `object`, which is a pointer to the table's interface. `*result`, unless
/// null, is taken as uninitialised and always set; `*exception` is set with DISP_E_EXCEPTION, which
/// is what every failure of the member itself becomes, and takes the thread's error object. A C++
/// exception of the member passes.
HRESULT CallDispatchMember(void* object, DispatchMembers members, DISPID id, LCID lcid, WORD flags,
                           DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argErr);

}  // namespace velandoc
