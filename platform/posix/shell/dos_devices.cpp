#include "platform/posix/shell/dos_devices.h"

#include <cstdlib>
#include <filesystem>

namespace velandoc {

std::optional<std::string> FindDriveFolder(char letter) {
  const char* const prefix = std::getenv("WINEPREFIX");
  const char* const home = std::getenv("HOME");
  std::filesystem::path folder;
  if (prefix != nullptr && *prefix != '\0') {
    folder = prefix;
  } else if (home != nullptr && *home != '\0') {
    folder = std::filesystem::path(home) / ".wine";
  }
  // Wine itself takes no relative one.
  if (!folder.is_absolute()) return std::nullopt;
  return FindDriveFolder(letter, (folder / "dosdevices").native());
}

std::optional<std::string> FindDriveFolder(char letter, std::string_view dosDevices) {
  const std::filesystem::path folder(dosDevices);
  const char lower = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
  std::error_code error;
  const auto target = std::filesystem::read_symlink(folder / (std::string(1, lower) + ":"), error);
  if (error) return std::nullopt;
  return (folder / target).lexically_normal().native();
}

}  // namespace velandoc
