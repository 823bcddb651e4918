// Who is working: the login from the FrontPage server, the display name from the user directory.
#pragma once

#include "platform/owners.h"
#include "platform/text.h"

namespace velandoc {

/// Asks the server at the root of `url` for the caller's login ("open service"). True if it
/// answered, be the login empty; false with `loginOut` as it was if it did not.
bool QueryUserLogin(LPCWSTR url, Bstr& loginOut);

/// Login and display name of the caller; `url` is the server's root. A login that could not be
/// learnt goes on as an empty one; only a user directory that does not know it gives false, with
/// both results as they were. Null for what is not wanted. Raises what GetUserInfo raises.
bool GetCurrentUser(LPCWSTR url, Bstr* loginOut, Bstr* nameOut);

}  // namespace velandoc
