// BSTR: the length in bytes stands in the four bytes before the text, a terminator behind it.
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/posix/com/automation.h"

namespace {

// Eight, not four, so that the text is aligned as the allocator's blocks are.
constexpr std::size_t kPrefix = 8;
// What the 32-bit length can say, less the terminator.
constexpr std::size_t kMaxBytes = 0x7FFFFFFF - 2;

ULONG& ByteLength(BSTR text) { return *(reinterpret_cast<ULONG*>(text) - 1); }

/// `bytes` null leaves the text unset but for its terminator.
BSTR Allocate(const void* bytes, std::size_t size) {
  if (size > kMaxBytes) return nullptr;
  // Three bytes behind an odd size: the rest of the last unit and a whole terminator. Not calloc:
  // the C library serves it past its per-thread cache, which shows where texts come and go by the
  // thousand.
  constexpr std::size_t kTail = 3;
  auto* block = static_cast<char*>(std::malloc(kPrefix + size + kTail));
  if (block == nullptr) return nullptr;
  std::memset(block + kPrefix + size, 0, kTail);
  auto* text = reinterpret_cast<BSTR>(block + kPrefix);
  ByteLength(text) = static_cast<ULONG>(size);
  if (bytes != nullptr && size != 0) std::memcpy(text, bytes, size);
  return text;
}

}  // namespace

STDAPI_(BSTR) SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  return Allocate(text, std::char_traits<OLECHAR>::length(text) * sizeof(OLECHAR));
}

STDAPI_(BSTR) SysAllocStringLen(const OLECHAR* text, UINT length) {
  return Allocate(text, std::size_t{length} * sizeof(OLECHAR));
}

STDAPI_(BSTR) SysAllocStringByteLen(LPCSTR bytes, UINT length) { return Allocate(bytes, length); }

STDAPI_(void) SysFreeString(BSTR text) {
  if (text != nullptr) std::free(reinterpret_cast<char*>(text) - kPrefix);
}

STDAPI_(UINT) SysStringLen(BSTR text) {
  return text == nullptr ? 0 : ByteLength(text) / static_cast<UINT>(sizeof(OLECHAR));
}

STDAPI_(UINT) SysStringByteLen(BSTR text) { return text == nullptr ? 0 : ByteLength(text); }
