#include "platform/posix/http/endpoint.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "platform/code_page.h"
#include "platform/posix/http/ascii_case.h"

namespace velandoc::http {
namespace {

constexpr UINT kCodePage = 1252;

constexpr char kLowerDigits[] = "0123456789abcdef";
constexpr char kUpperDigits[] = "0123456789ABCDEF";

void AppendEscaped(std::string& out, unsigned char byte, const char* digits) {
  out += '%';
  out += digits[byte >> 4];
  out += digits[byte & 15];
}

bool IsBlankOrControl(unsigned char byte) { return byte <= 0x20 || byte == 0x7F; }

void AppendPath(std::string& out, std::string_view bytes, bool escapeNonAscii,
                const char* digits = kLowerDigits) {
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (IsBlankOrControl(byte) || (escapeNonAscii && byte >= 0x80)) {
      AppendEscaped(out, byte, digits);
    } else {
      out += character;
    }
  }
}

/// Takes "." and ".." out of a path that begins with "/". A ".." at the top goes nowhere.
std::string WithoutDotSegments(std::string_view path) {
  std::string out;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/', 1), path.size());
    const std::string_view segment = path.substr(0, end);
    path.remove_prefix(end);
    if (segment == "/." || segment == "/..") {
      if (segment == "/..") out.erase(std::min(out.rfind('/'), out.size()));
      if (path.empty()) out += '/';
    } else {
      out += segment;
    }
  }
  return out;
}

std::string Convert(UINT codePage, WideView text) {
  if (text.empty()) return {};
  // Three bytes a unit is the most that UTF-8 needs.
  constexpr std::size_t kShort = 256;
  if (text.size() <= kShort) {
    char buffer[3 * kShort];
    const int count = SystemPort<CodePage>().WideCharToMultiByte(
        codePage, 0, text.data(), static_cast<int>(text.size()), buffer, sizeof buffer, nullptr,
        nullptr);
    return std::string(buffer, static_cast<std::size_t>(count));
  }
  std::string bytes(text.size() * 3, '\0');
  const int count = SystemPort<CodePage>().WideCharToMultiByte(
      codePage, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
      static_cast<int>(bytes.size()), nullptr, nullptr);
  bytes.resize(static_cast<std::size_t>(count));
  return bytes;
}

unsigned DefaultPort(bool secure) { return secure ? 443 : 80; }

/// Reads "host", "host:port" or "user:password@host:port". Returns nothing if host or port is
/// unusable.
std::optional<Endpoint> ReadAuthority(std::string_view text, bool secure) {
  if (const std::size_t at = text.rfind('@'); at != std::string_view::npos) {
    text.remove_prefix(at + 1);
  }
  const bool bracketed = text.starts_with('[');
  const std::size_t hostEnd = bracketed ? text.find(']') : 0;
  const std::size_t colon = text.find(':', std::min(hostEnd, text.size()));
  Endpoint server{secure, std::string(text.substr(0, colon)), DefaultPort(secure)};
  if (!IsUsableHost(server.host)) return std::nullopt;
  const std::string_view port = colon == std::string_view::npos ? "" : text.substr(colon + 1);
  if (port.empty()) return server;
  constexpr unsigned kLastPort = 65535;
  const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), server.port);
  const bool isPort = error == std::errc() && end == port.data() + port.size();
  if (!isPort || server.port == 0 || server.port > kLastPort) return std::nullopt;
  return server;
}

}  // namespace

std::string HostHeader(const Endpoint& endpoint) {
  if (endpoint.port == DefaultPort(endpoint.secure)) return endpoint.host;
  std::string value = endpoint.host;
  return value.append(":").append(std::to_string(endpoint.port));
}

std::string Origin(const Endpoint& endpoint) {
  constexpr std::size_t kSchemeAndPort = 16;
  std::string origin;
  origin.reserve(kSchemeAndPort + endpoint.host.size());
  origin = endpoint.secure ? "https://" : "http://";
  return origin.append(endpoint.host).append(":").append(std::to_string(endpoint.port));
}

bool IsUsableHost(const std::string& host) {
  if (host.empty()) return false;
  std::string_view rest = host;
  const bool bracketed = rest.front() == '[';
  if (bracketed) {
    if (rest.size() < 4 || rest.back() != ']') return false;
    rest = rest.substr(1, rest.size() - 2);
  }
  for (const char character : rest) {
    const auto byte = static_cast<unsigned char>(character);
    const bool letter = (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z';
    const bool digit = byte >= '0' && byte <= '9';
    const bool mark = byte == '-' || byte == '.' || byte == '_' || byte == '~';
    const bool address = bracketed && (byte == ':' || byte == '%');
    if (!letter && !digit && !mark && !address && byte < 0x80) return false;
  }
  return true;
}

std::string RequestTarget(WideView objectName) {
  const std::size_t split = std::min(objectName.find_first_of(u"?#"), objectName.size());
  std::string path;
  if (split == 0 || objectName[0] != u'/') path += '/';
  AppendPath(path, Utf8(objectName.substr(0, split)), true);
  std::string target = WithoutDotSegments(path);
  AppendPath(target, AnsiBytes(objectName.substr(split)), false);
  return target;
}

std::string EscapedTarget(WideView objectName) {
  std::string target;
  if (objectName.empty() || objectName[0] != u'/') target += '/';
  AppendPath(target, Utf8(objectName), true, kUpperDigits);
  return target;
}

// Written out here, because each release of libcurl reads a faulty Location in its own way.
bool FollowLocation(const std::string& location, Endpoint& endpoint, std::string& target) {
  std::string_view rest = std::string_view(location).substr(0, location.find('#'));
  bool secure = endpoint.secure;
  if (const std::size_t end = rest.find_first_of(":/?");
      end != std::string_view::npos && rest[end] == ':') {
    secure = EqualNoCase(rest.substr(0, end), "https");
    if (!secure && !EqualNoCase(rest.substr(0, end), "http")) return false;
    rest.remove_prefix(end + 1);
    if (!rest.starts_with("//")) return false;
  }
  std::optional<Endpoint> server = endpoint;
  const bool hasServer = rest.starts_with("//");
  if (hasServer) {
    rest.remove_prefix(2);
    const std::size_t end = std::min(rest.find_first_of("/?"), rest.size());
    server = ReadAuthority(rest.substr(0, end), secure);
    if (!server) return false;
    rest.remove_prefix(end);
  }
  const std::size_t split = std::min(rest.find('?'), rest.size());
  const std::string_view oldPath = std::string_view(target).substr(0, target.find('?'));
  std::string path;
  if (hasServer || rest.starts_with('/')) {
    AppendPath(path, rest.substr(0, split), true);
    if (path.empty()) path += '/';
  } else {
    // A query alone stays at the object; a relative path begins at its folder.
    path = split == 0 ? oldPath : oldPath.substr(0, oldPath.rfind('/') + 1);
    AppendPath(path, rest.substr(0, split), true);
  }
  path = WithoutDotSegments(path);
  AppendPath(path, rest.substr(split), true);
  endpoint = *std::move(server);
  target = std::move(path);
  return true;
}

std::string Utf8(WideView text) { return Convert(CP_UTF8, text); }

std::string AnsiBytes(WideView text) { return Convert(kCodePage, text); }

WideString FromAnsiBytes(std::string_view bytes) {
  if (bytes.empty()) return {};
  WideString text(bytes.size(), u'\0');
  SystemPort<CodePage>().MultiByteToWideChar(kCodePage, 0, bytes.data(),
                                             static_cast<int>(bytes.size()), text.data(),
                                             static_cast<int>(text.size()));
  return text;
}

}  // namespace velandoc::http
