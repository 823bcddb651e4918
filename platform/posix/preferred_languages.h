// The languages that the environment asks for, as the names that Windows has for them.
//
// The variables are those of translated programs, in their order and meaning: the first of LC_ALL,
// LC_MESSAGES and LANG that is not empty is the locale; with the locale "C" or "POSIX", or none, no
// translation is wanted. LANGUAGE, a list parted by colons, comes before any other locale.
//
// Whether the system has the locale installed does not matter.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velandoc {

/// The name of one locale: "de_DE.UTF-8" is "de-DE", "sr_RS@latin" "sr-Latn-RS", "ca@valencia"
/// "ca-valencia"; the codeset and other modifiers are left out. Empty for "C", "POSIX" and whatever
/// is no locale's name: letters, digits and one "_", "." and "@" in their places. The name becomes
/// the name of a folder, so nothing else may pass.
std::string LanguageName(std::string_view locale);

/// The names for a value of LANGUAGE and a locale, each followed by its more general ones
/// ("de-DE", "de"), none twice. A "C" in the list ends it.
std::vector<std::string> LanguageNames(std::string_view languages, std::string_view locale);

/// LanguageNames of this process's environment as it is now.
std::vector<std::string> PreferredLanguages();

}  // namespace velandoc
