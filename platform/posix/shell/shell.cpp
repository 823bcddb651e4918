// The Shell port on Linux. A mapped drive is a link to a folder on a WebDAV mount; a UNC name is
// read by its own form; a path of this machine is looked up among the mounts.
#include "platform/shell.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "platform/posix/path_text.h"
#include "platform/posix/shell/dos_devices.h"
#include "platform/posix/shell/local_path.h"
#include "platform/posix/shell/split_path.h"
#include "platform/posix/shell/webdav_place.h"

namespace velandoc {
namespace {

constexpr DWORD kErrorBadDevice = 1200;
constexpr DWORD kErrorNotConnected = 2250;

/// `*size` is the buffer's, then the text's with its terminator.
DWORD Store(const WideString& text, LPWSTR buffer, DWORD* size, DWORD noRoom) {
  const auto needed = static_cast<DWORD>(text.size() + 1);
  const bool fits = buffer != nullptr && needed <= *size;
  *size = needed;
  if (!fits) return noRoom;
  std::copy_n(text.c_str(), needed, buffer);
  return ERROR_SUCCESS;
}

bool StorePart(WideView part, LPWSTR buffer, std::size_t size) {
  if (part.size() >= size) return false;
  *std::copy(part.begin(), part.end(), buffer) = u'\0';
  return true;
}

std::optional<WebDavPlace> PlaceOf(WideView path) {
  if (path.empty()) return std::nullopt;
  const std::string name = PathToUtf8(path);
  // A backslash is a letter of file names here; a path that begins with one is no local one, but
  // what is left of a path on a drive that has none.
  return name.front() == '\\' ? PlaceOfUncName(name) : PlaceOfLocalPath(name);
}

constexpr std::size_t kMaxPath = 260;
constexpr mode_t kOwnerOnly = 0700;

/// Empty if the environment tells none.
std::string CacheFolder() {
  const char* const cache = std::getenv("XDG_CACHE_HOME");
  if (cache != nullptr && *cache == '/') return cache;
  const char* const home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? std::string(home) + "/.cache" : std::string();
}

bool MakeFolder(const std::string& name) {
  return mkdir(name.c_str(), kOwnerOnly) == 0 || errno == EEXIST;
}

class PosixShell final : public Shell {
 public:
  int _wsplitpath_s(LPCWSTR path, LPWSTR drive, std::size_t driveSize, LPWSTR folder,
                    std::size_t folderSize, LPWSTR name, std::size_t nameSize, LPWSTR extension,
                    std::size_t extensionSize) override {
    const PathParts parts = SplitPath(path);
    if (StorePart(parts.drive, drive, driveSize) && StorePart(parts.folder, folder, folderSize) &&
        StorePart(parts.name, name, nameSize) &&
        StorePart(parts.extension, extension, extensionSize)) {
      return 0;
    }
    for (const LPWSTR part : {drive, folder, name, extension}) *part = u'\0';
    return ERANGE;
  }

  DWORD WNetGetConnectionW(LPCWSTR localName, LPWSTR remoteName, DWORD* size) override {
    const WideView device = localName;
    const bool isDrive =
        device.size() == 2 && device[1] == u':' &&
        ((device[0] >= u'A' && device[0] <= u'Z') || (device[0] >= u'a' && device[0] <= u'z'));
    if (!isDrive) return kErrorBadDevice;
    const auto folder = FindDriveFolder(static_cast<char>(device[0]));
    if (!folder) return kErrorNotConnected;
    const auto place = PlaceOfLocalPath(*folder);
    if (!place) return kErrorNotConnected;
    return Store(PathFromUtf8(place->UncName()), remoteName, size, ERROR_MORE_DATA);
  }

  DWORD DavGetHTTPFromUNCPath(LPCWSTR uncPath, LPWSTR url, DWORD* size) override {
    const auto place = PlaceOf(uncPath);
    if (!place) return ERROR_INVALID_PARAMETER;
    return Store(PathFromUtf8(place->Url()), url, size, ERROR_INSUFFICIENT_BUFFER);
  }

  BOOL SHGetSpecialFolderPathW(HWND, LPWSTR path, int folder, BOOL) override {
    const std::string name = folder == CSIDL_INTERNET_CACHE ? CacheFolder() : std::string();
    if (name.empty()) return FALSE;
    // The folder of all programs may be open to other users; what goes into ours holds documents'
    // values.
    const std::string own = name + "/velandoc";
    if (!MakeFolder(name) || !MakeFolder(own)) return FALSE;
    return StorePart(PathFromUtf8(own), path, kMaxPath) ? TRUE : FALSE;
  }
};

}  // namespace

template <>
Shell& SystemPort<Shell>() {
  static PosixShell port;
  return port;
}

}  // namespace velandoc
