// The reader of registry scripts: text of the registrar's language in, a tree of keys and values
// out.
//
//   HKCR
//   {
//     NoRemove CLSID
//     {
//       ForceRemove {1D477FCE-...} = s 'ServerCheck Class'
//       {
//         val AppID = s '%APPID%'
//       }
//     }
//   }
//
// A script is read whole before anything is written, so that a broken one changes nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/text.h"

namespace velandoc {

/// Bounds of a script. The longest of ours has some 800 characters and five levels.
inline constexpr std::size_t kMaxScriptLength = 64 * 1024;  // characters, replacements included
inline constexpr std::size_t kMaxScriptDepth = 32;          // levels of keys below a root
inline constexpr std::size_t kMaxKeyName = 255;             // characters; the registry's own bound

enum class ScriptRoot : std::uint8_t { ClassesRoot, CurrentUser, LocalMachine };

/// What a word before a key's name asks for.
enum class KeyRule : std::uint8_t {
  Plain,        // made; unregistration removes it unless somebody else has put subkeys in it
  NoRemove,     // made; unregistration leaves it
  ForceRemove,  // removed with all below it before it is made, and so on unregistration
  Delete,       // removed with all below it by registration; nothing on unregistration
};

/// A value's data: text (`s`) or a number (`d`).
struct ScriptData {
  bool isNumber = false;
  WideString text;
  DWORD number = 0;
};

struct ScriptValue {
  WideString name;  // empty for the key's default value
  ScriptData data;
};

struct ScriptKey {
  KeyRule rule = KeyRule::Plain;
  WideString name;
  std::optional<ScriptData> defaultValue;
  /// Named values and subkeys each in the script's order; a key's values are written before its
  /// subkeys.
  std::vector<ScriptValue> values;
  std::vector<ScriptKey> keys;
};

struct ScriptTree {
  ScriptRoot root = ScriptRoot::ClassesRoot;
  std::vector<ScriptKey> keys;
};

/// The text for %name%, or nothing when there is none. Names are looked up without regard to case.
using FindReplacement = std::function<std::optional<WideString>(WideView name)>;

/// Puts the replacements in place of their %names%; "%%" gives one "%". Nothing if a name is
/// unknown or not closed, or if the result is longer than kMaxScriptLength.
std::optional<WideString> ReplaceInScript(WideView script, const FindReplacement& find);

/// The script for the current user alone: a leading HKCR becomes
/// "HKCU\r\n{\tSoftware\r\n\t{\r\n\t\tClasses", and two braces at the end close the extra levels.
/// Any other script comes back as it is.
WideString ScriptForUser(WideView script);

/// Reads a script whose replacements have been put in: one or more trees. Nothing for anything that
/// is not of the language, is empty, or passes the bounds above.
std::optional<std::vector<ScriptTree>> ParseRegistryScript(WideView script);

}  // namespace velandoc
