// A header or a part of the status line, by number, with the rules for buffers and indexes that
// HttpQueryInfoW and WinHttpQueryHeaders share.
#pragma once

#include "platform/posix/http/http_request.h"

namespace velandoc::http {

/// In the low half of an info level: the header is named.
inline constexpr DWORD kNamedHeader = 0x0000FFFF;

/// The request's URL as a null-ended text: what both services answer to their option of that name.
/// `*size` as in QueryInfo.
DWORD GiveUrl(const HttpRequest& request, LPVOID buffer, DWORD* size);

/// As those operations, with the error as the result. `name` counts for kNamedHeader only; null
/// names nothing.
DWORD QueryInfo(const HttpRequest& request, DWORD infoLevel, LPCWSTR name, LPVOID buffer,
                DWORD* size, DWORD* index);

}  // namespace velandoc::http
