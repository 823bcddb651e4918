#include "tests/support/call_line.h"

namespace velandoc::testing {

std::string Printable(LPCWSTR text) {
  if (text == nullptr) return "null";
  std::string printable;
  for (; *text != 0; ++text) {
    const auto unit = static_cast<unsigned>(*text);
    if (unit >= 32 && unit < 127) {
      printable += static_cast<char>(unit);
    } else {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", unit & 0xFFFFU);
      printable += escape;
    }
  }
  return printable;
}

std::string Hex(DWORD value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(value));
  return text;
}

std::string PrintableList(const LPCWSTR* texts) {
  if (texts == nullptr) return "null";
  std::string list;
  for (; *texts != nullptr; ++texts) {
    if (!list.empty()) list += ' ';
    list += Printable(*texts);
  }
  return list;
}

}  // namespace velandoc::testing
