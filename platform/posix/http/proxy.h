// The user's proxies, as the environment gives them: http_proxy (only in lower case, since a CGI
// host sets the other from a request header), https_proxy, all_proxy and no_proxy (each in either
// case).
#pragma once

#include <optional>
#include <string>

#include "platform/posix/http/endpoint.h"

namespace velandoc::http {

struct Proxy {
  std::string url;      // as the environment gives it, with a scheme put in front if it has none
  Endpoint endpoint;    // whose credentials are asked for
  bool isHttp = false;  // false: a SOCKS proxy, which the server does not notice

  /// The environment gives user and password along with the address.
  bool HasLogin() const { return url.find('@') != std::string::npos; }
  /// Requests to a plain server through a HTTP proxy name the whole URL; secure ones go through a
  /// tunnel.
  bool TakesWholeUrl(const Endpoint& server) const { return isHttp && !server.secure; }
};

/// The proxy for this server, none if it is reached directly.
std::optional<Proxy> ProxyFor(const Endpoint& server);

/// Whether a no_proxy list ("a.test, .b.test" or "*") takes this host out. A name in the list
/// also takes out the hosts below it.
bool IsExcludedHost(std::string_view list, std::string_view host);

}  // namespace velandoc::http
