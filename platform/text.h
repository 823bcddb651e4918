// The two string types of the core.
#pragma once

#include <string>
#include <string_view>

#include "platform/com.h"

namespace velandoc {

/// Counted UTF-16 text: the character type is OLECHAR, so a BSTR or LPCOLESTR needs no cast.
using WideString = std::basic_string<OLECHAR>;
using WideView = std::basic_string_view<OLECHAR>;

/// Raw bytes: response bodies, UTF-8, ANSI text.
using NarrowString = std::string;

}  // namespace velandoc
