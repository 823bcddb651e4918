#include "platform/posix/dialog/script_literal.h"

namespace velandoc {

std::string ScriptLiteral(WideView text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string literal;
  literal.reserve(text.size() + 2);
  literal += '"';
  for (const OLECHAR unit : text) {
    const bool isPlain = (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
                         (unit >= u'a' && unit <= u'z');
    if (isPlain) {
      literal += static_cast<char>(unit);
      continue;
    }
    literal += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) literal += kDigits[(unit >> shift) & 0xF];
  }
  return literal + '"';
}

}  // namespace velandoc
