// The FileSystem port on Linux.
#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/posix/last_error.h"
#include "platform/posix/open_file.h"
#include "platform/posix/path_text.h"
#include "platform/text.h"

namespace velandoc {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less the process's mask
constexpr std::size_t kNameCapacity = 260;
constexpr std::size_t kPrefixLength = 3;

DWORD ErrorOf(int number) {
  switch (number) {
    case ENOENT:
      return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
      return ERROR_PATH_NOT_FOUND;
    case EWOULDBLOCK:
      return ERROR_SHARING_VIOLATION;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return ERROR_DISK_FULL;
    case ENOMEM:
      return ERROR_NOT_ENOUGH_MEMORY;
    default:
      return ERROR_ACCESS_DENIED;
  }
}

BOOL Fail() { return FailWith(ErrorOf(errno)); }

/// A file system without locks has nobody to keep out.
bool Lock(int file) { return flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

/// What can't be emptied (a device, a pipe) fails. A file that is empty is left alone: ext4 brings
/// one that was cut to nothing to the disk when it is closed, and a new file need not wait for
/// that.
bool Empty(int file) {
  struct stat state {};
  if (fstat(file, &state) != 0) return false;
  if (S_ISREG(state.st_mode) && state.st_size == 0) return true;
  return ftruncate(file, 0) == 0;
}

class PosixFileSystem final : public FileSystem {
 public:
  HANDLE CreateFileExclusive(LPCWSTR name) override {
    // Emptied only once the lock is had: a file that somebody else works on stays as it is.
    FileDescriptor file(
        open(PathToUtf8(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, kNewFileMode));
    if (!file || !Lock(file.Get()) || !Empty(file.Get())) {
      Fail();
      return nullptr;
    }
    return std::make_unique<OpenFile>(std::move(file)).release();
  }

  BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD size) override {
    auto* const open = static_cast<OpenFile*>(file);
    return open->Write(static_cast<const char*>(buffer), size) ? TRUE : Fail();
  }

  BOOL CloseHandle(HANDLE file) override {
    const std::unique_ptr<OpenFile> open(static_cast<OpenFile*>(file));
    return open->Close() ? TRUE : Fail();
  }

  BOOL DeleteFileW(LPCWSTR name) override {
    return unlink(PathToUtf8(name).c_str()) == 0 ? TRUE : Fail();
  }

  DWORD GetTempPathW(DWORD capacity, LPWSTR buffer) override {
    const char* const chosen = std::getenv("TMPDIR");
    WideString folder = PathFromUtf8(chosen != nullptr && *chosen != 0 ? chosen : "/tmp");
    if (folder.back() != kPathSeparator) folder += kPathSeparator;
    const auto length = static_cast<DWORD>(folder.size());
    if (length >= capacity) return length + 1;
    *std::copy(folder.begin(), folder.end(), buffer) = 0;
    return length;
  }

  UINT GetTempFileNameW(LPCWSTR folder, LPCWSTR prefix, LPWSTR name) override {
    std::string pattern = PathToUtf8(folder);
    if (pattern.empty()) return static_cast<UINT>(FailWith(ERROR_PATH_NOT_FOUND));
    if (pattern.back() != '/') pattern += '/';
    pattern += PathToUtf8(ViewOf(prefix).substr(0, kPrefixLength)) + "XXXXXX.tmp";
    constexpr int suffixLength = 4;
    const FileDescriptor file(mkostemps(pattern.data(), suffixLength, O_CLOEXEC));
    if (!file) return static_cast<UINT>(Fail());
    const WideString path = PathFromUtf8(pattern);
    if (path.size() >= kNameCapacity) {
      unlink(pattern.c_str());
      return static_cast<UINT>(FailWith(ERROR_PATH_NOT_FOUND));
    }
    *std::copy(path.begin(), path.end(), name) = 0;
    return 1;
  }

  HRESULT SHCreateStreamOnFileEx(LPCWSTR name, DWORD mode, IStream** stream) override {
    return ::SHCreateStreamOnFileEx(name, mode, 0, FALSE, nullptr, stream);
  }

  DWORD GetLastError() override { return ThreadLastError(); }
};

}  // namespace

template <>
FileSystem& SystemPort<FileSystem>() {
  static PosixFileSystem port;
  return port;
}

}  // namespace velandoc
