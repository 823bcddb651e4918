#include "platform/posix/wininet/error_dialog.h"

namespace velandoc::wininet {

DWORD AskAboutError(Request&, DWORD error, DWORD) { return error; }

}  // namespace velandoc::wininet
