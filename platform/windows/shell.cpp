// The Shell port on Windows: the C library, the network providers, the WebDAV redirector.
#include "platform/shell.h"

// Behind com.h, which includes windows.h.
#include <davclnt.h>
#include <shlobj.h>
#include <stdlib.h>

namespace velandoc {
namespace {

class SystemShell final : public Shell {
 public:
  int _wsplitpath_s(LPCWSTR path, LPWSTR drive, std::size_t driveSize, LPWSTR folder,
                    std::size_t folderSize, LPWSTR name, std::size_t nameSize, LPWSTR extension,
                    std::size_t extensionSize) override {
    return ::_wsplitpath_s(path, drive, driveSize, folder, folderSize, name, nameSize, extension,
                           extensionSize);
  }
  DWORD WNetGetConnectionW(LPCWSTR localName, LPWSTR remoteName, DWORD* size) override {
    return ::WNetGetConnectionW(localName, remoteName, size);
  }
  DWORD DavGetHTTPFromUNCPath(LPCWSTR uncPath, LPWSTR url, DWORD* size) override {
    return ::DavGetHTTPFromUNCPath(uncPath, url, size);
  }
  BOOL SHGetSpecialFolderPathW(HWND owner, LPWSTR path, int folder, BOOL create) override {
    return ::SHGetSpecialFolderPathW(owner, path, folder, create);
  }
};

}  // namespace

template <>
Shell& SystemPort<Shell>() {
  static SystemShell port;
  return port;
}

}  // namespace velandoc
