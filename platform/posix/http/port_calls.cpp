#include "platform/posix/http/port_calls.h"

#include <algorithm>

#include "platform/posix/http/endpoint.h"

namespace velandoc::http {

std::string HeaderText(LPCWSTR text, DWORD length) {
  if (text == nullptr) return {};
  return AnsiBytes(length == static_cast<DWORD>(-1) ? WideView(text) : WideView(text, length));
}

std::string AcceptHeader(const LPCWSTR* acceptTypes) {
  std::string value;
  if (acceptTypes == nullptr) return value;
  for (; *acceptTypes != nullptr; ++acceptTypes) {
    if (!value.empty()) value += ", ";
    value += AnsiBytes(*acceptTypes);
  }
  return value;
}

std::string VerbText(LPCWSTR verb) {
  return verb != nullptr && *verb != u'\0' ? AnsiBytes(verb) : "GET";
}

bool IsToken(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char character) {
    return character > ' ' && character < 0x7F && character != ':';
  });
}

}  // namespace velandoc::http
