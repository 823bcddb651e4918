#include "hosts/command/probe_url.h"

#include <algorithm>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr std::string_view kSeparator = "://";

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return lower;
}

/// The text in front of "://", or nothing.
std::optional<std::string_view> Scheme(std::string_view url) {
  const std::size_t end = url.find(kSeparator);
  // A "://" behind the first of these belongs to a path or a query.
  if (end == url.npos || url.substr(0, end).find_first_of("/?#") != url.npos) return std::nullopt;
  return url.substr(0, end);
}

/// What stands between "://" and the path, without user name and password.
std::string_view HostAndPort(std::string_view url) {
  std::string_view authority = url.substr(url.find(kSeparator) + kSeparator.size());
  authority = authority.substr(0, authority.find_first_of("/\\?#"));
  const std::size_t at = authority.rfind('@');
  return at == authority.npos ? authority : authority.substr(at + 1);
}

std::string_view Host(std::string_view hostAndPort) {
  if (hostAndPort.starts_with('[')) return hostAndPort.substr(0, hostAndPort.find(']') + 1);
  return hostAndPort.substr(0, hostAndPort.find(':'));
}

/// "http:host" and "http:/host" lack slashes rather than the scheme.
std::string Suggestion(std::string_view url) {
  std::string_view rest = url;
  std::string_view scheme = "https";
  for (std::string_view typed : {"https:", "http:"}) {
    if (LowerCase(url.substr(0, typed.size())) != typed) continue;
    rest = url.substr(typed.size());
    scheme = typed.substr(0, typed.size() - 1);
    break;
  }
  rest.remove_prefix(std::min(rest.find_first_not_of(":/\\"), rest.size()));
  return std::string(scheme) + "://" + (rest.empty() ? "HOST" : std::string(rest));
}

}  // namespace

std::optional<std::string> FindUrlProblem(std::string_view url, std::string_view done) {
  if (!IsUtf8(url)) return "a URL must be UTF-8 text: type other bytes as %XX";
  const std::string quoted = std::string(1, '\'').append(url).append(1, '\'');
  const std::optional<std::string_view> scheme = Scheme(url);
  if (!scheme.has_value()) {
    return quoted + " has no scheme: did you mean '" + Suggestion(url) + "'?";
  }
  const std::string lower = LowerCase(*scheme);
  if (lower != "http" && lower != "https") {
    return quoted + " cannot be " + std::string(done) + ": only http:// and https:// are spoken";
  }
  if (Host(HostAndPort(url)).empty()) {
    return quoted + " names no host: type '" + lower + "://HOST'";
  }
  return std::nullopt;
}

std::optional<std::string> FindUnusedPort(std::string_view url) {
  if (FindUrlProblem(url).has_value()) return std::nullopt;
  const std::string_view hostAndPort = HostAndPort(url);
  std::string_view port = hostAndPort.substr(Host(hostAndPort).size());
  if (port.size() < 2 || port.front() != ':') return std::nullopt;
  port.remove_prefix(1);
  const bool secure = LowerCase(*Scheme(url)) == "https";
  if (port == (secure ? "443" : "80")) return std::nullopt;
  return std::string(port);
}

}  // namespace velandoc
