// UTF-8 as the runtime's own files and file names use it: strict on the way in.
#pragma once

#include <string>
#include <string_view>

#include "platform/text.h"

namespace velandoc {

/// False for ill-formed text (overlong forms and surrogates among it); `wide` is then unspecified.
bool Utf8ToWide(std::string_view bytes, WideString& wide);

/// An unpaired surrogate goes out as U+FFFD.
std::string WideToUtf8(WideView wide);

/// Whether the text has no unpaired surrogate.
bool IsWellFormed(WideView wide);

}  // namespace velandoc
