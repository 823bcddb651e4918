// The FileSystem port on Windows: the system's own files.
#include "platform/file_system.h"

// Behind com.h, which includes windows.h.
#include <shlwapi.h>

namespace velandoc {
namespace {

class SystemFileSystem final : public FileSystem {
 public:
  HANDLE CreateFileExclusive(LPCWSTR name) override {
    const HANDLE file = ::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    return file != INVALID_HANDLE_VALUE ? file : nullptr;
  }
  BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD size) override {
    DWORD written = 0;
    if (!::WriteFile(file, buffer, size, &written, nullptr)) return FALSE;
    if (written == size) return TRUE;
    ::SetLastError(ERROR_DISK_FULL);
    return FALSE;
  }
  BOOL CloseHandle(HANDLE file) override { return ::CloseHandle(file); }
  BOOL DeleteFileW(LPCWSTR name) override { return ::DeleteFileW(name); }
  DWORD GetTempPathW(DWORD capacity, LPWSTR buffer) override {
    return ::GetTempPathW(capacity, buffer);
  }
  UINT GetTempFileNameW(LPCWSTR folder, LPCWSTR prefix, LPWSTR name) override {
    return ::GetTempFileNameW(folder, prefix, 0, name);
  }
  HRESULT SHCreateStreamOnFileEx(LPCWSTR name, DWORD mode, IStream** stream) override {
    *stream = nullptr;
    return ::SHCreateStreamOnFileEx(name, mode, 0, FALSE, nullptr, stream);
  }
  DWORD GetLastError() override { return ::GetLastError(); }
};

}  // namespace

template <>
FileSystem& SystemPort<FileSystem>() {
  static SystemFileSystem port;
  return port;
}

}  // namespace velandoc
