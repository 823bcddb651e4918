#include "platform/posix/com/registry_text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <system_error>
#include <utility>

#include "platform/posix/com/case_folding.h"
#include "platform/posix/com/utf8.h"

namespace velandoc {
namespace {

constexpr std::string_view kSignature = "Windows Registry Editor Version 5.00";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t";

std::string_view Trim(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (text.substr(0, prefix.size()) != prefix) return false;
  text.remove_prefix(prefix.size());
  return true;
}

/// The whole of `text` as a hexadecimal number of at most `digits` digits.
template <class Integer>
bool ParseHex(std::string_view text, std::size_t digits, Integer& value) {
  if (text.empty() || text.size() > digits) return false;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, value, 16);
  return parsed.ec == std::errc() && parsed.ptr == end;
}

class RegistryReader {
 public:
  RegistryReader(std::string_view text, WideView hiveName, RegistryKey& hive)
      : m_rest(text), m_hiveName(hiveName), m_hive(hive) {}

  bool Read() {
    if (m_rest.size() > kMaxRegistryFile) return false;
    TakePrefix(m_rest, kByteOrderMark);
    if (Trim(TakeLine()) != kSignature) return false;
    while (!m_rest.empty()) {
      if (!ReadLine(Trim(TakeLine()))) return false;
    }
    return true;
  }

 private:
  std::string_view TakeLine() {
    const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
    std::string_view line = m_rest.substr(0, end);
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
  }

  bool ReadLine(std::string_view line) {
    if (line.empty() || line.front() == ';') return true;
    return line.front() == '[' ? ReadKey(line) : ReadValue(line);
  }

  bool ReadKey(std::string_view line) {
    if (line.size() < 3 || line.back() != ']') return false;
    WideString path;
    if (!Utf8ToWide(line.substr(1, line.size() - 2), path)) return false;
    const std::size_t end = std::min(path.find(OLECHAR{'\\'}), path.size());
    if (!EqualsIgnoringCase(WideView(path).substr(0, end), m_hiveName)) return false;
    m_key = CreateKey(m_hive, WideView(path).substr(end), nullptr);
    return m_key != nullptr;
  }

  bool ReadValue(std::string_view line) {
    RegistryValue value;
    if (m_key == nullptr) return false;
    if (!TakePrefix(line, "@") && !TakeQuoted(line, value.name)) return false;
    line = Trim(line);
    if (!TakePrefix(line, "=") || !IsValidName(value.name, kMaxValueName)) return false;
    if (!ReadData(Trim(line), value) || value.data.size() > kMaxValueData) return false;
    WideString folded = FoldCase(value.name);
    // A second value of the name is no text that was ever written: one of the two would get lost.
    return m_key->values.emplace(std::move(folded), std::move(value)).second;
  }

  bool ReadData(std::string_view text, RegistryValue& value) {
    if (!text.empty() && text.front() == '"') {
      WideString content;
      if (!TakeQuoted(text, content) || !text.empty()) return false;
      value.type = REG_SZ;
      value.data.resize((content.size() + 1) * sizeof(OLECHAR));
      std::memcpy(value.data.data(), content.c_str(), value.data.size());
      return true;
    }
    if (TakePrefix(text, "dword:")) {
      DWORD number = 0;
      if (!ParseHex(text, 8, number)) return false;
      value.type = REG_DWORD;
      value.data.resize(sizeof number);
      std::memcpy(value.data.data(), &number, sizeof number);
      return true;
    }
    if (!TakePrefix(text, "hex")) return false;
    value.type = REG_BINARY;
    if (TakePrefix(text, "(")) {
      const std::size_t end = text.find(')');
      if (end == std::string_view::npos || !ParseHex(text.substr(0, end), 8, value.type)) {
        return false;
      }
      text.remove_prefix(end + 1);
    }
    return TakePrefix(text, ":") && ReadBytes(text, value.data);
  }

  /// "01,02,\" goes on in the next line.
  bool ReadBytes(std::string_view text, std::vector<BYTE>& data) {
    while (true) {
      if (text == "\\") {
        if (m_rest.empty()) return false;
        text = Trim(TakeLine());
        continue;
      }
      if (text.empty()) return data.empty();
      BYTE byte = 0;
      const std::size_t end = std::min(text.find(','), text.size());
      if (!ParseHex(Trim(text.substr(0, end)), 2, byte)) return false;
      data.push_back(byte);
      if (end == text.size()) return true;
      text = Trim(text.substr(end + 1));
      if (text.empty()) return false;
    }
  }

  /// A text in quotes, in which \ stands before " and \.
  static bool TakeQuoted(std::string_view& text, WideString& content) {
    if (!TakePrefix(text, "\"")) return false;
    std::string bytes;
    while (!text.empty() && text.front() != '"') {
      if (text.front() == '\\') {
        text.remove_prefix(1);
        if (text.empty() || (text.front() != '"' && text.front() != '\\')) return false;
      }
      bytes.push_back(text.front());
      text.remove_prefix(1);
    }
    return TakePrefix(text, "\"") && Utf8ToWide(bytes, content);
  }

  std::string_view m_rest;
  WideView m_hiveName;
  RegistryKey& m_hive;
  RegistryKey* m_key = nullptr;
};

void AppendQuoted(std::string& text, WideView content) {
  text += '"';
  for (const char byte : WideToUtf8(content)) {
    if (byte == '"' || byte == '\\') text += '\\';
    text += byte;
  }
  text += '"';
}

void AppendHex(std::string& text, std::uint32_t value, int digits) {
  while (digits-- > 0) text += "0123456789abcdef"[value >> (4 * digits) & 0xF];
}

/// The content of a REG_SZ that can stand in quotes: one terminator at the end and nothing that a
/// line can't hold.
bool TextOf(const RegistryValue& value, WideString& content) {
  if (value.type != REG_SZ || value.data.size() < sizeof(OLECHAR) ||
      value.data.size() % sizeof(OLECHAR) != 0) {
    return false;
  }
  content.resize(value.data.size() / sizeof(OLECHAR));
  std::memcpy(content.data(), value.data.data(), value.data.size());
  if (content.back() != 0) return false;
  content.pop_back();
  return IsValidName(content, content.size());
}

void AppendValue(std::string& text, const RegistryValue& value) {
  if (value.name.empty()) {
    text += '@';
  } else {
    AppendQuoted(text, value.name);
  }
  text += '=';
  if (WideString content; TextOf(value, content)) {
    AppendQuoted(text, content);
  } else if (value.type == REG_DWORD && value.data.size() == sizeof(DWORD)) {
    DWORD number = 0;
    std::memcpy(&number, value.data.data(), sizeof number);
    text += "dword:";
    AppendHex(text, number, 8);
  } else {
    text += "hex";
    if (value.type != REG_BINARY) {
      char digits[8];
      char* const end = std::to_chars(digits, digits + sizeof digits, value.type, 16).ptr;
      text += '(';
      text.append(digits, end);
      text += ')';
    }
    char separator = ':';
    for (const BYTE byte : value.data) {
      text += separator;
      AppendHex(text, byte, 2);
      separator = ',';
    }
    if (value.data.empty()) text += separator;
  }
  text += '\n';
}

void AppendKey(std::string& text, const RegistryKey& key, const std::string& path) {
  text += "\n[" + path + "]\n";
  for (const auto& [folded, value] : key.values) AppendValue(text, value);
  for (const auto& [folded, below] : key.keys) {
    AppendKey(text, *below, path + '\\' + WideToUtf8(below->name));
  }
}

}  // namespace

bool ReadRegistryText(std::string_view text, WideView hiveName, RegistryKey& hive) {
  return RegistryReader(text, hiveName, hive).Read();
}

std::string WriteRegistryText(const RegistryKey& hive, WideView hiveName) {
  std::string text(kSignature);
  text += '\n';
  AppendKey(text, hive, WideToUtf8(hiveName));
  return text;
}

}  // namespace velandoc
