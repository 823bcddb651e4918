#include "platform/posix/wininet/netrc.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/posix/http/ascii_case.h"

namespace velandoc::wininet {

using namespace http;

namespace {

// A .netrc is written by hand; a longer file is something else.
constexpr std::size_t kMaxFileBytes = 1024 * 1024;

class Words {
 public:
  explicit Words(std::string_view text) : m_text(text) {}

  std::optional<std::string> Next() {
    m_text.remove_prefix(std::min(m_text.find_first_not_of(" \t\r\n,"), m_text.size()));
    if (m_text.empty()) return std::nullopt;
    if (m_text.front() == '#') {
      m_text.remove_prefix(std::min(m_text.find('\n'), m_text.size()));
      return Next();
    }
    if (m_text.front() == '"') return Quoted();
    const std::size_t end = std::min(m_text.find_first_of(" \t\r\n"), m_text.size());
    std::string word(m_text.substr(0, end));
    m_text.remove_prefix(end);
    return word;
  }

  /// A macro's body ends at an empty line.
  void SkipMacro() {
    const std::size_t end = m_text.find("\n\n");
    m_text.remove_prefix(end == std::string_view::npos ? m_text.size() : end);
  }

 private:
  std::string Quoted() {
    std::string word;
    m_text.remove_prefix(1);
    while (!m_text.empty() && m_text.front() != '"') {
      if (m_text.front() == '\\' && m_text.size() > 1) m_text.remove_prefix(1);
      word += m_text.front();
      m_text.remove_prefix(1);
    }
    if (!m_text.empty()) m_text.remove_prefix(1);
    return word;
  }

  std::string_view m_text;
};

std::string NetrcPath() {
  if (const char* path = std::getenv("NETRC"); path != nullptr && *path != '\0') return path;
  const char* home = std::getenv("HOME");
  return home != nullptr && *home != '\0' ? std::string(home) + "/.netrc" : std::string();
}

}  // namespace

std::optional<NetrcLogin> FindInNetrc(std::string_view text, std::string_view host) {
  if (host.size() > 2 && host.front() == '[') host = host.substr(1, host.size() - 2);
  Words words(text);
  NetrcLogin login;
  bool applies = false;
  while (std::optional<std::string> word = words.Next()) {
    if (*word == "machine" || *word == "default") {
      if (applies && !login.user.empty()) return login;
      login = NetrcLogin();
      applies = *word == "default" || EqualNoCase(words.Next().value_or(""), host);
    } else if (*word == "login") {
      login.user = words.Next().value_or("");
    } else if (*word == "password") {
      login.password = words.Next().value_or("");
    } else if (*word == "account") {
      words.Next();
    } else if (*word == "macdef") {
      words.SkipMacro();
    }
  }
  if (applies && !login.user.empty()) return login;
  return std::nullopt;
}

std::optional<NetrcLogin> NetrcLoginFor(std::string_view host) {
  std::ifstream file(NetrcPath(), std::ios::binary);
  if (!file) return std::nullopt;
  std::string text(kMaxFileBytes, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return FindInNetrc(text, host);
}

}  // namespace velandoc::wininet
