#include "platform/windows/program/wide_text.h"

#include <windows.h>

namespace velandoc {

std::wstring WidenedText(std::string_view utf8) {
  const int length = static_cast<int>(utf8.size());
  if (length == 0) return {};
  std::wstring wide(
      static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0)),
      L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string NarrowedText(std::wstring_view wide) {
  const int length = static_cast<int>(wide.size());
  if (length == 0) return {};
  std::string utf8(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), length,
                                                                nullptr, 0, nullptr, nullptr)),
                   '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, utf8.data(), static_cast<int>(utf8.size()),
                      nullptr, nullptr);
  return utf8;
}

}  // namespace velandoc
