// What holds for every URL that is escaped, cracked and cut down to its root, whatever it is made
// of.

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "connection/escape_url.h"
#include "connection/schemes.h"
#include "connection/url_components.h"
#include "connection/utf8.h"

namespace velandoc {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void RequireText(LPCWSTR field, std::uint32_t length, std::size_t capacity) {
  Require(length <= capacity && WideView(field).size() == length);
}

bool IsEscapeEnd(OLECHAR unit) { return unit == '?' || unit == '#'; }

// Each text lies in its array and stands in the URL where its part belongs.
void CheckComponents(WideView text, const UrlComponents& url) {
  RequireText(url.schemeName, url.schemeNameLength, UrlComponents::kSchemeCapacity);
  RequireText(url.hostName, url.hostNameLength, UrlComponents::kHostCapacity);
  RequireText(url.userName, url.userNameLength, UrlComponents::kUserCapacity);
  RequireText(url.password, url.passwordLength, UrlComponents::kPasswordCapacity);
  RequireText(url.urlPath, url.urlPathLength, UrlComponents::kPathCapacity);
  RequireText(url.extraInfo, url.extraInfoLength, UrlComponents::kExtraCapacity);

  const WideString tail = WideString(url.UrlPath()).append(url.ExtraInfo());
  Require(text.substr(0, url.schemeNameLength) == url.SchemeName());
  Require(text[url.schemeNameLength] == ':');
  Require(tail.size() < text.size() && text.substr(text.size() - tail.size()) == tail);
  Require(text.find(url.HostName()) != WideView::npos);
  Require(url.extraInfoLength == 0 || IsEscapeEnd(url.extraInfo[0]));
  Require(url.passwordLength == 0 || url.userNameLength != 0);

  Require(url.schemeIndex >= kUnknownScheme &&
          url.schemeIndex < static_cast<std::int32_t>(kSchemes.size()));
  if (url.schemeIndex == kFileScheme) {
    Require(url.hostNameLength == 0 && url.extraInfoLength == 0);
  }
  if (url.schemeIndex == kFileScheme || url.schemeIndex == kNewsScheme ||
      url.schemeIndex == kMailtoScheme) {
    Require(url.port == 0);
  }
}

void CheckCrack(const WideString& text) {
  UrlComponents url;
  const bool cracked = CrackUrl(text.c_str(), url);
  const WideString root = GetServerRoot(text.c_str());
  if (cracked) {
    CheckComponents(text, url);
    Require(root == WideString(url.SchemeName()).append(OLESTR("://")).append(url.HostName()));
  } else {
    Require(root.empty() && url.schemeIndex == kUnknownScheme && url.port == 0);
    Require(url.schemeNameLength + url.hostNameLength + url.userNameLength + url.passwordLength +
                url.urlPathLength + url.extraInfoLength ==
            0);
  }
}

int HexDigit(OLECHAR unit) {
  if (unit >= '0' && unit <= '9') return unit - '0';
  Require(unit >= 'a' && unit <= 'f');
  return unit - 'a' + 10;
}

// The bytes that the escaped text stands for. To be asked only if the text before had no percent
// signs.
NarrowString Unescape(const WideString& escaped, std::size_t tail) {
  NarrowString bytes;
  for (std::size_t at = 0; at < escaped.size(); ++at) {
    if (at < tail && escaped[at] == '%') {
      bytes += static_cast<char>(HexDigit(escaped[at + 1]) * 16 + HexDigit(escaped[at + 2]));
      at += 2;
    } else {
      bytes += static_cast<char>(escaped[at]);
    }
  }
  return bytes;
}

void CheckEscape(const WideString& text) {
  WideString escaped;
  if (!EscapeUrl(text, escaped)) {
    Require(3 * ToUtf8(text.c_str()).size() > kMaxEscapedUrl);
    return;
  }
  Require(escaped.size() <= kMaxEscapedUrl);
  const auto end = std::find_if(escaped.begin(), escaped.end(), IsEscapeEnd);
  Require(std::all_of(escaped.begin(), end, [](OLECHAR unit) {
    return unit > 32 && unit < 127 &&
           WideView(OLESTR("\"&+,;<=>@[\\]^`{|}")).find(unit) == WideView::npos;
  }));
  Require(std::all_of(end, escaped.end(), [](OLECHAR unit) { return unit < 256; }));
  if (std::all_of(end, escaped.end(), [](OLECHAR unit) { return unit < 128; })) {
    WideString again;
    Require(EscapeUrl(escaped, again) && again == escaped);
  }
  if (text.find('%') == WideString::npos) {
    const auto tail = static_cast<std::size_t>(end - escaped.begin());
    Require(Unescape(escaped, tail) == ToUtf8(text.c_str()));
  }
  CheckCrack(escaped);
}

}  // namespace
}  // namespace velandoc

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const velandoc::WideString text = velandoc::FromUtf8(bytes.c_str());
  velandoc::CheckCrack(text);
  velandoc::CheckEscape(text);
  return 0;
}
