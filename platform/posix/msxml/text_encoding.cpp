#include "platform/posix/msxml/text_encoding.h"

#include <cstdint>
#include <cstring>
#include <new>

namespace velandoc::dom {
namespace {

// The loops over blocks have no branch inside, so that the compiler turns them into vector
// instructions.
constexpr std::size_t kBlock = 16;

bool IsHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool IsLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

/// Of kBlock units.
bool IsAsciiWithoutZero(const char16_t* text) {
  constexpr std::uint64_t kOnes = 0x0001000100010001;
  std::uint64_t words[kBlock * sizeof(char16_t) / sizeof(std::uint64_t)];
  std::memcpy(words, text, sizeof words);
  std::uint64_t all = 0;
  // A unit's top bit comes up with a borrow: from a zero, or next to one.
  for (const std::uint64_t word : words)
    all |= (word & 0xFF80 * kOnes) | ((word - kOnes) & 0x8000 * kOnes);
  return all == 0;
}

/// Writes the UTF-8 of `text` up to its first zero unit, and returns its end; null at an unpaired
/// surrogate if `strict`. The caller has made room: three bytes a unit are always enough.
char* Write(std::u16string_view text, char* out, bool strict) {
  const char16_t* in = text.data();
  const char16_t* const end = in + text.size();
  const auto put = [&out](unsigned byte) { *out++ = static_cast<char>(byte); };
  while (in != end) {
    while (static_cast<std::size_t>(end - in) >= kBlock) {
      if (!IsAsciiWithoutZero(in)) break;
      for (std::size_t i = 0; i < kBlock; ++i) out[i] = static_cast<char>(in[i]);
      in += kBlock;
      out += kBlock;
    }
    // One by one past what stopped the blocks, and on for a while: text that is not ASCII seldom
    // comes alone.
    for (std::size_t left = kBlock; left != 0 && in != end; --left) {
      const unsigned unit = *in++;
      if (unit == 0) return out;
      if (unit < 0x80) {
        put(unit);
      } else if (unit < 0x800) {
        put(0xC0 | unit >> 6);
        put(0x80 | (unit & 0x3F));
      } else if (IsHigh(static_cast<char16_t>(unit)) && in != end && IsLow(*in)) {
        const unsigned low = *in++;
        const unsigned code = 0x10000 + ((unit & 0x3FF) << 10 | (low & 0x3FF));
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
      } else {
        if (strict && (unit & 0xF800) == 0xD800) return nullptr;
        put(0xE0 | unit >> 12);
        put(0x80 | (unit >> 6 & 0x3F));
        put(0x80 | (unit & 0x3F));
      }
    }
  }
  return out;
}

std::size_t DecodedSize(std::string_view utf8) {
  constexpr std::size_t kCounted = 4096;
  std::size_t size = 0;
  while (!utf8.empty()) {
    const std::string_view block = utf8.substr(0, kCounted);
    std::uint16_t units = 0;
    for (const char byte : block) {
      const auto value = static_cast<unsigned char>(byte);
      const bool isFirst = (value & 0xC0) != 0x80;
      units = static_cast<std::uint16_t>(units + (isFirst ? 1 : 0) + (value >= 0xF0 ? 1 : 0));
    }
    size += units;
    utf8.remove_prefix(block.size());
  }
  return size;
}

/// Eight bytes at a time: most texts of a tree are a few words long.
bool IsAscii(std::string_view text) {
  std::uint64_t all = 0;
  while (text.size() >= sizeof all) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data(), sizeof word);
    all |= word;
    text.remove_prefix(sizeof word);
  }
  for (const char byte : text) all |= static_cast<unsigned char>(byte);
  return (all & 0x8080808080808080U) == 0;
}

void Widen(std::string_view ascii, OLECHAR* out) {
  for (const char byte : ascii) *out++ = static_cast<unsigned char>(byte);
}

}  // namespace

bool EncodeStrictly(std::u16string_view text, Utf8Text& utf8) {
  // Room for the worst text, of which only what is written becomes memory.
  auto bytes = std::make_unique_for_overwrite<char[]>(3 * text.size() + 1);
  char* const end = Write(text, bytes.get(), true);
  if (end == nullptr) return false;
  *end = '\0';
  utf8.size = static_cast<std::size_t>(end - bytes.get());
  utf8.bytes = std::move(bytes);
  return true;
}

std::string Encode(std::u16string_view text) {
  std::string utf8(3 * text.size(), '\0');
  utf8.resize(static_cast<std::size_t>(Write(text, utf8.data(), false) - utf8.data()));
  return utf8;
}

std::string Encode(BSTR text) {
  return text == nullptr ? std::string() : Encode(std::u16string_view(text, SysStringLen(text)));
}

BSTR Decode(std::string_view utf8) {
  const bool isAscii = IsAscii(utf8);
  const std::size_t size = isAscii ? utf8.size() : DecodedSize(utf8);
  // A BSTR counts its bytes in 32 bits.
  if (size > 0x7FFFFFF0U) throw std::bad_alloc();
  BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(size));
  if (text == nullptr) throw std::bad_alloc();
  if (isAscii) {
    Widen(utf8, text);
    return text;
  }
  OLECHAR* out = text;
  const char* in = utf8.data();
  const char* const end = in + utf8.size();
  const auto next = [&in, end] {
    return in != end ? static_cast<unsigned>(static_cast<unsigned char>(*in++)) & 0x3F : 0U;
  };
  while (in != end) {
    while (static_cast<std::size_t>(end - in) >= kBlock) {
      unsigned all = 0;
      for (std::size_t i = 0; i < kBlock; ++i) all |= static_cast<unsigned char>(in[i]);
      if (all >= 0x80) break;
      for (std::size_t i = 0; i < kBlock; ++i) out[i] = static_cast<unsigned char>(in[i]);
      in += kBlock;
      out += kBlock;
    }
    for (std::size_t left = kBlock; left != 0 && in != end; --left) {
      const auto lead = static_cast<unsigned char>(*in++);
      if (lead < 0x80) {
        *out++ = lead;
      } else if (lead < 0xE0) {
        const unsigned second = next();
        *out++ = static_cast<OLECHAR>((lead & 0x1FU) << 6 | second);
      } else if (lead < 0xF0) {
        const unsigned second = next();
        const unsigned third = next();
        *out++ = static_cast<OLECHAR>((lead & 0xFU) << 12 | second << 6 | third);
      } else {
        const unsigned second = next();
        const unsigned third = next();
        const unsigned code = ((lead & 7U) << 18 | second << 12 | third << 6 | next()) - 0x10000;
        *out++ = static_cast<OLECHAR>(0xD800 | code >> 10);
        *out++ = static_cast<OLECHAR>(0xDC00 | (code & 0x3FF));
      }
    }
  }
  return text;
}

}  // namespace velandoc::dom
