// UTF-8 and UTF-16 at the edge between a program and COM.
#pragma once

#include <string>
#include <string_view>

#include "platform/text.h"

namespace velandoc {

/// Ill-formed sequences become U+FFFD, one for each byte that cannot begin or continue a character.
WideString WideFromUtf8(std::string_view bytes);
/// Unpaired surrogates become U+FFFD.
std::string Utf8FromWide(WideView text);
/// Whether `bytes` is UTF-8 throughout: no overlong form, no surrogate, nothing above U+10FFFF.
bool IsUtf8(std::string_view bytes);

}  // namespace velandoc
