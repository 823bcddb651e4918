// The CodePage port on Linux: UTF-8 and Windows-1252, with the results of the Windows conversions.
//
// UTF-8 is strict both ways: what is ill-formed becomes U+FFFD, one for each maximal subpart, so a
// cut sequence and a stray byte count once and an overlong form or an encoded surrogate counts once
// a byte. The system's ANSI code page (CP_ACP) is 1252 here, and so is every thread's
// (CP_THREAD_ACP): a thread has no locale of its own. The page's five undefined bytes keep their
// value, and no best-fit letters are looked for: a character that the page lacks goes out as the
// default character.
#include "platform/code_page.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>

#include "platform/posix/last_error.h"

namespace velandoc {
namespace {

constexpr UINT kWindows1252 = 1252;
constexpr DWORD kErrorNoUnicodeTranslation = 1113;
constexpr DWORD kMbErrInvalidChars = 0x08;
constexpr DWORD kWcErrInvalidChars = 0x80;
constexpr char16_t kReplacement = 0xFFFD;
constexpr char kDefaultChar = '?';

/// What Windows-1252 has at 0x80 to 0x9F; a zero is an undefined byte.
constexpr std::array<char16_t, 32> kUpperControls = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

enum class Outcome { kDone, kNoRoom, kIllFormed };

/// Counts the units of a conversion and, when there is a buffer, stores them.
template <class Unit>
class Sink {
 public:
  Sink(Unit* buffer, int capacity)
      : m_buffer(capacity > 0 ? buffer : nullptr),
        m_room(capacity > 0 ? static_cast<std::size_t>(capacity) : SIZE_MAX) {}

  /// Where the next `count` units go; null when only counting. False: no room.
  bool Take(std::size_t count, Unit** place) {
    if (m_room - m_used < count) return false;
    *place = m_buffer != nullptr ? m_buffer + m_used : nullptr;
    m_used += count;
    return true;
  }
  std::size_t Used() const { return m_used; }

 private:
  Unit* m_buffer;
  std::size_t m_room;
  std::size_t m_used = 0;
};

constexpr std::size_t kBlock = 16;

/// How many whole blocks of ASCII the text begins with, in units.
std::size_t AsciiRun(const char* text, std::size_t size) {
  std::size_t run = 0;
  while (size - run >= kBlock) {
    std::uint64_t words[2];
    std::memcpy(words, text + run, sizeof(words));
    if (((words[0] | words[1]) & 0x8080808080808080ULL) != 0) break;
    run += kBlock;
  }
  return run;
}

std::size_t AsciiRun(const char16_t* text, std::size_t size) {
  std::size_t run = 0;
  while (size - run >= kBlock) {
    std::uint64_t words[4];
    std::memcpy(words, text + run, sizeof(words));
    if (((words[0] | words[1] | words[2] | words[3]) & 0xFF80FF80FF80FF80ULL) != 0) break;
    run += kBlock;
  }
  return run;
}

struct Decoded {
  std::uint32_t character = kReplacement;
  std::size_t length = 1;  // in bytes
  bool wellFormed = false;
};

/// One character, or the maximal subpart of an ill-formed one, at the start of `text`; `size` is at
/// least 1.
Decoded DecodeUtf8(const unsigned char* text, std::size_t size) {
  const unsigned lead = text[0];
  if (lead < 0x80) return {lead, 1, true};
  std::size_t trail = 0;
  std::uint32_t character = 0;
  // The second byte's range is what keeps out overlong forms, surrogates and values above U+10FFFF.
  unsigned low = 0x80;
  unsigned high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    trail = 1;
    character = lead & 0x1FU;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    trail = 2;
    character = lead & 0x0FU;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    trail = 3;
    character = lead & 0x07U;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return {};
  }
  for (std::size_t i = 1; i <= trail; ++i) {
    if (i == size || text[i] < low || text[i] > high) return {kReplacement, i, false};
    character = (character << 6) | (text[i] & 0x3FU);
    low = 0x80;
    high = 0xBF;
  }
  return {character, trail + 1, true};
}

Outcome Utf8ToWide(const char* bytes, std::size_t size, bool strict, Sink<char16_t>& sink) {
  const auto* text = reinterpret_cast<const unsigned char*>(bytes);
  std::size_t at = 0;
  char16_t* place = nullptr;
  while (at < size) {
    if (const std::size_t run = AsciiRun(bytes + at, size - at); run != 0) {
      if (!sink.Take(run, &place)) return Outcome::kNoRoom;
      if (place != nullptr) std::copy(text + at, text + at + run, place);
      at += run;
      continue;
    }
    const Decoded next = DecodeUtf8(text + at, size - at);
    if (!next.wellFormed && strict) return Outcome::kIllFormed;
    at += next.length;
    if (!sink.Take(next.character > 0xFFFF ? 2 : 1, &place)) return Outcome::kNoRoom;
    if (place == nullptr) continue;
    if (next.character > 0xFFFF) {
      place[0] = static_cast<char16_t>(0xD7C0 + (next.character >> 10));
      place[1] = static_cast<char16_t>(0xDC00 + (next.character & 0x3FF));
    } else {
      place[0] = static_cast<char16_t>(next.character);
    }
  }
  return Outcome::kDone;
}

bool IsHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool IsLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

Outcome WideToUtf8(const char16_t* wide, std::size_t size, bool strict, Sink<char>& sink) {
  std::size_t at = 0;
  char* place = nullptr;
  while (at < size) {
    if (const std::size_t run = AsciiRun(wide + at, size - at); run != 0) {
      if (!sink.Take(run, &place)) return Outcome::kNoRoom;
      if (place != nullptr) {
        std::transform(wide + at, wide + at + run, place,
                       [](char16_t unit) { return static_cast<char>(unit); });
      }
      at += run;
      continue;
    }
    std::uint32_t character = wide[at++];
    if (IsHighSurrogate(static_cast<char16_t>(character)) && at < size &&
        IsLowSurrogate(wide[at])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (wide[at++] - 0xDC00U);
    } else if ((character & 0xF800) == 0xD800) {
      if (strict) return Outcome::kIllFormed;
      character = kReplacement;
    }
    const std::size_t length =
        character < 0x80 ? 1U : (character < 0x800 ? 2U : (character < 0x10000 ? 3U : 4U));
    if (!sink.Take(length, &place)) return Outcome::kNoRoom;
    if (place == nullptr) continue;
    if (length == 1) {
      place[0] = static_cast<char>(character);
      continue;
    }
    for (std::size_t i = length - 1; i > 0; --i) {
      place[i] = static_cast<char>(0x80 | (character & 0x3F));
      character >>= 6;
    }
    place[0] = static_cast<char>((0xF00U >> length & 0xFFU) | character);
  }
  return Outcome::kDone;
}

char16_t AnsiToWide(unsigned char byte) {
  if (byte < 0x80 || byte > 0x9F) return byte;
  const char16_t mapped = kUpperControls[byte - 0x80U];
  return mapped != 0 ? mapped : byte;
}

/// False: the page has no such character.
bool WideToAnsi(char16_t unit, char* byte) {
  if (unit < 0x80) {
    *byte = static_cast<char>(unit);
    return true;
  }
  const auto* mapped = std::find(kUpperControls.begin(), kUpperControls.end(), unit);
  if (mapped != kUpperControls.end()) {
    *byte = static_cast<char>(0x80 + (mapped - kUpperControls.begin()));
    return true;
  }
  *byte = static_cast<char>(unit);
  return unit <= 0xFF && (unit >= 0xA0 || kUpperControls[unit - 0x80U] == 0);
}

Outcome Windows1252ToWide(const char* bytes, std::size_t size, Sink<char16_t>& sink) {
  char16_t* place = nullptr;
  if (!sink.Take(size, &place)) return Outcome::kNoRoom;
  if (place != nullptr) {
    std::transform(bytes, bytes + size, place,
                   [](char byte) { return AnsiToWide(static_cast<unsigned char>(byte)); });
  }
  return Outcome::kDone;
}

Outcome WideToWindows1252(const char16_t* wide, std::size_t size, char defaultChar,
                          BOOL* usedDefaultChar, Sink<char>& sink) {
  char* place = nullptr;
  if (usedDefaultChar != nullptr) *usedDefaultChar = FALSE;
  if (!sink.Take(size, &place)) return Outcome::kNoRoom;
  for (std::size_t i = 0; i < size; ++i) {
    char byte = 0;
    if (!WideToAnsi(wide[i], &byte)) {
      byte = defaultChar;
      if (usedDefaultChar != nullptr) *usedDefaultChar = TRUE;
    }
    if (place != nullptr) place[i] = byte;
  }
  return Outcome::kDone;
}

int Fail(DWORD error) { return FailWith(error); }

template <class Unit>
int Report(Outcome outcome, const Sink<Unit>& sink) {
  if (outcome == Outcome::kNoRoom) return Fail(ERROR_INSUFFICIENT_BUFFER);
  if (outcome == Outcome::kIllFormed) return Fail(kErrorNoUnicodeTranslation);
  if (sink.Used() > INT32_MAX) return Fail(ERROR_INVALID_PARAMETER);
  return static_cast<int>(sink.Used());
}

template <class Unit>
std::size_t Length(const Unit* text, int size) {
  return size < 0 ? std::char_traits<Unit>::length(text) + 1 : static_cast<std::size_t>(size);
}

bool IsAnsi(UINT codePage) {
  return codePage == CP_ACP || codePage == CP_THREAD_ACP || codePage == kWindows1252;
}

class PosixCodePage final : public CodePage {
 public:
  int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int size, LPSTR bytes,
                          int capacity, LPCSTR defaultChar, BOOL* usedDefaultChar) override {
    if (wide == nullptr || size == 0 || capacity < 0 || (bytes == nullptr && capacity > 0)) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    Sink<char> sink(bytes, capacity);
    const std::size_t length = Length(wide, size);
    if (codePage == CP_UTF8) {
      // UTF-8 has every character; Windows refuses a default for it.
      if (defaultChar != nullptr || usedDefaultChar != nullptr) {
        return Fail(ERROR_INVALID_PARAMETER);
      }
      return Report(WideToUtf8(wide, length, (flags & kWcErrInvalidChars) != 0, sink), sink);
    }
    if (!IsAnsi(codePage)) return Fail(ERROR_INVALID_PARAMETER);
    const char replacement = defaultChar != nullptr ? *defaultChar : kDefaultChar;
    return Report(WideToWindows1252(wide, length, replacement, usedDefaultChar, sink), sink);
  }

  int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int size, LPWSTR wide,
                          int capacity) override {
    if (bytes == nullptr || size == 0 || capacity < 0 || (wide == nullptr && capacity > 0)) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    Sink<char16_t> sink(wide, capacity);
    const std::size_t length = Length(bytes, size);
    if (codePage == CP_UTF8) {
      return Report(Utf8ToWide(bytes, length, (flags & kMbErrInvalidChars) != 0, sink), sink);
    }
    if (!IsAnsi(codePage)) return Fail(ERROR_INVALID_PARAMETER);
    return Report(Windows1252ToWide(bytes, length, sink), sink);
  }
};

}  // namespace

template <>
CodePage& SystemPort<CodePage>() {
  static PosixCodePage port;
  return port;
}

}  // namespace velandoc
