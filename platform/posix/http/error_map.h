// From libcurl's results to WinINet's numbers, in which all of this folder speaks. WinHTTP has the
// same numbers but for a few, which its port translates.
#pragma once

#include <curl/curl.h>

#include "platform/posix/wininet_types.h"

namespace velandoc::http {

/// Of the whole library; never seen as long as the server's certificate is the only TLS matter.
inline constexpr DWORD kErrorOutOfHandles = 12001;        // ERROR_INTERNET_OUT_OF_HANDLES
inline constexpr DWORD kErrorInvalidCertificate = 12169;  // ERROR_INTERNET_SEC_INVALID_CERT

/// Not for CURLE_OK, and not for a refused certificate, whose reason the TLS side knows better.
/// `osErrno` is CURLINFO_OS_ERRNO. libcurl's manual promises it for a failed connect alone; that it
/// tells a reset from an end while sending or receiving is what releases 7.88 and 8.14 do, and no
/// documented interface does. WinInetFailures.TellsWhyASendFailed fails with one that does not.
DWORD ErrorOf(CURLcode result, long osErrno);

}  // namespace velandoc::http
