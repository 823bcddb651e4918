// Numbers as text, by OLE Automation's rules for US English.
#pragma once

#include <cstdint>
#include <string>

#include "platform/text.h"

namespace velandoc {

/// A number as a text gives it: its decimal digits without leading zeros, and the power of ten of
/// the last digit.
/// "-1,234.50e2" is negative, digits "123450", exponent 0.
struct ParsedNumber {
  bool isNegative = false;
  /// "&H1F" and "&O17" give a pattern of bits and neither digits nor exponent.
  bool isBitPattern = false;
  std::uint64_t bits = 0;
  std::string digits;
  int exponent = 0;
};

/// White space around it, one sign before or behind, "$", thousands separators anywhere before the
/// point, parentheses for a negative, an exponent. DISP_E_TYPEMISMATCH if the text is no number,
/// DISP_E_OVERFLOW for a pattern of more than 64 bits. The text ends at its first NUL.
HRESULT ParseNumber(WideView text, ParsedNumber& number);

/// DISP_E_OVERFLOW if it is too large; too small a number is 0.
HRESULT ToDouble(const ParsedNumber& number, double& value);

/// The number's absolute value times 10 to the power of `scale`, rounded half to even;
/// DISP_E_OVERFLOW above 64 bits.
HRESULT ToMagnitude(const ParsedNumber& number, int scale, std::uint64_t& magnitude);

/// `precision` significant digits, with an exponent ("1E+15") where the number needs more.
WideString FormatDouble(double value, int precision);

/// Four decimals at the most, no trailing zeros.
WideString FormatCurrency(std::int64_t tenThousandths);

}  // namespace velandoc
