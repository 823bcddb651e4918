// Comparing and cutting ASCII text as HTTP does.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

namespace velandoc::standin {

std::string LowerAscii(std::string_view text);
std::string UpperAscii(std::string_view text);
bool EqualNoCase(std::string_view left, std::string_view right);
// Without blanks and tabs at both ends.
std::string_view Trim(std::string_view text);
// `text` with & < > " escaped for XML and HTML.
std::string EscapeMarkup(std::string_view text);

// The whole of `text` as an unsigned number; nothing when it is something else.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view text, int base = 10) {
  Number value{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value, base);
  if (text.empty() || result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return value;
}

}  // namespace velandoc::standin
