#include "standin/hdfs_disk.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

#include "standin/hdfs_error.h"
#include "standin/utf8.h"

namespace velandoc::standin {
namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// By way of the open folder, whatever happens to the names above it meanwhile.
std::filesystem::path PathOf(const UniqueFd& folder) {
  return std::filesystem::path("/proc/self/fd") / std::to_string(folder.Get());
}

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

}  // namespace

void ThrowDiskError(const std::string& path) {
  const int error = errno;
  if (error == ENAMETOOLONG)
    throw HdfsError(HdfsFault::kPathTooLong,
                    "The maximum path component name limit is exceeded: limit=255: " + path);
  throw HdfsError(HdfsFault::kIo, path + ": " + std::strerror(error));
}

std::optional<struct stat> StatusIn(const UniqueFd& folder, const std::string& name) {
  struct stat status {};
  if (fstatat(folder.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return std::nullopt;
    ThrowDiskError(name);
  }
  if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) return std::nullopt;
  return status;
}

struct stat StatusOf(const UniqueFd& open) {
  struct stat status {};
  if (fstat(open.Get(), &status) != 0) ThrowDiskError("/");
  return status;
}

UniqueFd OpenFolderIn(const UniqueFd& folder, const std::string& name) {
  UniqueFd inner(openat(folder.Get(), name.c_str(), kFolderFlags));
  if (!inner.IsOpen() && errno != ENOENT && errno != ENOTDIR) ThrowDiskError(name);
  return inner;
}

UniqueFd CopyOf(const UniqueFd& folder) {
  // Not a duplicate, which would share its place in the list of names.
  UniqueFd copy(openat(folder.Get(), ".", kFolderFlags));
  if (!copy.IsOpen()) ThrowDiskError("/");
  return copy;
}

std::vector<std::string> NamesIn(const UniqueFd& folder) {
  constexpr std::size_t kMostNames = 100'000;
  UniqueFd copy = CopyOf(folder);
  const std::unique_ptr<DIR, CloseFolder> list(fdopendir(copy.Get()));
  if (!list) ThrowDiskError("/");
  copy.Release();
  std::vector<std::string> names;
  while (const dirent* entry = readdir(list.get())) {
    const std::string name = entry->d_name;
    if (name == "." || name == ".." || !IsUtf8(name) || !StatusIn(folder, name)) continue;
    if (names.size() == kMostNames)
      throw HdfsError(HdfsFault::kIo, "A folder has more than 100,000 entries.");
    names.push_back(name);
  }
  return names;
}

void RemoveTree(const UniqueFd& folder, const std::string& name) {
  std::error_code error;
  std::filesystem::remove_all(PathOf(folder) / name, error);
  if (error) throw HdfsError(HdfsFault::kIo, name + ": " + error.message());
}

void RemoveAllIn(const UniqueFd& folder) {
  for (const auto& entry : std::filesystem::directory_iterator(PathOf(folder)))
    RemoveTree(folder, entry.path().filename());
}

}  // namespace velandoc::standin
