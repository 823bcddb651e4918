// Text between the DOM's callers, who speak UTF-16, and libxml2, which speaks UTF-8.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/posix/com/com.h"

namespace velandoc::dom {

/// UTF-8 with a terminating zero byte behind it that `size` does not count.
struct Utf8Text {
  std::unique_ptr<char[]> bytes;
  std::size_t size = 0;

  std::string_view View() const { return {bytes.get(), size}; }
};

/// The text up to its first zero unit: MSXML reads a BSTR as a null-ended text. False for an
/// unpaired surrogate; `utf8` is then unchanged. Raises std::bad_alloc.
bool EncodeStrictly(std::u16string_view text, Utf8Text& utf8);

/// For what callers put into a tree. An unpaired surrogate becomes three bytes as if it were a
/// character, so that the same unit comes back when it is read. The text ends at its first zero
/// unit, as libxml2's strings do.
std::string Encode(std::u16string_view text);

/// The text of a BSTR up to its first zero unit; a null one is empty.
std::string Encode(BSTR text);

/// A new BSTR for the caller. `utf8` comes from a tree and is well-formed but for what Encode lets
/// pass. Raises std::bad_alloc.
BSTR Decode(std::string_view utf8);

}  // namespace velandoc::dom
