#include "platform/posix/shell/webdav_place.h"

#include <algorithm>
#include <charconv>

#include "platform/posix/http/ascii_case.h"

namespace velandoc {
namespace {

using http::EqualNoCase;

constexpr std::uint16_t kHttpPort = 80;
constexpr std::uint16_t kHttpsPort = 443;
constexpr std::string_view kRootShare = "DavWWWRoot";

bool ReadPort(std::string_view text, std::uint16_t& port) {
  const char* const end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data(), end, port);
  return error == std::errc() && behind == end && port != 0;
}

/// Cuts `text` at the first of `separators` and returns what was before it.
std::string_view CutAt(std::string_view& text, std::string_view separators) {
  const std::size_t at = text.find_first_of(separators);
  const std::string_view before = text.substr(0, at);
  text.remove_prefix(at == std::string_view::npos ? text.size() : at + 1);
  return before;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// A percent sign that begins no escape stands for itself.
std::string Unescape(std::string_view text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%' && at + 2 < text.size()) {
      const int high = HexDigit(text[at + 1]);
      const int low = HexDigit(text[at + 2]);
      if (high >= 0 && low >= 0) {
        plain += static_cast<char>(high * 16 + low);
        at += 2;
        continue;
      }
    }
    plain += text[at];
  }
  return plain;
}

std::string EscapeName(std::string_view name) {
  std::string escaped;
  for (const char c : name) {
    switch (c) {
      case '%':
        escaped += "%25";
        break;
      case '#':
        escaped += "%23";
        break;
      case '?':
        escaped += "%3f";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

/// "host" or "host:port"; the brackets of an IPv6 address keep its colons.
bool ReadHostAndPort(std::string_view text, WebDavPlace& place) {
  const std::size_t bracket = text.rfind(']');
  const std::size_t colon = text.find(':', bracket == std::string_view::npos ? 0 : bracket);
  place.host = text.substr(0, colon);
  if (place.host.empty()) return false;
  return colon == std::string_view::npos || colon + 1 == text.size() ||
         ReadPort(text.substr(colon + 1), place.port);
}

/// "SSL", "SSL@8443" or "8080".
bool ReadMarks(std::string_view marks, WebDavPlace& place) {
  const std::size_t at = marks.find('@');
  if (EqualNoCase(marks.substr(0, at), "SSL")) {
    place.isSecure = true;
    if (at == std::string_view::npos) return true;
    marks.remove_prefix(at + 1);
  }
  return ReadPort(marks, place.port);
}

}  // namespace

void WebDavPlace::Append(std::string_view below) {
  while (!below.empty()) {
    const std::string_view name = CutAt(below, "/");
    if (!name.empty()) path.append("/").append(EscapeName(name));
  }
}

std::string WebDavPlace::Url() const {
  std::string url = (isSecure ? "https://" : "http://") + host;
  if (port != 0 && port != (isSecure ? kHttpsPort : kHttpPort)) {
    url.append(":").append(std::to_string(port));
  }
  return url + path;
}

std::string WebDavPlace::UncName() const {
  std::string name = "\\\\" + host;
  if (isSecure) name += "@SSL";
  if (port != 0) name.append("@").append(std::to_string(port));
  name.append("\\").append(kRootShare);
  const std::size_t pathAt = name.size();
  name += path;
  std::replace(name.begin() + static_cast<std::ptrdiff_t>(pathAt), name.end(), '/', '\\');
  return name;
}

std::optional<WebDavPlace> PlaceOfUncName(std::string_view name) {
  if (name.substr(0, 2) != "\\\\") return std::nullopt;
  name.remove_prefix(2);
  const std::size_t serverEnd = std::min(name.find_first_of("\\/"), name.size());
  const std::string_view server = name.substr(0, serverEnd);
  std::string_view rest = name.substr(serverEnd);

  WebDavPlace place;
  const std::size_t marksAt = server.find('@');
  place.host = server.substr(0, marksAt);
  // "\\?\" and "\\.\" begin the system's own names for devices and files.
  if (place.host.empty() || place.host == "?" || place.host == ".") return std::nullopt;
  if (marksAt != std::string_view::npos && !ReadMarks(server.substr(marksAt + 1), place)) {
    return std::nullopt;
  }

  if (!rest.empty() && (rest.back() == '\\' || rest.back() == '/')) rest.remove_suffix(1);
  place.path = rest;
  std::replace(place.path.begin(), place.path.end(), '\\', '/');
  // The share that stands for the server's root.
  if (EqualNoCase(std::string_view(place.path).substr(0, 1 + kRootShare.size()),
                  "/" + std::string(kRootShare)) &&
      (place.path.size() == 1 + kRootShare.size() || place.path[1 + kRootShare.size()] == '/')) {
    place.path.erase(0, 1 + kRootShare.size());
  }
  return place;
}

std::optional<WebDavPlace> PlaceOfShareUrl(std::string_view url) {
  WebDavPlace place;
  const std::size_t schemeEnd = url.find("://");
  if (schemeEnd == std::string_view::npos) return std::nullopt;
  const std::string_view scheme = url.substr(0, schemeEnd);
  if (EqualNoCase(scheme, "https")) {
    place.isSecure = true;
  } else if (!EqualNoCase(scheme, "http")) {
    return std::nullopt;
  }
  url.remove_prefix(schemeEnd + 3);
  if (url.find_first_of("?#") != std::string_view::npos) return std::nullopt;
  std::string_view authority = CutAt(url, "/");
  const std::size_t user = authority.rfind('@');
  if (user != std::string_view::npos) authority.remove_prefix(user + 1);
  if (!ReadHostAndPort(authority, place)) return std::nullopt;
  place.Append(Unescape(url));
  return place;
}

std::optional<WebDavPlace> PlaceOfGvfsFolder(std::string_view folder) {
  constexpr std::string_view kScheme = "dav:";
  if (folder.substr(0, kScheme.size()) != kScheme) return std::nullopt;
  folder.remove_prefix(kScheme.size());
  WebDavPlace place;
  while (!folder.empty()) {
    std::string_view entry = CutAt(folder, ",");
    const std::string_view key = CutAt(entry, "=");
    const std::string value = Unescape(entry);
    if (key == "host") {
      place.host = value;
    } else if (key == "ssl") {
      place.isSecure = value == "true";
    } else if (key == "port") {
      if (!ReadPort(value, place.port)) return std::nullopt;
    } else if (key == "prefix") {
      place.Append(value);
    }
  }
  if (place.host.empty()) return std::nullopt;
  return place;
}

}  // namespace velandoc
