// Strings that find no memory, for callers that know COM errors only.
#pragma once

#include <new>
#include <utility>

#include "platform/com.h"

namespace velandoc {

/// Runs `function`. A string within it that finds no memory raises `_com_error` with E_OUTOFMEMORY,
/// so that the callers, which know no other exception, end as with any failing call.
template <class Function>
auto RaiseOutOfMemory(Function&& function) -> decltype(function()) {
  try {
    return std::forward<Function>(function)();
  } catch (const std::bad_alloc&) {
    throw _com_error(E_OUTOFMEMORY);
  }
}

}  // namespace velandoc
