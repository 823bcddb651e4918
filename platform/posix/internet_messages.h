// What the error codes of WinINet and WinHTTP mean, in the words of a user's problem. On Windows
// the two libraries bring their texts along.
#pragma once

#include <string_view>

#include "platform/posix/com/com.h"

namespace velandoc {

enum class InternetModule { kWinInet, kWinHttp };

/// The text of one library's code, without a line end; empty for a code that it has not.
std::u16string_view InternetMessage(DWORD code, InternetModule module);

/// The same for a code of unknown origin: most are common to both libraries, and of those that are
/// not, WinHTTP's come first.
std::u16string_view InternetMessage(DWORD code);

}  // namespace velandoc
