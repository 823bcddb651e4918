// The two string types of the core.
#pragma once

#include <string>
#include <string_view>

#include "platform/com.h"

namespace velandoc {

/// Counted UTF-16 text: the character type is OLECHAR, so a BSTR or LPCOLESTR needs no cast.
using WideString = std::basic_string<OLECHAR>;
using WideView = std::basic_string_view<OLECHAR>;

/// A null-ended text; null stands for empty text.
inline WideView ViewOf(LPCWSTR text) { return text != nullptr ? WideView(text) : WideView(); }

/// Raw bytes: response bodies, UTF-8, ANSI text.
using NarrowString = std::string;

}  // namespace velandoc
