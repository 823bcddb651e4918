// The CodePage port: the system's conversions between UTF-16 and bytes.
#pragma once

#include "platform/com.h"
#include "platform/port.h"

namespace velandoc {

class CodePage {
 public:
  virtual ~CodePage() = default;

  /// Both return the number of units written, or with a size of 0 the number needed; 0 is failure
  /// (no room, or an unknown code page), with ERROR_INSUFFICIENT_BUFFER or ERROR_INVALID_PARAMETER
  /// as the last error. With flags 0 an unpaired surrogate goes out as U+FFFD, and so does each
  /// ill-formed sequence on the way in. `size` -1 stands for a null-ended text and then counts the
  /// terminator.
  virtual int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int size, LPSTR bytes,
                                  int capacity, LPCSTR defaultChar, BOOL* usedDefaultChar) = 0;
  virtual int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int size, LPWSTR wide,
                                  int capacity) = 0;
};

template <>
CodePage& SystemPort<CodePage>();

}  // namespace velandoc
