// The types and numbers of WinHTTP that the core and the port speak in, as its public documentation
// gives them, in both homes.
//
// The system's winhttp.h is not included here: it declares names of wininet.h in other ways, and
// the two must stand side by side in a file that uses both services.
#pragma once

#include "platform/com.h"

using HINTERNET = void*;
using INTERNET_PORT = WORD;

// WinHttpOpen.
inline constexpr DWORD WINHTTP_ACCESS_TYPE_NO_PROXY = 1;
inline constexpr DWORD WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY = 4;

// WinHttpOpenRequest.
inline constexpr DWORD WINHTTP_FLAG_SECURE = 0x00800000;

// WinHttpSetOption and WinHttpQueryOption. The flags of the first are WinINet's
// SECURITY_FLAG_IGNORE_ bits for certificates.
inline constexpr DWORD WINHTTP_OPTION_SECURITY_FLAGS = 31;
inline constexpr DWORD WINHTTP_OPTION_URL = 34;
inline constexpr DWORD WINHTTP_OPTION_AUTOLOGON_POLICY = 77;
inline constexpr DWORD WINHTTP_AUTOLOGON_SECURITY_LEVEL_MEDIUM = 0;
inline constexpr DWORD WINHTTP_AUTOLOGON_SECURITY_LEVEL_LOW = 1;
inline constexpr DWORD WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH = 2;
inline constexpr DWORD WINHTTP_OPTION_REDIRECT_POLICY = 88;
inline constexpr DWORD WINHTTP_OPTION_REDIRECT_POLICY_NEVER = 0;
inline constexpr DWORD WINHTTP_OPTION_REDIRECT_POLICY_DISALLOW_HTTPS_TO_HTTP = 1;
inline constexpr DWORD WINHTTP_OPTION_REDIRECT_POLICY_ALWAYS = 2;

// WinHttpSetCredentials.
inline constexpr DWORD WINHTTP_AUTH_TARGET_SERVER = 0;
inline constexpr DWORD WINHTTP_AUTH_TARGET_PROXY = 1;
inline constexpr DWORD WINHTTP_AUTH_SCHEME_BASIC = 1;
inline constexpr DWORD WINHTTP_AUTH_SCHEME_NTLM = 2;
inline constexpr DWORD WINHTTP_AUTH_SCHEME_DIGEST = 8;
inline constexpr DWORD WINHTTP_AUTH_SCHEME_NEGOTIATE = 16;

// WinHttpQueryHeaders.
inline constexpr DWORD WINHTTP_QUERY_CONTENT_TYPE = 1;
inline constexpr DWORD WINHTTP_QUERY_CONTENT_LENGTH = 5;
inline constexpr DWORD WINHTTP_QUERY_STATUS_CODE = 19;
inline constexpr DWORD WINHTTP_QUERY_STATUS_TEXT = 20;
inline constexpr DWORD WINHTTP_QUERY_RAW_HEADERS_CRLF = 22;
inline constexpr DWORD WINHTTP_QUERY_LOCATION = 33;
inline constexpr DWORD WINHTTP_QUERY_CUSTOM = 65535;

// Error codes.
inline constexpr DWORD ERROR_WINHTTP_TIMEOUT = 12002;
inline constexpr DWORD ERROR_WINHTTP_INVALID_URL = 12005;
inline constexpr DWORD ERROR_WINHTTP_NAME_NOT_RESOLVED = 12007;
inline constexpr DWORD ERROR_WINHTTP_INVALID_OPTION = 12009;
inline constexpr DWORD ERROR_WINHTTP_INCORRECT_HANDLE_TYPE = 12018;
inline constexpr DWORD ERROR_WINHTTP_INCORRECT_HANDLE_STATE = 12019;
inline constexpr DWORD ERROR_WINHTTP_CANNOT_CONNECT = 12029;
inline constexpr DWORD ERROR_WINHTTP_CONNECTION_ERROR = 12030;
inline constexpr DWORD ERROR_WINHTTP_RESEND_REQUEST = 12032;
inline constexpr DWORD ERROR_WINHTTP_SECURE_CERT_DATE_INVALID = 12037;
inline constexpr DWORD ERROR_WINHTTP_SECURE_CERT_CN_INVALID = 12038;
inline constexpr DWORD ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED = 12044;
inline constexpr DWORD ERROR_WINHTTP_SECURE_INVALID_CA = 12045;
inline constexpr DWORD ERROR_WINHTTP_HEADER_NOT_FOUND = 12150;
inline constexpr DWORD ERROR_WINHTTP_INVALID_SERVER_RESPONSE = 12152;
inline constexpr DWORD ERROR_WINHTTP_REDIRECT_FAILED = 12156;
inline constexpr DWORD ERROR_WINHTTP_SECURE_CHANNEL_ERROR = 12157;
