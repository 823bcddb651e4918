#include "platform/atl/registry_script.h"

#include <array>
#include <limits>
#include <utility>

#include "platform/ascii_case.h"

namespace velandoc {
namespace {

bool IsBlank(OLECHAR c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

struct Token {
  WideString text;
  bool quoted = false;

  /// Words of the language are compared without regard to case, as the system's registrar does. A
  /// quoted word is always a name or a datum: '}' in quotes closes nothing.
  bool Is(WideView word) const { return !quoted && EqualsIgnoringAsciiCase(text, word); }
};

/// Words are parted by blanks alone, so a brace counts only where it stands by itself: a bare
/// {GUID} is a key's name. In quotes everything goes, and a quote is written twice.
class Tokens {
 public:
  explicit Tokens(WideView text) : m_text(text) {}

  /// False at the end, and for a quote that is not closed; `Broken` tells which.
  bool Next(Token& token) {
    while (m_at < m_text.size() && IsBlank(m_text[m_at])) ++m_at;
    if (m_at == m_text.size()) return false;
    token.text.clear();
    token.quoted = m_text[m_at] == '\'';
    if (token.quoted) return NextQuoted(token);
    while (m_at < m_text.size() && !IsBlank(m_text[m_at])) token.text += m_text[m_at++];
    return true;
  }

  /// The next token without moving on.
  bool Peek(Token& token) {
    const std::size_t at = m_at;
    const bool found = Next(token);
    m_at = at;
    return found;
  }

  bool Broken() const { return m_broken; }

 private:
  bool NextQuoted(Token& token) {
    ++m_at;
    while (m_at < m_text.size()) {
      const OLECHAR c = m_text[m_at++];
      if (c != '\'') {
        token.text += c;
      } else if (m_at < m_text.size() && m_text[m_at] == '\'') {
        token.text += c;
        ++m_at;
      } else {
        return true;
      }
    }
    m_broken = true;
    return false;
  }

  WideView m_text;
  std::size_t m_at = 0;
  bool m_broken = false;
};

std::optional<ScriptRoot> FindRoot(const Token& token) {
  static constexpr std::array<std::pair<WideView, ScriptRoot>, 6> kRoots = {{
      {OLESTR("HKCR"), ScriptRoot::ClassesRoot},
      {OLESTR("HKCU"), ScriptRoot::CurrentUser},
      {OLESTR("HKLM"), ScriptRoot::LocalMachine},
      {OLESTR("HKEY_CLASSES_ROOT"), ScriptRoot::ClassesRoot},
      {OLESTR("HKEY_CURRENT_USER"), ScriptRoot::CurrentUser},
      {OLESTR("HKEY_LOCAL_MACHINE"), ScriptRoot::LocalMachine},
  }};
  for (const auto& [word, root] : kRoots) {
    if (token.Is(word)) return root;
  }
  return std::nullopt;
}

std::optional<KeyRule> FindRule(const Token& token) {
  static constexpr std::array<std::pair<WideView, KeyRule>, 3> kRules = {{
      {OLESTR("NoRemove"), KeyRule::NoRemove},
      {OLESTR("ForceRemove"), KeyRule::ForceRemove},
      {OLESTR("Delete"), KeyRule::Delete},
  }};
  for (const auto& [word, rule] : kRules) {
    if (token.Is(word)) return rule;
  }
  return std::nullopt;
}

/// Decimal, or hexadecimal behind "&H" or "0x".
std::optional<DWORD> ParseNumber(WideView text) {
  unsigned base = 10;
  if (text.size() > 2 && (EqualsIgnoringAsciiCase(text.substr(0, 2), OLESTR("&H")) ||
                          EqualsIgnoringAsciiCase(text.substr(0, 2), OLESTR("0x")))) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty()) return std::nullopt;
  std::uint64_t number = 0;
  for (const OLECHAR c : text) {
    const OLECHAR lower = ToAsciiLower(c);
    unsigned digit = 16;
    if (lower >= '0' && lower <= '9') {
      digit = static_cast<unsigned>(lower - '0');
    } else if (lower >= 'a' && lower <= 'f') {
      digit = static_cast<unsigned>(lower - 'a') + 10;
    }
    if (digit >= base) return std::nullopt;
    number = number * base + digit;
    if (number > std::numeric_limits<DWORD>::max()) return std::nullopt;
  }
  return static_cast<DWORD>(number);
}

class Parser {
 public:
  explicit Parser(WideView text) : m_tokens(text) {}

  std::optional<std::vector<ScriptTree>> ParseTrees() {
    std::vector<ScriptTree> trees;
    Token token;
    while (m_tokens.Next(token)) {
      const std::optional<ScriptRoot> root = FindRoot(token);
      if (!root || !NextIs(OLESTR("{"))) return std::nullopt;
      ScriptKey top;
      if (!ParseBlock(top, 1)) return std::nullopt;
      // A root has no values of its own in this language.
      if (!top.values.empty()) return std::nullopt;
      trees.push_back({*root, std::move(top.keys)});
    }
    if (m_tokens.Broken() || trees.empty()) return std::nullopt;
    return trees;
  }

 private:
  bool NextIs(WideView word) {
    Token token;
    return m_tokens.Next(token) && token.Is(word);
  }

  bool PeekIs(WideView word) {
    Token token;
    return m_tokens.Peek(token) && token.Is(word);
  }

  /// What stands between "{", which has been read, and its "}".
  bool ParseBlock(ScriptKey& parent, std::size_t depth) {
    if (depth > kMaxScriptDepth) return false;
    Token token;
    while (m_tokens.Next(token)) {
      if (token.Is(OLESTR("}"))) return true;
      if (token.Is(OLESTR("val"))) {
        if (!ParseValue(parent)) return false;
      } else if (!ParseKey(parent, token, depth)) {
        return false;
      }
    }
    return false;
  }

  bool ParseValue(ScriptKey& parent) {
    Token name;
    ScriptValue value;
    if (!m_tokens.Next(name) || IsSign(name) || !NextIs(OLESTR("=")) || !ParseData(value.data)) {
      return false;
    }
    value.name = std::move(name.text);
    parent.values.push_back(std::move(value));
    return true;
  }

  bool ParseKey(ScriptKey& parent, Token& token, std::size_t depth) {
    ScriptKey key;
    if (const std::optional<KeyRule> rule = FindRule(token)) {
      key.rule = *rule;
      if (!m_tokens.Next(token)) return false;
    }
    // An empty name would stand for the parent key itself, and deleting that is not what a script
    // can mean.
    if (IsSign(token) || token.text.empty() || token.text.size() > kMaxKeyName) return false;
    // One level a name: "A\\" or "\\" would reach past the key that is meant.
    if (token.text.find(OLECHAR('\\')) != WideString::npos) return false;
    key.name = std::move(token.text);
    if (PeekIs(OLESTR("="))) {
      ScriptData data;
      if (key.rule == KeyRule::Delete || !NextIs(OLESTR("=")) || !ParseData(data)) return false;
      key.defaultValue = std::move(data);
    }
    if (PeekIs(OLESTR("{"))) {
      if (key.rule == KeyRule::Delete || !NextIs(OLESTR("{")) || !ParseBlock(key, depth + 1)) {
        return false;
      }
    }
    parent.keys.push_back(std::move(key));
    return true;
  }

  bool ParseData(ScriptData& data) {
    Token type;
    Token text;
    if (!m_tokens.Next(type) || !m_tokens.Next(text)) return false;
    if (type.Is(OLESTR("s"))) {
      data.text = std::move(text.text);
      return true;
    }
    if (!type.Is(OLESTR("d"))) return false;
    const std::optional<DWORD> number = ParseNumber(text.text);
    if (!number) return false;
    data.isNumber = true;
    data.number = *number;
    return true;
  }

  static bool IsSign(const Token& token) {
    return token.Is(OLESTR("{")) || token.Is(OLESTR("}")) || token.Is(OLESTR("="));
  }

  Tokens m_tokens;
};

}  // namespace

std::optional<WideString> ReplaceInScript(WideView script, const FindReplacement& find) {
  WideString result;
  std::size_t at = 0;
  while (at < script.size()) {
    const std::size_t sign = script.find(OLECHAR('%'), at);
    result += script.substr(at, sign == WideView::npos ? WideView::npos : sign - at);
    if (result.size() > kMaxScriptLength) return std::nullopt;
    if (sign == WideView::npos) break;
    const std::size_t end = script.find(OLECHAR('%'), sign + 1);
    if (end == WideView::npos) return std::nullopt;
    if (end == sign + 1) {
      result += OLECHAR('%');
    } else {
      const std::optional<WideString> text = find(script.substr(sign + 1, end - sign - 1));
      if (!text) return std::nullopt;
      result += *text;
    }
    at = end + 1;
  }
  if (result.size() > kMaxScriptLength) return std::nullopt;
  return result;
}

WideString ScriptForUser(WideView script) {
  static constexpr WideView kRoot = OLESTR("HKCR");
  std::size_t start = 0;
  while (start < script.size() && IsBlank(script[start])) ++start;
  const WideView rest = script.substr(start);
  const bool leads = rest.size() > kRoot.size() &&
                     EqualsIgnoringAsciiCase(rest.substr(0, kRoot.size()), kRoot) &&
                     IsBlank(rest[kRoot.size()]);
  if (!leads) return WideString(script);
  WideString result = OLESTR("HKCU\r\n{\tSoftware\r\n\t{\r\n\t\tClasses");
  result += rest.substr(kRoot.size());
  result += OLESTR("\r\n\t}\r\n}");
  return result;
}

std::optional<std::vector<ScriptTree>> ParseRegistryScript(WideView script) {
  if (script.size() > kMaxScriptLength) return std::nullopt;
  return Parser(script).ParseTrees();
}

}  // namespace velandoc
