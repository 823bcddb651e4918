#include "platform/posix/preferred_languages.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

namespace velandoc {
namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsLanguage(std::string_view text) {
  return text.size() >= 2 && text.size() <= 8 && std::all_of(text.begin(), text.end(), &IsLetter);
}

/// Two letters of a country or three digits of a part of the world.
bool IsRegion(std::string_view text) {
  return (text.size() == 2 && std::all_of(text.begin(), text.end(), &IsLetter)) ||
         (text.size() == 3 && std::all_of(text.begin(), text.end(), &IsDigit));
}

/// Scripts stand before the region, variants behind it.
struct Modifier {
  std::string_view name;
  std::string_view script;
  std::string_view variant;
};
constexpr Modifier kModifiers[] = {
    {"latin", "Latn", ""},        {"cyrillic", "Cyrl", ""}, {"arabic", "Arab", ""},
    {"devanagari", "Deva", ""},   {"hebrew", "Hebr", ""},   {"iqtelif", "Latn", ""},
    {"valencia", "", "valencia"},
};

/// Takes what follows `mark` off the end of `text`; nothing if the mark is not there.
std::optional<std::string_view> TakeBehind(std::string_view& text, char mark) {
  const std::size_t at = text.find(mark);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view behind = text.substr(at + 1);
  text = text.substr(0, at);
  return behind;
}

bool IsUntranslated(std::string_view locale) {
  // "C.UTF-8" is "C" with another codeset.
  return locale.empty() || locale == "C" || locale == "POSIX" || locale.starts_with("C.");
}

/// The name without its last part: "sr-Latn-RS", "sr-Latn", "sr".
std::string Parent(const std::string& name) {
  const std::size_t at = name.rfind('-');
  return at != std::string::npos ? name.substr(0, at) : std::string();
}

void Append(std::vector<std::string>& names, std::string_view locale) {
  for (std::string name = LanguageName(locale); !name.empty(); name = Parent(name)) {
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
}

std::string_view Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

std::string LanguageName(std::string_view locale) {
  if (IsUntranslated(locale)) return {};
  const std::optional<std::string_view> modifier = TakeBehind(locale, '@');
  TakeBehind(locale, '.');
  const std::optional<std::string_view> region = TakeBehind(locale, '_');
  if (!IsLanguage(locale) || (region && !IsRegion(*region))) return {};
  const auto* const known = std::find_if(std::begin(kModifiers), std::end(kModifiers),
                                         [&](const Modifier& m) { return m.name == modifier; });
  std::string name(locale);
  const auto add = [&name](std::string_view part) {
    if (!part.empty()) name.append("-").append(part);
  };
  if (known != std::end(kModifiers)) add(known->script);
  add(region.value_or(""));
  if (known != std::end(kModifiers)) add(known->variant);
  return name;
}

std::vector<std::string> LanguageNames(std::string_view languages, std::string_view locale) {
  std::vector<std::string> names;
  if (IsUntranslated(locale)) return names;
  if (languages.empty()) {
    Append(names, locale);
    return names;
  }
  while (!languages.empty()) {
    const std::string_view one = languages.substr(0, languages.find(':'));
    languages.remove_prefix(std::min(languages.size(), one.size() + 1));
    // An empty element is none; "C" means that the program's own words are wanted next.
    if (one.empty()) continue;
    if (IsUntranslated(one)) break;
    Append(names, one);
  }
  return names;
}

std::vector<std::string> PreferredLanguages() {
  std::string_view locale;
  for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    locale = Variable(name);
    if (!locale.empty()) break;
  }
  return LanguageNames(Variable("LANGUAGE"), locale);
}

}  // namespace velandoc
