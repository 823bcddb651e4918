#include "platform/posix/msxml/text_encoding.h"

#include <cstring>
#include <new>

namespace velandoc::dom {
namespace {

// The loops over blocks have no branch inside, so that the compiler turns them into vector
// instructions.
constexpr std::size_t kBlock = 16;

bool IsHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool IsLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

std::size_t EncodedSize(std::u16string_view text) {
  std::size_t size = text.size();
  for (const char16_t unit : text) {
    // Each half of a pair takes two of its four bytes; an unpaired half is counted again where it
    // is written.
    size += static_cast<std::size_t>(unit >= 0x80) +
            static_cast<std::size_t>(unit >= 0x800 && (unit & 0xF800) != 0xD800);
  }
  return size;
}

std::size_t UnpairedSurrogates(std::u16string_view text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((text[i] & 0xF800) != 0xD800) continue;
    if (IsHigh(text[i]) && i + 1 < text.size() && IsLow(text[i + 1])) {
      ++i;
    } else {
      ++count;
    }
  }
  return count;
}

/// Writes the UTF-8 of `text`, which the caller has made room for. False at an unpaired surrogate
/// if `strict`.
bool Write(std::u16string_view text, char* out, bool strict) {
  const char16_t* in = text.data();
  const char16_t* const end = in + text.size();
  const auto put = [&out](unsigned byte) { *out++ = static_cast<char>(byte); };
  while (in != end) {
    while (static_cast<std::size_t>(end - in) >= kBlock) {
      unsigned all = 0;
      for (std::size_t i = 0; i < kBlock; ++i) all |= in[i];
      if (all >= 0x80) break;
      for (std::size_t i = 0; i < kBlock; ++i) out[i] = static_cast<char>(in[i]);
      in += kBlock;
      out += kBlock;
    }
    if (in == end) break;
    unsigned unit = *in++;
    if (unit < 0x80) {
      put(unit);
    } else if (unit < 0x800) {
      put(0xC0 | unit >> 6);
      put(0x80 | (unit & 0x3F));
    } else if (IsHigh(static_cast<char16_t>(unit)) && in != end && IsLow(*in)) {
      const unsigned code =
          0x10000 + ((unit & 0x3FF) << 10 | (static_cast<unsigned>(*in++) & 0x3FF));
      put(0xF0 | code >> 18);
      put(0x80 | (code >> 12 & 0x3F));
      put(0x80 | (code >> 6 & 0x3F));
      put(0x80 | (code & 0x3F));
    } else {
      if (strict && (unit & 0xF800) == 0xD800) return false;
      put(0xE0 | unit >> 12);
      put(0x80 | (unit >> 6 & 0x3F));
      put(0x80 | (unit & 0x3F));
    }
  }
  return true;
}

std::size_t DecodedSize(std::string_view utf8) {
  std::size_t size = 0;
  for (const char byte : utf8) {
    const auto value = static_cast<unsigned char>(byte);
    size +=
        static_cast<std::size_t>((value & 0xC0) != 0x80) + static_cast<std::size_t>(value >= 0xF0);
  }
  return size;
}

}  // namespace

bool EncodeStrictly(std::u16string_view text, Utf8Text& utf8) {
  // The writer stops at the first unpaired surrogate, so what was counted for it does not matter.
  const std::size_t size = EncodedSize(text);
  auto bytes = std::make_unique_for_overwrite<char[]>(size + 1);
  if (!Write(text, bytes.get(), true)) return false;
  bytes[size] = '\0';
  utf8.bytes = std::move(bytes);
  utf8.size = size;
  return true;
}

std::string Encode(std::u16string_view text) {
  text = text.substr(0, text.find(u'\0'));
  std::string utf8(EncodedSize(text) + UnpairedSurrogates(text), '\0');
  Write(text, utf8.data(), false);
  return utf8;
}

std::string Encode(BSTR text) {
  return text == nullptr ? std::string() : Encode(std::u16string_view(text, SysStringLen(text)));
}

BSTR Decode(std::string_view utf8) {
  const std::size_t size = DecodedSize(utf8);
  // A BSTR counts its bytes in 32 bits.
  if (size > 0x7FFFFFF0U) throw std::bad_alloc();
  BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(size));
  if (text == nullptr) throw std::bad_alloc();
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
    if (in == end) break;
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
  return text;
}

}  // namespace velandoc::dom
