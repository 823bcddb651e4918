#include "connection/escape_url.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "platform/code_page.h"

namespace velandoc {
namespace {

enum class ByteKind : std::uint8_t { kCopied = 0, kEscaped = 1, kEndsEscaping = 2 };

// Controls, all that is not ASCII, and the codes 32, 34 to 38, 43, 44, 59 to 64, 91 to 94, 96 and
// 123 to 125 are unsafe. Three of these have a fate of their own: "?" and "#" end the escaping, and
// "%" is never escaped, so that text which is escaped already passes through.
constexpr std::array<ByteKind, 256> MakeByteKinds() {
  std::array<ByteKind, 256> kinds{};
  for (std::size_t byte = 0; byte < kinds.size(); ++byte) {
    const bool unsafe = byte <= 32 || byte > 126 || (byte >= 34 && byte <= 38) || byte == 43 ||
                        byte == 44 || (byte >= 59 && byte <= 64) || (byte >= 91 && byte <= 94) ||
                        byte == 96 || (byte >= 123 && byte <= 125);
    kinds[byte] = unsafe ? ByteKind::kEscaped : ByteKind::kCopied;
  }
  kinds['%'] = ByteKind::kCopied;
  kinds['?'] = ByteKind::kEndsEscaping;
  kinds['#'] = ByteKind::kEndsEscaping;
  return kinds;
}

constexpr std::array<ByteKind, 256> kByteKinds = MakeByteKinds();

// Reaching this many characters is failure, and so is an escape that begins at kLastEscape or
// behind it: its three characters would reach it.
constexpr std::size_t kRoom = 2083;
constexpr std::size_t kLastEscape = 2080;
static_assert(kMaxEscapedUrl + 1 == kRoom && kLastEscape + 3 == kRoom);

constexpr std::size_t kUtf8Capacity = 2084;

// The first byte from `at` on that is not simply copied. Most URLs have few of those, hence the
// steps of eight.
const std::uint8_t* SkipCopied(const std::uint8_t* at, const std::uint8_t* end) {
  constexpr std::ptrdiff_t step = 8;
  for (; end - at >= step; at += step) {
    unsigned kinds = 0;
    for (std::ptrdiff_t byte = 0; byte < step; ++byte) {
      kinds |= static_cast<unsigned>(kByteKinds[at[byte]]);
    }
    if (kinds != static_cast<unsigned>(ByteKind::kCopied)) break;
  }
  while (at != end && kByteKinds[*at] == ByteKind::kCopied) ++at;
  return at;
}

}  // namespace

bool EscapeUrl(WideView url, WideString& escaped) {
  if (url.empty()) {
    escaped.clear();
    return true;
  }
  // Each unit gives at least one byte, and each byte at least one character. So text that is too
  // long in units, or whose UTF-8 does not fit the buffer, is too long when escaped, and no larger
  // buffer is ever of use.
  if (url.size() > kMaxEscapedUrl) return false;
  char utf8[kUtf8Capacity];
  const int size = CurrentPort<CodePage>().WideCharToMultiByte(
      CP_UTF8, 0, url.data(), static_cast<int>(url.size()), utf8, static_cast<int>(kUtf8Capacity),
      nullptr, nullptr);
  if (size <= 0) return false;

  constexpr char digits[] = "0123456789abcdef";
  // The same bytes as unsigned numbers.
  const auto* at = reinterpret_cast<const std::uint8_t*>(utf8);
  const std::uint8_t* const end = at + size;
  OLECHAR text[kRoom];
  std::size_t count = 0;
  while (at != end && kByteKinds[*at] != ByteKind::kEndsEscaping) {
    const std::uint8_t* const run = at;
    at = SkipCopied(at, end);
    if (static_cast<std::size_t>(at - run) > kMaxEscapedUrl - count) return false;
    std::copy(run, at, text + count);
    count += static_cast<std::size_t>(at - run);
    for (; at != end && kByteKinds[*at] == ByteKind::kEscaped; ++at) {
      if (count >= kLastEscape) return false;
      text[count++] = '%';
      text[count++] = static_cast<OLECHAR>(digits[*at >> 4]);
      text[count++] = static_cast<OLECHAR>(digits[*at & 15]);
    }
  }
  if (static_cast<std::size_t>(end - at) > kMaxEscapedUrl - count) return false;
  std::copy(at, end, text + count);
  count += static_cast<std::size_t>(end - at);
  escaped.assign(text, count);
  return true;
}

}  // namespace velandoc
