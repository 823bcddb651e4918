// UTF-8 and UTF-16 for the few places where a program, and not the component, speaks to Windows.
#pragma once

#include <string>
#include <string_view>

namespace velandoc {

/// Both put U+FFFD in the place of what is ill-formed.
std::wstring WidenedText(std::string_view utf8);
std::string NarrowedText(std::wstring_view wide);

}  // namespace velandoc
