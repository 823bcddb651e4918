#include "platform/posix/http/endpoint.h"

#include <curl/curl.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <utility>

#include "platform/code_page.h"

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

struct FreeUrl {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct FreeText {
  void operator()(char* text) const { curl_free(text); }
};

std::string Part(CURLU* url, CURLUPart part, unsigned flags = 0) {
  char* text = nullptr;
  if (curl_url_get(url, part, &text, flags) != CURLUE_OK) return {};
  const std::unique_ptr<char, FreeText> owner(text);
  return text;
}

unsigned DefaultPort(bool secure) { return secure ? 443 : 80; }

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

bool FollowLocation(const std::string& location, Endpoint& endpoint, std::string& target) {
  const std::unique_ptr<CURLU, FreeUrl> url(curl_url());
  if (!url) return false;
  const std::string base = Origin(endpoint) + target;
  // CURLU_URLENCODE escapes blanks and bytes above 126 of the Location; what is escaped already
  // stays.
  constexpr unsigned kFlags = CURLU_PATH_AS_IS | CURLU_URLENCODE | CURLU_NON_SUPPORT_SCHEME;
  if (curl_url_set(url.get(), CURLUPART_URL, base.c_str(), kFlags) != CURLUE_OK ||
      curl_url_set(url.get(), CURLUPART_URL, location.c_str(), kFlags) != CURLUE_OK) {
    return false;
  }
  const std::string scheme = Part(url.get(), CURLUPART_SCHEME);
  Endpoint next;
  next.secure = scheme == "https";
  if (!next.secure && scheme != "http") return false;
  next.host = Part(url.get(), CURLUPART_HOST);
  if (!IsUsableHost(next.host)) return false;
  const std::string port = Part(url.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
  std::from_chars(port.data(), port.data() + port.size(), next.port);
  std::string path = Part(url.get(), CURLUPART_PATH);
  if (path.empty()) path += '/';
  const std::string query = Part(url.get(), CURLUPART_QUERY);
  endpoint = next;
  if (!query.empty()) path.append("?").append(query);
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
