#include "platform/posix/com/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "platform/posix/com/wide_space.h"

namespace velandoc {
namespace {

// Beyond this every number is 0 or too large, whatever its digits.
constexpr int kMaxExponent = 100000;

bool IsDigit(OLECHAR unit) { return unit >= '0' && unit <= '9'; }

/// Reads what may stand around the digits: signs, a currency sign, parentheses, white space.
class NumberReader {
 public:
  NumberReader(WideView text, ParsedNumber& number) : m_text(text), m_number(number) {}

  HRESULT Read() {
    SkipSpace();
    if (Peek() == '&') return ReadBitPattern();
    ReadPrefix();
    if (!ReadDigits() || !ReadExponent()) return DISP_E_TYPEMISMATCH;
    ReadSuffix();
    if (!m_text.empty() || m_isOpen) return DISP_E_TYPEMISMATCH;
    m_number.digits.erase(0,
                          std::min(m_number.digits.find_first_not_of('0'), m_number.digits.size()));
    return S_OK;
  }

 private:
  OLECHAR Peek() const { return m_text.empty() ? OLECHAR{0} : m_text.front(); }
  OLECHAR Take() {
    const OLECHAR unit = Peek();
    m_text.remove_prefix(1);
    return unit;
  }
  void SkipSpace() {
    while (IsWideSpace(Peek())) m_text.remove_prefix(1);
  }
  /// Takes `unit` if it comes next and was not met before.
  bool TakeOnce(char unit, bool& wasMet) {
    if (wasMet || Peek() != static_cast<OLECHAR>(unit)) return false;
    Take();
    wasMet = true;
    return true;
  }

  HRESULT ReadBitPattern() {
    Take();
    const OLECHAR base = m_text.empty() ? OLECHAR{0} : Take();
    unsigned shift = 0;
    if (base == 'H' || base == 'h') shift = 4;
    if (base == 'O' || base == 'o') shift = 3;
    if (shift == 0) return DISP_E_TYPEMISMATCH;
    std::size_t digits = 0;
    for (; !m_text.empty() && !IsWideSpace(Peek()); ++digits) {
      const OLECHAR unit = Take();
      std::uint64_t digit = 16;
      if (IsDigit(unit)) digit = static_cast<std::uint64_t>(unit - '0');
      if (unit >= 'a' && unit <= 'f') digit = static_cast<std::uint64_t>(unit - 'a' + 10);
      if (unit >= 'A' && unit <= 'F') digit = static_cast<std::uint64_t>(unit - 'A' + 10);
      if (digit >> shift != 0) return DISP_E_TYPEMISMATCH;
      if (m_number.bits >> (64 - shift) != 0) return DISP_E_OVERFLOW;
      m_number.bits = m_number.bits << shift | digit;
    }
    SkipSpace();
    if (digits == 0 || !m_text.empty()) return DISP_E_TYPEMISMATCH;
    m_number.isBitPattern = true;
    return S_OK;
  }

  void ReadPrefix() {
    while (true) {
      SkipSpace();
      if (TakeOnce('-', m_number.isNegative)) continue;
      if (TakeOnce('+', m_hasPlus) || TakeOnce('$', m_hasCurrency)) continue;
      if (TakeOnce('(', m_hasParenthesis)) {
        m_isOpen = true;
        continue;
      }
      break;
    }
    m_hasSign = m_number.isNegative || m_hasPlus || m_hasParenthesis;
    if (m_hasParenthesis) m_number.isNegative = true;
  }

  bool ReadDigits() {
    bool hasDigit = false;
    for (; IsDigit(Peek()) || (hasDigit && Peek() == ','); hasDigit = true) {
      const OLECHAR unit = Take();
      if (unit != ',') m_number.digits.push_back(static_cast<char>(unit));
    }
    if (Peek() == '.') {
      Take();
      for (; IsDigit(Peek()); hasDigit = true) {
        m_number.digits.push_back(static_cast<char>(Take()));
        --m_number.exponent;
      }
    }
    return hasDigit;
  }

  bool ReadExponent() {
    if (Peek() != 'e' && Peek() != 'E') return true;
    Take();
    bool isNegative = false;
    if (Peek() == '-' || Peek() == '+') isNegative = Take() == '-';
    if (!IsDigit(Peek())) return false;
    int exponent = 0;
    while (IsDigit(Peek())) exponent = std::min(exponent * 10 + (Take() - '0'), kMaxExponent);
    m_number.exponent += isNegative ? -exponent : exponent;
    return true;
  }

  void ReadSuffix() {
    while (true) {
      SkipSpace();
      if (TakeOnce('$', m_hasCurrency) || (m_isOpen && Peek() == ')')) {
        if (m_isOpen && Peek() == ')') {
          Take();
          m_isOpen = false;
        }
        continue;
      }
      if (!m_hasSign && (Peek() == '-' || Peek() == '+')) {
        m_number.isNegative = Take() == '-';
        m_hasSign = true;
        continue;
      }
      break;
    }
  }

  WideView m_text;
  ParsedNumber& m_number;
  bool m_hasPlus = false;
  bool m_hasCurrency = false;
  bool m_hasParenthesis = false;
  bool m_isOpen = false;
  bool m_hasSign = false;
};

WideString Widen(const char* begin, const char* end) { return WideString(begin, end); }

}  // namespace

HRESULT ParseNumber(WideView text, ParsedNumber& number) {
  number = ParsedNumber();
  return NumberReader(text.substr(0, text.find(OLECHAR{0})), number).Read();
}

HRESULT ToDouble(const ParsedNumber& number, double& value) {
  value = 0;
  if (number.isBitPattern) {
    value = static_cast<double>(number.bits);
    return S_OK;
  }
  if (number.digits.empty()) return S_OK;
  const std::string text = number.digits + "e" + std::to_string(number.exponent);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    // Both directions give this error: the place of the first digit tells them apart.
    value = 0;
    if (number.exponent + static_cast<int>(number.digits.size()) > 0) return DISP_E_OVERFLOW;
  }
  if (number.isNegative) value = -value;
  return S_OK;
}

HRESULT ToMagnitude(const ParsedNumber& number, int scale, std::uint64_t& magnitude) {
  magnitude = 0;
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
  if (number.isBitPattern) {
    magnitude = number.bits;
    for (; scale > 0; --scale) {
      if (magnitude > kMax / 10) return DISP_E_OVERFLOW;
      magnitude *= 10;
    }
    return S_OK;
  }
  // The digits before the point of the scaled number; what follows decides the rounding.
  const auto size = static_cast<long>(number.digits.size());
  const long whole = size + number.exponent + scale;
  for (long i = 0; i < whole && size != 0; ++i) {
    const auto digit =
        static_cast<std::uint64_t>(i < size ? number.digits[static_cast<std::size_t>(i)] - '0' : 0);
    if (magnitude > (kMax - digit) / 10) return DISP_E_OVERFLOW;
    magnitude = magnitude * 10 + digit;
  }
  if (whole < 0 || whole >= size) return S_OK;
  const std::string_view rest =
      std::string_view(number.digits).substr(static_cast<std::size_t>(whole));
  const bool isHalf = rest[0] == '5' && rest.find_first_not_of('0', 1) == std::string_view::npos;
  if (isHalf ? magnitude % 2 != 0 : rest[0] >= '5') {
    if (magnitude == kMax) return DISP_E_OVERFLOW;
    ++magnitude;
  }
  return S_OK;
}

WideString FormatDouble(double value, int precision) {
  if (value == 0) return WideString(1, '0');  // also -0
  if (std::isnan(value)) return OLESTR("NAN");
  if (std::isinf(value)) return value > 0 ? OLESTR("INF") : OLESTR("-INF");
  char buffer[64];
  char* const end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, precision)
          .ptr;
  std::replace(buffer, end, 'e', 'E');
  return Widen(buffer, end);
}

WideString FormatCurrency(std::int64_t tenThousandths) {
  const bool isNegative = tenThousandths < 0;
  const auto bits = static_cast<std::uint64_t>(tenThousandths);
  const std::uint64_t magnitude = isNegative ? 0 - bits : bits;
  std::string text(isNegative ? "-" : "");
  text += std::to_string(magnitude / 10000);
  if (const std::uint64_t decimals = magnitude % 10000; decimals != 0) {
    text += '.';
    text += std::to_string(10000 + decimals).substr(1);
    text.erase(text.find_last_not_of('0') + 1);
  }
  return Widen(text.data(), text.data() + text.size());
}

}  // namespace velandoc
