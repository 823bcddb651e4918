#include "hosts/text_encoding.h"

#include <cstdint>

namespace velandoc {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsContinuation(std::string_view bytes, std::size_t at) {
  return at < bytes.size() && (static_cast<std::uint8_t>(bytes[at]) & 0xC0) == 0x80;
}

/// Reads the character at `at`, which moves behind it. False if what stands there is ill-formed:
/// `at` then moves by one byte.
bool ReadCharacter(std::string_view bytes, std::size_t& at, char32_t& character) {
  const auto first = static_cast<std::uint8_t>(bytes[at]);
  const std::size_t start = at++;
  if (first < 0x80) {
    character = first;
    return true;
  }
  const std::size_t more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
  if (first < 0xC2 || first > 0xF4) return false;
  character = first & (0x3FU >> more);
  for (std::size_t i = 1; i <= more; ++i) {
    if (!IsContinuation(bytes, start + i)) return false;
    character = (character << 6) | (static_cast<std::uint8_t>(bytes[start + i]) & 0x3FU);
  }
  constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  if (character < kLeast[more] || character > 0x10FFFF) return false;
  if (character >= 0xD800 && character <= 0xDFFF) return false;
  at = start + more + 1;
  return true;
}

void AppendUtf8(std::string& bytes, char32_t character) {
  const auto put = [&bytes](char32_t value) { bytes.push_back(static_cast<char>(value)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | (character >> 6));
    put(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    put(0xE0 | (character >> 12));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  } else {
    put(0xF0 | (character >> 18));
    put(0x80 | ((character >> 12) & 0x3F));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  }
}

bool IsHigh(OLECHAR unit) { return (unit & 0xFC00) == 0xD800; }
bool IsLow(OLECHAR unit) { return (unit & 0xFC00) == 0xDC00; }

}  // namespace

WideString WideFromUtf8(std::string_view bytes) {
  WideString text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    char32_t character = 0;
    if (!ReadCharacter(bytes, at, character)) character = kReplacement;
    if (character >= 0x10000) {
      text.push_back(static_cast<OLECHAR>(0xD7C0 + (character >> 10)));
      text.push_back(static_cast<OLECHAR>(0xDC00 | (character & 0x3FF)));
    } else {
      text.push_back(static_cast<OLECHAR>(character));
    }
  }
  return text;
}

std::string Utf8FromWide(WideView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = static_cast<char16_t>(text[i]);
    if (IsHigh(text[i]) && i + 1 < text.size() && IsLow(text[i + 1])) {
      character =
          0x10000 + ((character & 0x3FF) << 10) + (static_cast<char16_t>(text[i + 1]) & 0x3FFU);
      ++i;
    } else if (IsHigh(text[i]) || IsLow(text[i])) {
      character = kReplacement;
    }
    AppendUtf8(bytes, character);
  }
  return bytes;
}

bool IsUtf8(std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    char32_t character = 0;
    if (!ReadCharacter(bytes, at, character)) return false;
  }
  return true;
}

}  // namespace velandoc
