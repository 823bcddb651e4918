#include "platform/posix/com/registry_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <utility>

#include "platform/posix/com/file_descriptor.h"
#include "platform/posix/com/registry_text.h"

namespace velandoc {
namespace {

constexpr auto kLockWait = std::chrono::seconds(10);
constexpr auto kLockStep = std::chrono::milliseconds(5);

struct HiveTraits {
  const char* fileName;
  LPCOLESTR name;
  mode_t folderMode;
  mode_t fileMode;
};
constexpr HiveTraits kTraits[] = {
    {"machine.reg", OLESTR("HKEY_LOCAL_MACHINE"), 0755, 0644},
    {"user.reg", OLESTR("HKEY_CURRENT_USER"), 0700, 0600},
};
const HiveTraits& TraitsOf(Hive hive) { return kTraits[static_cast<int>(hive)]; }

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

/// Empty if the user has no home.
std::string FolderOf(Hive hive) {
  if (std::string folder = Environment("VELANDOC_REGISTRY_DIR"); !folder.empty()) return folder;
  if (hive == Hive::kMachine) return "/var/lib/velandoc/registry";
  std::string config = Environment("XDG_CONFIG_HOME");
  if (config.empty() || config.front() != '/') {
    const std::string home = Environment("HOME");
    if (home.empty()) return "";
    config = home + "/.config";
  }
  return config + "/velandoc/registry";
}

DWORD ErrorOf(int number, DWORD otherwise) {
  switch (number) {
    case EACCES:
    case EPERM:
    case EROFS:
      return ERROR_ACCESS_DENIED;
    case ENOSPC:
    case EDQUOT:
      return ERROR_DISK_FULL;
    case ENOMEM:
      return ERROR_NOT_ENOUGH_MEMORY;
    default:
      return otherwise;
  }
}

/// What tells one state of a file from another: files are replaced, so a new state is a new file.
struct Stamp {
  dev_t device = 0;
  ino_t file = 0;
  off_t size = 0;
  std::int64_t changed = 0;  // nanoseconds

  bool operator==(const Stamp&) const = default;
};

Stamp StampOf(const struct stat& state) {
  return {state.st_dev, state.st_ino, state.st_size,
          std::int64_t{state.st_ctim.tv_sec} * 1'000'000'000 + state.st_ctim.tv_nsec};
}

// A file that was changed this short a time ago may be changed again within the clock's step and
// get the number of the file before last: it is read again each time.
constexpr auto kSettled = std::chrono::milliseconds(100);

bool IsSettled(const Stamp& stamp) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return now - std::chrono::nanoseconds(stamp.changed) > kSettled;
}

/// The latest reading of each file.
struct Reading {
  std::string path;
  Stamp stamp;
  std::shared_ptr<const RegistryKey> root;
};
std::mutex readingsMutex;
Reading readings[2];

DWORD ReadAll(int descriptor, std::size_t size, std::string& text) {
  text.resize(size + 1);
  std::size_t filled = 0;
  while (filled < text.size()) {
    const ssize_t count = read(descriptor, text.data() + filled, text.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return ErrorOf(errno, ERROR_CANTREAD);
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  // Longer than it said: someone writes into it in place.
  if (filled > size) return ERROR_BADDB;
  text.resize(filled);
  return ERROR_SUCCESS;
}

DWORD LoadFile(Hive hive, const std::string& path, std::shared_ptr<const RegistryKey>& root) {
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file && (errno == ENOENT || errno == ENOTDIR)) {
    root = std::make_shared<RegistryKey>();
    return ERROR_SUCCESS;
  }
  struct stat state {};
  if (!file || fstat(file.Get(), &state) != 0) return ErrorOf(errno, ERROR_CANTREAD);
  if (!S_ISREG(state.st_mode)) return ERROR_CANTREAD;
  if (state.st_size > static_cast<off_t>(kMaxRegistryFile)) return ERROR_BADDB;
  const Stamp stamp = StampOf(state);
  Reading& reading = readings[static_cast<int>(hive)];
  {
    const std::lock_guard lock(readingsMutex);
    if (reading.root != nullptr && reading.path == path && reading.stamp == stamp) {
      root = reading.root;
      return ERROR_SUCCESS;
    }
  }
  std::string text;
  const DWORD error = ReadAll(file.Get(), static_cast<std::size_t>(state.st_size), text);
  if (error != ERROR_SUCCESS) return error;
  auto loaded = std::make_shared<RegistryKey>();
  if (!ReadRegistryText(text, TraitsOf(hive).name, *loaded)) return ERROR_BADDB;
  root = loaded;
  if (!IsSettled(stamp)) return ERROR_SUCCESS;
  const std::lock_guard lock(readingsMutex);
  reading = {path, stamp, std::move(loaded)};
  return ERROR_SUCCESS;
}

DWORD MakeFolder(const std::string& folder, mode_t mode) {
  for (std::size_t end = 1; end != std::string::npos;) {
    end = folder.find('/', end + 1);
    if (mkdir(folder.substr(0, end).c_str(), mode) != 0 && errno != EEXIST) {
      return ErrorOf(errno, ERROR_CANTWRITE);
    }
  }
  return ERROR_SUCCESS;
}

DWORD Lock(const FileDescriptor& file) {
  const auto deadline = std::chrono::steady_clock::now() + kLockWait;
  while (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return ErrorOf(errno, ERROR_CANTWRITE);
    if (std::chrono::steady_clock::now() > deadline) return ERROR_SHARING_VIOLATION;
    std::this_thread::sleep_for(kLockStep);
  }
  return ERROR_SUCCESS;
}

DWORD WriteAndSync(const std::string& path, mode_t mode, const std::string& text) {
  const FileDescriptor file(
      open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, mode));
  if (!file) return ErrorOf(errno, ERROR_CANTWRITE);
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t count = write(file.Get(), text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return ErrorOf(errno, ERROR_CANTWRITE);
    done += static_cast<std::size_t>(count);
  }
  return fsync(file.Get()) == 0 ? ERROR_SUCCESS : ErrorOf(errno, ERROR_CANTWRITE);
}

/// The lock keeps the temporary name to one writer.
DWORD ReplaceFile(const std::string& folder, const std::string& path, mode_t mode,
                  const std::string& text) {
  const std::string fresh = path + ".new";
  DWORD error = WriteAndSync(fresh, mode, text);
  if (error == ERROR_SUCCESS && std::rename(fresh.c_str(), path.c_str()) != 0) {
    error = ErrorOf(errno, ERROR_CANTWRITE);
  }
  if (error != ERROR_SUCCESS) {
    unlink(fresh.c_str());
    return error;
  }
  // The new name must outlast a crash as well; a file system that can't say so has done what it
  // can.
  const FileDescriptor directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory) fsync(directory.Get());
  return ERROR_SUCCESS;
}

/// A hive under its lock, as it was read and as it is to be written.
struct LockedHive {
  Hive hive = Hive::kMachine;
  std::string folder;
  std::string path;
  FileDescriptor lock;
  std::shared_ptr<const RegistryKey> before;
  std::shared_ptr<const RegistryKey> after;
};

DWORD OpenLocked(Hive hive, LockedHive& locked) {
  const HiveTraits& traits = TraitsOf(hive);
  locked.hive = hive;
  locked.folder = FolderOf(hive);
  if (locked.folder.empty()) return ERROR_PATH_NOT_FOUND;
  DWORD error = MakeFolder(locked.folder, traits.folderMode);
  if (error != ERROR_SUCCESS) return error;
  locked.path = HivePath(hive);
  locked.lock = FileDescriptor(open((locked.path + ".lock").c_str(),
                                    O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, traits.fileMode));
  if (!locked.lock) return ErrorOf(errno, ERROR_CANTWRITE);
  error = Lock(locked.lock);
  if (error != ERROR_SUCCESS) return error;
  error = LoadFile(hive, locked.path, locked.before);
  locked.after = locked.before;
  return error;
}

/// A change that fails half done must not show.
DWORD ChangeCopy(LockedHive& locked, const std::function<DWORD(RegistryKey& root)>& change) {
  auto copy = std::make_shared<RegistryKey>(*locked.after);
  const DWORD error = change(*copy);
  if (error == ERROR_SUCCESS) locked.after = std::move(copy);
  return error;
}

DWORD Write(const LockedHive& locked) {
  const HiveTraits& traits = TraitsOf(locked.hive);
  const std::string text = WriteRegistryText(*locked.after, traits.name);
  if (text.size() > kMaxRegistryFile) return ERROR_BADDB;
  if (text == WriteRegistryText(*locked.before, traits.name)) return ERROR_SUCCESS;
  return ReplaceFile(locked.folder, locked.path, traits.fileMode, text);
}

/// What the thread has begun to change. A bare pointer: a thread's object with a destructor would
/// keep the runtime loaded until the thread ends.
constinit thread_local LockedHive* t_begun = nullptr;

LockedHive* Begun(Hive hive) {
  return t_begun != nullptr && t_begun->hive == hive ? t_begun : nullptr;
}

}  // namespace

std::string HivePath(Hive hive) {
  const std::string folder = FolderOf(hive);
  return folder.empty() ? folder : folder + "/" + TraitsOf(hive).fileName;
}

DWORD BeginHiveChanges(Hive hive) try {
  if (t_begun != nullptr) return ERROR_BUSY;
  auto locked = std::make_unique<LockedHive>();
  const DWORD error = OpenLocked(hive, *locked);
  if (error == ERROR_SUCCESS) t_begun = locked.release();
  return error;
} catch (const std::bad_alloc&) {
  return ERROR_NOT_ENOUGH_MEMORY;
}

DWORD EndHiveChanges() try {
  const std::unique_ptr<const LockedHive> ended(std::exchange(t_begun, nullptr));
  return ended ? Write(*ended) : ERROR_SUCCESS;
} catch (const std::bad_alloc&) {
  return ERROR_NOT_ENOUGH_MEMORY;
}

DWORD LoadHive(Hive hive, std::shared_ptr<const RegistryKey>& root) {
  if (const LockedHive* begun = Begun(hive)) {
    root = begun->after;
    return ERROR_SUCCESS;
  }
  const std::string path = HivePath(hive);
  if (path.empty()) {
    root = std::make_shared<RegistryKey>();
    return ERROR_SUCCESS;
  }
  return LoadFile(hive, path, root);
}

DWORD ChangeHive(Hive hive, const std::function<DWORD(RegistryKey& root)>& change) {
  if (LockedHive* begun = Begun(hive)) return ChangeCopy(*begun, change);
  LockedHive locked;
  DWORD error = OpenLocked(hive, locked);
  if (error == ERROR_SUCCESS) error = ChangeCopy(locked, change);
  return error == ERROR_SUCCESS ? Write(locked) : error;
}

}  // namespace velandoc
