// A registry hive as text: what a registry editor exports, in UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "platform/posix/com/registry_tree.h"

namespace velandoc {

inline constexpr std::size_t kMaxRegistryFile = std::size_t{16} << 20;

/// Reads a whole file of the hive with this name ("HKEY_LOCAL_MACHINE") into an empty key. False if
/// anything in it is not understood or passes a limit: a file that can't be written back as it was
/// must not be written at all. Line ends may be CR LF, a byte order mark may stand before it, ";"
/// begins a line of comment (which is lost at the next change).
COM_EXPORT bool ReadRegistryText(std::string_view text, WideView hiveName, RegistryKey& hive);

COM_EXPORT std::string WriteRegistryText(const RegistryKey& hive, WideView hiveName);

}  // namespace velandoc
