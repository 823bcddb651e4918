// Who is working: the login from the FrontPage server, the display name from the user directory.
#pragma once

#include "platform/owners.h"
#include "platform/text.h"

namespace velandoc {

/// Asks the server at the root of `url` for the caller's login ("open service"). True if it
/// answered, be the login empty or the answer no page; false with `loginOut` as it was if it did
/// not. Raises `_com_error` for a DOM that fails on a page that has loaded, and with E_OUTOFMEMORY.
bool QueryUserLogin(LPCWSTR url, Bstr& loginOut);

/// Login and display name of the caller; `url` is the server's root. Only a user directory that
/// does not know the login gives false, with both results as they were. A login that the server
/// would not tell goes to the directory as an empty one, and comes back as null. Null for what is
/// not wanted. Raises what QueryUserLogin and GetUserInfo raise.
bool GetCurrentUser(LPCWSTR url, Bstr* loginOut, Bstr* nameOut);

}  // namespace velandoc
