#include "frontpage/form_body.h"

namespace velandoc {
namespace {

constexpr std::size_t kCharactersPerUnit = 3;  // of the usual escape

constexpr bool IsLiteral(OLECHAR unit) {
  return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') ||
         (unit >= '0' && unit <= '9') || unit == '-' || unit == '.' || unit == '_' || unit == '~';
}

void AppendEscape(OLECHAR unit, WideString& text) {
  constexpr char digits[] = "0123456789abcdef";
  constexpr unsigned bitsPerDigit = 4;
  const auto value = static_cast<unsigned>(unit);
  unsigned shift = 12;
  while (shift != 0 && value >> shift == 0) shift -= bitsPerDigit;
  text += OLESTR('%');
  for (;; shift -= bitsPerDigit) {
    text += static_cast<OLECHAR>(digits[value >> shift & 15]);
    if (shift == 0) return;
  }
}

}  // namespace

WideString EncodeFormValue(WideView text) {
  WideString encoded;
  encoded.reserve(kCharactersPerUnit * text.size());
  for (const OLECHAR unit : text) {
    if (unit == ' ') {
      encoded += OLESTR('+');
    } else if (IsLiteral(unit)) {
      encoded += unit;
    } else {
      AppendEscape(unit, encoded);
    }
  }
  return encoded;
}

WideString BuildRequestBody(const CFrontPageHandler& handler) {
  WideString body;
  for (const auto& [name, value] : handler.m_params) {
    if (!body.empty()) body += OLESTR('&');
    body.append(EncodeFormValue(name)).append(OLESTR("=")).append(EncodeFormValue(value));
  }
  return body;
}

}  // namespace velandoc
