#include "platform/posix/http/challenge.h"

#include <curl/curl.h>

#include "platform/posix/http/ascii_case.h"

namespace velandoc::http {
namespace {

bool IsTokenCharacter(char character) {
  return (AsciiLower(character) >= 'a' && AsciiLower(character) <= 'z') ||
         (character >= '0' && character <= '9') ||
         std::string_view("!#$%&'*+-.^_`|~").find(character) != std::string_view::npos;
}

unsigned long SchemeBit(std::string_view name) {
  if (EqualNoCase(name, "Basic")) return CURLAUTH_BASIC;
  if (EqualNoCase(name, "Digest")) return CURLAUTH_DIGEST;
  if (EqualNoCase(name, "NTLM")) return CURLAUTH_NTLM;
  if (EqualNoCase(name, "Negotiate")) return CURLAUTH_NEGOTIATE;
  return 0;
}

/// Walks `scheme name=value, name="value", scheme token68, ...`: a token that "=" follows names a
/// parameter, any other token at the start of an item is a scheme.
class Reader {
 public:
  explicit Reader(std::string_view text) : m_text(text) {}

  void ReadInto(Challenge& challenge) {
    while (!m_text.empty()) {
      SkipBlanksAndCommas();
      const std::string_view token = TakeToken();
      if (token.empty()) {
        if (!m_text.empty()) m_text.remove_prefix(1);
        continue;
      }
      SkipBlanks();
      if (!m_text.empty() && m_text.front() == '=') {
        TakeParameter(token, challenge);
      } else {
        challenge.schemes |= SchemeBit(token);
      }
    }
  }

 private:
  void SkipBlanks() { SkipWhile(" \t"); }
  void SkipBlanksAndCommas() { SkipWhile(" \t,"); }
  void SkipWhile(std::string_view set) {
    m_text.remove_prefix(std::min(m_text.find_first_not_of(set), m_text.size()));
  }

  std::string_view TakeToken() {
    std::size_t length = 0;
    while (length < m_text.size() && IsTokenCharacter(m_text[length])) ++length;
    const std::string_view token = m_text.substr(0, length);
    m_text.remove_prefix(length);
    return token;
  }

  void TakeParameter(std::string_view name, Challenge& challenge) {
    m_text.remove_prefix(1);
    SkipBlanks();
    const std::string value = TakeValue();
    if (EqualNoCase(name, "realm") && challenge.realm.empty()) challenge.realm = value;
  }

  std::string TakeValue() {
    if (m_text.empty() || m_text.front() != '"') return std::string(TakeToken());
    m_text.remove_prefix(1);
    std::string value;
    while (!m_text.empty() && m_text.front() != '"') {
      if (m_text.front() == '\\' && m_text.size() > 1) m_text.remove_prefix(1);
      value += m_text.front();
      m_text.remove_prefix(1);
    }
    if (!m_text.empty()) m_text.remove_prefix(1);
    return value;
  }

  std::string_view m_text;
};

}  // namespace

Challenge ParseChallenges(const std::vector<std::string_view>& values) {
  Challenge challenge;
  for (const std::string_view value : values) Reader(value).ReadInto(challenge);
  return challenge;
}

unsigned long PasswordScheme(unsigned long offered) {
  for (const unsigned long scheme : {CURLAUTH_NTLM, CURLAUTH_DIGEST, CURLAUTH_BASIC}) {
    if ((offered & scheme) != 0) return scheme;
  }
  return 0;
}

}  // namespace velandoc::http
