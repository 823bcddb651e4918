#include "hosts/script/script_text.h"

#include <cstdint>

namespace velandoc {
namespace {

constexpr OLECHAR kReplacement = 0xFFFD;

/// How many bytes a character takes that begins with `first`; 0 if none does.
std::size_t SequenceLength(std::uint8_t first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first < 0xE0) return 2;
  if (first >= 0xE0 && first < 0xF0) return 3;
  if (first >= 0xF0 && first < 0xF5) return 4;
  return 0;
}

}  // namespace

WideString WideFromEngine(std::string_view bytes) {
  WideString text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    const auto first = static_cast<std::uint8_t>(bytes[at]);
    const std::size_t length = SequenceLength(first);
    char32_t character = length <= 1 ? first : first & (0x7FU >> length);
    bool wellFormed = length != 0 && bytes.size() - at >= length;
    for (std::size_t i = 1; wellFormed && i < length; ++i) {
      const auto next = static_cast<std::uint8_t>(bytes[at + i]);
      wellFormed = (next & 0xC0) == 0x80;
      character = (character << 6) | (next & 0x3FU);
    }
    if (!wellFormed) {
      text.push_back(kReplacement);
      ++at;
    } else if (character >= 0x10000) {
      text.push_back(static_cast<OLECHAR>(0xD7C0 + (character >> 10)));
      text.push_back(static_cast<OLECHAR>(0xDC00 | (character & 0x3FF)));
      at += length;
    } else {
      text.push_back(static_cast<OLECHAR>(character));
      at += length;
    }
  }
  return text;
}

std::string EngineFromWide(WideView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const OLECHAR unit : text) {
    const auto value = static_cast<std::uint32_t>(unit);
    if (value < 0x80) {
      bytes.push_back(static_cast<char>(value));
    } else if (value < 0x800) {
      bytes.push_back(static_cast<char>(0xC0 | (value >> 6)));
      bytes.push_back(static_cast<char>(0x80 | (value & 0x3F)));
    } else {
      bytes.push_back(static_cast<char>(0xE0 | (value >> 12)));
      bytes.push_back(static_cast<char>(0x80 | ((value >> 6) & 0x3F)));
      bytes.push_back(static_cast<char>(0x80 | (value & 0x3F)));
    }
  }
  return bytes;
}

WideString GetWide(duk_context* ctx, duk_idx_t index) {
  duk_size_t length = 0;
  const char* bytes = duk_get_lstring_default(ctx, index, &length, "", 0);
  return WideFromEngine({bytes, length});
}

void PushWide(duk_context* ctx, WideView text) {
  const std::string bytes = EngineFromWide(text);
  duk_push_lstring(ctx, bytes.data(), bytes.size());
}

}  // namespace velandoc
