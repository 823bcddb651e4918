// Where a request goes: the server, and the text that names the object on it.
#pragma once

#include <string>

#include "platform/posix/wininet_types.h"
#include "platform/text.h"

namespace velandoc::http {

struct Endpoint {
  bool secure = false;
  std::string host;  // UTF-8; an IPv6 address in brackets
  unsigned port = 0;

  friend bool operator==(const Endpoint&, const Endpoint&) = default;
};

/// host, with ":port" unless it is the scheme's own: the value of the Host header.
std::string HostHeader(const Endpoint& endpoint);

/// scheme://host:port, always with the port: what stands before the target in a request to a proxy.
std::string Origin(const Endpoint& endpoint);

/// Only the characters of names and addresses. Keeps "a@b" or "a/b" from meaning another host once
/// it is in a URL.
bool IsUsableHost(const std::string& host);

/// The request target of an object name: "/" is put in front where it lacks one; in the path
/// non-ASCII characters become percent-escaped UTF-8 in lower-case hexadecimal, and "." and ".."
/// segments are resolved; from the first "?" or "#" on they become bytes of the code page; blanks
/// and control characters are escaped everywhere, so no name can end the request line. All else,
/// "%" and "//" included, goes out as it is.
std::string RequestTarget(WideView objectName);

/// The request target as WinHTTP makes it: as above, but dot segments stay, and path and query
/// alike become percent-escaped UTF-8, in upper-case hexadecimal.
std::string EscapedTarget(WideView objectName);

/// Resolves a redirect: `location` as the server wrote it, absolute or relative to `target` on
/// `endpoint`. User name, password and fragment are dropped, "." and ".." segments are resolved,
/// and blanks, control characters and bytes beyond ASCII are escaped; escapes that are there stay.
/// Returns false and changes nothing if the scheme is neither http nor https, or if the host or the
/// port cannot be used.
bool FollowLocation(const std::string& location, Endpoint& endpoint, std::string& target);

/// UTF-16 to UTF-8 and to bytes of the code page (1252), and back.
std::string Utf8(WideView text);
std::string AnsiBytes(WideView text);
WideString FromAnsiBytes(std::string_view bytes);

}  // namespace velandoc::http
