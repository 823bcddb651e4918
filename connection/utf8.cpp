#include "connection/utf8.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "platform/code_page.h"

namespace velandoc {
namespace {

// The platform counts in int; text beyond that does not convert.
constexpr std::size_t kLargest = std::numeric_limits<int>::max();
constexpr std::size_t kBytesPerUnit = 8;

}  // namespace

NarrowString ToUtf8(LPCWSTR text) {
  const std::size_t length = text != nullptr ? WideView(text).size() : 0;
  if (length == 0 || length > kLargest) return NarrowString();
  // Far more than any text needs. It is left unwritten, so that the part not needed costs no
  // memory.
  const std::size_t capacity = std::min(length * kBytesPerUnit, kLargest);
  const auto buffer = std::make_unique_for_overwrite<char[]>(capacity);
  const int count = CurrentPort<CodePage>().WideCharToMultiByte(
      CP_UTF8, 0, text, static_cast<int>(length), buffer.get(), static_cast<int>(capacity), nullptr,
      nullptr);
  return NarrowString(buffer.get(), static_cast<std::size_t>(std::max(count, 0)));
}

WideString FromUtf8(LPCSTR text) {
  const std::size_t length = text != nullptr ? std::string_view(text).size() : 0;
  if (length == 0 || length > kLargest) return WideString();
  // A byte gives at most one unit. Converting in place keeps a large answer in memory once.
  WideString wide(length, 0);
  const int count = CurrentPort<CodePage>().MultiByteToWideChar(
      CP_UTF8, 0, text, static_cast<int>(length), wide.data(), static_cast<int>(length));
  wide.resize(static_cast<std::size_t>(std::max(count, 0)));
  return wide;
}

}  // namespace velandoc
