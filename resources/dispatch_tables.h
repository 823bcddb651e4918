// The members of the dual interfaces for the home that has no type library; names, numbers, order
// and defaults as in velandoc.idl. A row is explained in platform/posix/dispatch_member.h.
#pragma once

#include "platform/posix/dispatch_member.h"
#include "velandoc_idl.h"

namespace velandoc {

template <>
struct DispatchTable<IServerCheck> {
  static constexpr DispatchMember kMembers[] = {
      Function<&IServerCheck::Check>(OLESTR("Check"), 1, {OLESTR("ServerName")}),
  };
};

}  // namespace velandoc
