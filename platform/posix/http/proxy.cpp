#include "platform/posix/http/proxy.h"

#include <charconv>
#include <cstdlib>

#include "platform/posix/http/ascii_case.h"

namespace velandoc::http {
namespace {

const char* Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

const char* Variable(const char* lower, const char* upper) {
  const char* value = Variable(lower);
  return value != nullptr ? value : Variable(upper);
}

constexpr unsigned kDefaultProxyPort = 1080;

Proxy ParseProxy(std::string_view text) {
  Proxy proxy;
  proxy.url = text.find("://") == std::string_view::npos ? "http://" + std::string(text) : text;
  const std::size_t schemeEnd = proxy.url.find("://");
  const std::string_view scheme = std::string_view(proxy.url).substr(0, schemeEnd);
  proxy.isHttp = EqualNoCase(scheme, "http") || EqualNoCase(scheme, "https");
  proxy.endpoint.secure = EqualNoCase(scheme, "https");
  std::string_view rest = std::string_view(proxy.url).substr(schemeEnd + 3);
  rest = rest.substr(0, rest.find('/'));
  if (const std::size_t at = rest.rfind('@'); at != std::string_view::npos) {
    rest.remove_prefix(at + 1);
  }
  const std::size_t bracket = rest.find(']');
  const std::size_t colon = rest.find(':', bracket == std::string_view::npos ? 0 : bracket);
  proxy.endpoint.host = rest.substr(0, colon);
  proxy.endpoint.port = proxy.endpoint.secure ? 443 : kDefaultProxyPort;
  if (colon != std::string_view::npos) {
    std::from_chars(rest.data() + colon + 1, rest.data() + rest.size(), proxy.endpoint.port);
  }
  return proxy;
}

std::string_view WithoutBrackets(std::string_view host) {
  if (host.size() > 2 && host.front() == '[') return host.substr(1, host.size() - 2);
  return host;
}

}  // namespace

bool IsExcludedHost(std::string_view list, std::string_view host) {
  host = WithoutBrackets(host);
  while (!list.empty()) {
    const std::size_t end = std::min(list.find_first_of(", "), list.size());
    std::string_view entry = WithoutBrackets(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
    if (entry == "*") return true;
    if (!entry.empty() && entry.front() == '.') entry.remove_prefix(1);
    if (entry.empty() || entry.size() > host.size()) continue;
    const std::string_view tail = host.substr(host.size() - entry.size());
    if (!EqualNoCase(tail, entry)) continue;
    if (tail.size() == host.size() || host[host.size() - entry.size() - 1] == '.') return true;
  }
  return false;
}

std::optional<Proxy> ProxyFor(const Endpoint& server) {
  const char* text =
      server.secure ? Variable("https_proxy", "HTTPS_PROXY") : Variable("http_proxy");
  if (text == nullptr) text = Variable("all_proxy", "ALL_PROXY");
  if (text == nullptr) return std::nullopt;
  const char* excluded = Variable("no_proxy", "NO_PROXY");
  if (excluded != nullptr && IsExcludedHost(excluded, server.host)) return std::nullopt;
  return ParseProxy(text);
}

}  // namespace velandoc::http
