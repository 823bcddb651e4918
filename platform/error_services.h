// The ErrorServices port: what the system offers to whoever has an error to tell: the texts of
// error codes, error objects, a line to the debugger. The names, arguments and results are the
// system's.
//
// On Linux the texts are this library's own (platform/posix/internet_messages.h and the COM
// runtime's), and the debugger is a channel that the environment variable VELANDOC_DEBUG opens
// (platform/posix/debug_channel.h).
#pragma once

#include <cstdarg>

#include "platform/com.h"
#include "platform/port.h"

#ifndef _WIN32
#include "platform/posix/message_types.h"
#endif

namespace velandoc {

class ErrorServices {
 public:
  virtual ~ErrorServices() = default;

  /// The text of a code, ended by CR LF. With FORMAT_MESSAGE_ALLOCATE_BUFFER `buffer` is the
  /// address of a pointer, which gets text to be freed with LocalFree, or null if there is none.
  /// `source` is the module of FORMAT_MESSAGE_FROM_HMODULE. The text's length in characters; 0 with
  /// a last error if there is none. Linux serves allocated buffers without inserts only.
  virtual DWORD FormatMessageW(DWORD flags, LPCVOID source, DWORD code, DWORD language,
                               LPWSTR buffer, DWORD size, va_list* arguments) = 0;
  /// Null is allowed.
  virtual void LocalFree(void* memory) = 0;
  /// The handle of a library that the process has loaded, no reference added; null with a last
  /// error for any other. Linux knows "wininet.dll" and "winhttp.dll", as owners of messages.
  virtual HMODULE GetModuleHandleW(LPCWSTR name) = 0;
  /// A new error object, one reference.
  virtual HRESULT CreateErrorInfo(ICreateErrorInfo** info) = 0;
  /// Gives the debugger a text. Never fails; without a debugger nothing happens.
  virtual void OutputDebugStringW(LPCWSTR text) = 0;
};

template <>
ErrorServices& SystemPort<ErrorServices>();

}  // namespace velandoc
