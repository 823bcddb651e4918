// How the scripted ports write down a call: "Name(first, second)".
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/text.h"

namespace velandoc::testing {

/// The text in ASCII, other units as \uXXXX; "null" for null.
std::string Printable(LPCWSTR text);

/// "0x1f".
std::string Hex(DWORD value);

inline void Join(std::string&) {}

template <class... Rest>
void Join(std::string& line, const std::string& first, const Rest&... rest) {
  if (line.back() != '(') line += ", ";
  line += first;
  Join(line, rest...);
}

template <class... Arguments>
std::string CallLine(const char* name, const Arguments&... arguments) {
  std::string line = std::string(name) + "(";
  Join(line, arguments...);
  return line + ")";
}

/// A null-ended list, with blanks between.
std::string PrintableList(const LPCWSTR* texts);

}  // namespace velandoc::testing
