#include "platform/posix/com/utf8.h"

#include <cstdint>

namespace velandoc {
namespace {

bool IsLead(OLECHAR unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsTrail(OLECHAR unit) { return unit >= 0xDC00 && unit < 0xE000; }

constexpr std::uint32_t kReplacement = 0xFFFD;

/// The character at `i`, which moves behind it; unpaired surrogates give themselves.
std::uint32_t NextCharacter(WideView wide, std::size_t& i) {
  const OLECHAR unit = wide[i++];
  if (!IsLead(unit) || i == wide.size() || !IsTrail(wide[i])) return unit;
  return 0x10000U + ((std::uint32_t{unit} - 0xD800U) << 10) + (std::uint32_t{wide[i++]} - 0xDC00U);
}

bool IsSurrogate(std::uint32_t character) { return character >= 0xD800 && character < 0xE000; }

struct Form {
  std::uint8_t mask;   // of the first byte
  std::uint8_t value;  // of the masked first byte
  int following;
  std::uint32_t least;  // what a shorter form can't say
};
constexpr Form kForms[] = {
    {0x80, 0x00, 0, 0}, {0xE0, 0xC0, 1, 0x80}, {0xF0, 0xE0, 2, 0x800}, {0xF8, 0xF0, 3, 0x10000}};

}  // namespace

bool Utf8ToWide(std::string_view bytes, WideString& wide) {
  wide.clear();
  wide.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    const auto first = static_cast<std::uint8_t>(bytes[i++]);
    const Form* form = nullptr;
    for (const Form& candidate : kForms) {
      if ((first & candidate.mask) == candidate.value) form = &candidate;
    }
    if (form == nullptr || bytes.size() - i < static_cast<std::size_t>(form->following))
      return false;
    std::uint32_t character = first & static_cast<std::uint8_t>(~form->mask);
    for (int k = 0; k < form->following; ++k) {
      const auto byte = static_cast<std::uint8_t>(bytes[i++]);
      if ((byte & 0xC0) != 0x80) return false;
      character = character << 6 | (byte & 0x3FU);
    }
    if (character < form->least || character > 0x10FFFF || IsSurrogate(character)) return false;
    if (character < 0x10000) {
      wide.push_back(static_cast<OLECHAR>(character));
    } else {
      wide.push_back(static_cast<OLECHAR>(0xD800 + ((character - 0x10000) >> 10)));
      wide.push_back(static_cast<OLECHAR>(0xDC00 + (character & 0x3FF)));
    }
  }
  return true;
}

std::string WideToUtf8(WideView wide) {
  std::string bytes;
  bytes.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size();) {
    std::uint32_t character = NextCharacter(wide, i);
    if (IsSurrogate(character)) character = kReplacement;
    int following = 0;
    if (character >= 0x80) following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    bytes.push_back(static_cast<char>(kForms[following].value | character >> (6 * following)));
    while (following-- > 0) {
      bytes.push_back(static_cast<char>(0x80 | (character >> (6 * following) & 0x3F)));
    }
  }
  return bytes;
}

bool IsWellFormed(WideView wide) {
  for (std::size_t i = 0; i < wide.size();) {
    if (IsSurrogate(NextCharacter(wide, i))) return false;
  }
  return true;
}

}  // namespace velandoc
