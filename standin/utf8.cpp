#include "standin/utf8.h"

#include <cstdint>

#include "standin/text.h"

namespace velandoc::standin {

bool IsUtf8(std::string_view bytes) {
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i++]);
    if (lead < 0x80) continue;
    if (lead < 0xc2 || lead > 0xf4) return false;
    const int tails = lead >= 0xf0 ? 3 : lead >= 0xe0 ? 2 : 1;
    std::uint32_t point = lead & (0x3f >> tails);
    for (int tail = 0; tail < tails; ++tail) {
      if (i == bytes.size() || (static_cast<unsigned char>(bytes[i]) & 0xc0) != 0x80) return false;
      point = point << 6 | (static_cast<unsigned char>(bytes[i++]) & 0x3f);
    }
    if (tails == 2 && (point < 0x800 || (point >= 0xd800 && point < 0xe000))) return false;
    if (tails == 3 && (point < 0x10000 || point > 0x10ffff)) return false;
  }
  return true;
}

std::string Utf8OfLatin1(std::string_view bytes) {
  std::string utf8;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xc0 | byte >> 6);
      utf8 += static_cast<char>(0x80 | (byte & 0x3f));
    }
  }
  return utf8;
}

std::string UnescapeUrl(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = text[i] == '%' && i + 2 < text.size()
                          ? ParseNumber<unsigned char>(text.substr(i + 1, 2), 16)
                          : std::nullopt;
    if (byte) i += 2;
    bytes += byte ? static_cast<char>(*byte) : text[i];
  }
  return bytes;
}

}  // namespace velandoc::standin
