// The thread's last error, as GetLastError tells it on Windows: one number a thread, shared by all
// ports.
#pragma once

#include "platform/com.h"

namespace velandoc {

inline DWORD& ThreadLastError() {
  thread_local DWORD error = ERROR_SUCCESS;
  return error;
}

/// For a failing return: stores the reason and is FALSE.
inline BOOL FailWith(DWORD error) {
  ThreadLastError() = error;
  return FALSE;
}

}  // namespace velandoc
