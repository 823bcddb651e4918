// The end of an operation whose answer cannot be read: a value, and no word of what went wrong.
#pragma once

#include <utility>

#include "platform/out_of_memory.h"

namespace velandoc {

/// What `read` returns; `failure` if it raises `_com_error` or a string in it finds no memory.
template <class Value, class Read>
Value ReadOr(Value failure, Read&& read) {
  try {
    return RaiseOutOfMemory(std::forward<Read>(read));
  } catch (const _com_error&) {
    return failure;
  }
}

}  // namespace velandoc
