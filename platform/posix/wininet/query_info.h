// HttpQueryInfoW: a header or a part of the status line, by number, with WinINet's rules for
// buffers and indexes.
#pragma once

#include "platform/posix/wininet/request.h"

namespace velandoc::wininet {

/// As HttpQueryInfoW, with the error as the result.
DWORD QueryInfo(const Request& request, DWORD infoLevel, LPVOID buffer, DWORD* size, DWORD* index);

}  // namespace velandoc::wininet
