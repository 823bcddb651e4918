// InternetErrorDlg without windows: looks at a request's error or answer, asks the user on the
// terminal where that can help, and says whether to send again.
#pragma once

#include "platform/posix/wininet/request.h"

namespace velandoc::wininet {

/// `error` is that of the latest send, 0 if it reached the server. The results are
/// InternetErrorDlg's: ERROR_INTERNET_FORCE_RETRY: a login is known now, send again. ERROR_SUCCESS:
/// nothing to ask, nobody to ask for a login, or the user lets a certificate problem pass (the
/// request's security flags say so already). ERROR_CANCELLED: the user declined, or nobody can be
/// asked about a certificate. Any other error is handed back: there is nothing to ask about it.
DWORD AskAboutError(Request& request, DWORD error, DWORD flags);

}  // namespace velandoc::wininet
