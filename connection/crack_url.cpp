#include <algorithm>

#include "connection/schemes.h"
#include "connection/text_to_integer.h"
#include "connection/url_components.h"
#include "platform/ascii_case.h"

namespace velandoc {
namespace {

// No part of a URL may reach this many characters. Each array of UrlComponents is smaller, so that
// the arrays decide.
constexpr std::size_t kTokenLimit = 2089;
static_assert(UrlComponents::kPathCapacity < kTokenLimit &&
              UrlComponents::kExtraCapacity < kTokenLimit);

// What may stand behind a ":" in the host part, be it a password or the text of a port.
constexpr std::size_t kSecondTokenCapacity = 128;

// One pass over a null-ended URL. Each Read... starts at m_at and leaves m_at on the first
// character that it did not take.
class UrlCracker {
 public:
  UrlCracker(LPCWSTR url, UrlComponents& out) : m_at(url), m_out(out) {}

  bool Crack() {
    if (!ReadScheme()) return false;
    bool hostFollows = m_out.schemeIndex != kFileScheme;
    if (m_at[0] == '/' && m_at[1] == '/') {
      if (m_out.schemeIndex == kMailtoScheme) return false;
      m_at += 2;
    } else if (m_at[0] == '/') {
      hostFollows = false;
    }
    if (hostFollows && !ReadHostPart()) return false;
    if (!ReadPathAndExtra()) return false;
    SettlePort();
    return true;
  }

 private:
  // Brackets count here too, so that a bare "[::1]:80" has "[::1]" for its scheme and not "[".
  bool ReadScheme() {
    const OLECHAR* begin = m_at;
    bool inBrackets = false;
    for (; *m_at != ':' || inBrackets; ++m_at) {
      if (*m_at == 0) return false;
      if (*m_at == '[') inBrackets = true;
      if (*m_at == ']') inBrackets = false;
    }
    if (!Store(begin, m_at, m_out.schemeName, m_out.schemeNameLength)) return false;
    ++m_at;
    for (std::size_t row = 0; row < kSchemes.size(); ++row) {
      if (EqualsIgnoringAsciiCase(m_out.SchemeName(), kSchemes[row].name)) {
        m_out.schemeIndex = static_cast<std::int32_t>(row);
      }
    }
    return true;
  }

  // A "#" does not end the host part; only the path knows it.
  bool ReadHostPart() {
    const OLECHAR* begin = m_at;
    bool inBrackets = false;
    bool userSeen = false;
    for (;; ++m_at) {
      switch (*m_at) {
        case 0:
        case '/':
        case '?':
          return Store(begin, m_at, m_out.hostName, m_out.hostNameLength);
        case '[':
          inBrackets = true;
          break;
        case ']':
          inBrackets = false;
          break;
        case '@':
          if (userSeen || !Store(begin, m_at, m_out.userName, m_out.userNameLength)) return false;
          userSeen = true;
          begin = m_at + 1;
          break;
        case ':': {
          if (inBrackets) break;
          const OLECHAR* first = begin;
          const OLECHAR* colon = m_at;
          if (!SkipSecondToken()) return false;
          if (*m_at != '@') return ReadHostAndPort(first, colon);
          if (userSeen || !ReadUserAndPassword(first, colon)) return false;
          userSeen = true;
          begin = m_at + 1;
          break;
        }
        default:
          break;
      }
    }
  }

  // From a ":" to the "@", the "/" or the end behind it. A "?" is part of the token: "host:80?x"
  // has a port, and nothing behind it.
  bool SkipSecondToken() {
    const OLECHAR* begin = ++m_at;
    while (*m_at != 0 && *m_at != '@' && *m_at != '/') {
      ++m_at;
      if (static_cast<std::size_t>(m_at - begin) > kSecondTokenCapacity) return false;
    }
    return true;
  }

  // No range check: 65616 is port 80, and text without digits is port 0.
  bool ReadHostAndPort(const OLECHAR* begin, const OLECHAR* colon) {
    m_portSeen = true;
    m_out.port = static_cast<std::uint16_t>(TextToInteger(WideView(colon + 1, m_at)));
    return Store(begin, colon, m_out.hostName, m_out.hostNameLength);
  }

  bool ReadUserAndPassword(const OLECHAR* begin, const OLECHAR* colon) {
    return Store(begin, colon, m_out.userName, m_out.userNameLength) &&
           Store(colon + 1, m_at, m_out.password, m_out.passwordLength) &&
           (m_out.userNameLength != 0 || m_out.passwordLength == 0);
  }

  // A file's path may hold "?" and "#".
  bool ReadPathAndExtra() {
    const OLECHAR* begin = m_at;
    const bool file = m_out.schemeIndex == kFileScheme;
    while (*m_at != 0 && (file || (*m_at != '?' && *m_at != '#'))) ++m_at;
    if (!Store(begin, m_at, m_out.urlPath, m_out.urlPathLength)) return false;
    begin = m_at;
    m_at += WideView::traits_type::length(m_at);
    return Store(begin, m_at, m_out.extraInfo, m_out.extraInfoLength);
  }

  void SettlePort() {
    const std::int32_t scheme = m_out.schemeIndex;
    if (scheme == kFileScheme || scheme == kNewsScheme || scheme == kMailtoScheme) {
      m_out.port = 0;
    } else if (!m_portSeen && scheme != kUnknownScheme) {
      m_out.port = kSchemes[static_cast<std::size_t>(scheme)].defaultPort;
    }
  }

  template <std::size_t size>
  static bool Store(const OLECHAR* begin, const OLECHAR* end, OLECHAR (&field)[size],
                    std::uint32_t& length) {
    const auto count = static_cast<std::size_t>(end - begin);
    if (count >= size) return false;
    std::copy(begin, end, field);
    field[count] = 0;
    length = static_cast<std::uint32_t>(count);
    return true;
  }

  const OLECHAR* m_at;
  UrlComponents& m_out;
  bool m_portSeen = false;
};

}  // namespace

bool CrackUrl(LPCWSTR url, UrlComponents& components) {
  components.Clear();
  if (url != nullptr && UrlCracker(url, components).Crack()) return true;
  components.Clear();
  return false;
}

}  // namespace velandoc
