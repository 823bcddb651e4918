// Bytes that may be UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace velandoc::standin {

// Overlong forms, surrogates and what lies beyond U+10FFFF are none.
bool IsUtf8(std::string_view bytes);

// Each byte as the code point of the same number.
std::string Utf8OfLatin1(std::string_view bytes);

// %XX of a URL, digits in either case, as bytes; what is no such escape stays as it is.
std::string UnescapeUrl(std::string_view text);

}  // namespace velandoc::standin
