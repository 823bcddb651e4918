// Drive letters, as Wine keeps them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velandoc {

/// The folder behind a drive letter by the link "z:" in the folder dosdevices of the Wine prefix:
/// of $WINEPREFIX, or of ~/.wine. Absolute and without "." and ".."; none for a drive with no link.
/// Nothing of Wine needs to be installed.
std::optional<std::string> FindDriveFolder(char letter);

/// The same in a given folder of links.
std::optional<std::string> FindDriveFolder(char letter, std::string_view dosDevices);

}  // namespace velandoc
