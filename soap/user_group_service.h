// The user directory.
#pragma once

#include "platform/owners.h"
#include "platform/text.h"

namespace velandoc {

/// Asks the server at `serverRoot` for the display name and the number of a login. Null for what is
/// not wanted, and then not read either. False, with both as they were, if the server does not
/// answer with a user that has them. `userLoginName` may be null: empty. Raises `_com_error` for a
/// failure of the DOM before the answer came.
bool GetUserInfo(LPCWSTR serverRoot, LPCWSTR userLoginName, Bstr* name, Bstr* id);

}  // namespace velandoc
