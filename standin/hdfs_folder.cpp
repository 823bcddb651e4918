#include "standin/hdfs_folder.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "standin/hdfs_disk.h"
#include "standin/hdfs_error.h"

namespace velandoc::standin {
namespace {

constexpr unsigned kFolderPermission = 0755;

std::int64_t Milliseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
}

std::string Below(const std::string& folder, const std::string& name) {
  return (folder == "/" ? "" : folder) + '/' + name;
}

}  // namespace

HdfsFolder::HdfsFolder(const std::string& directory)
    : m_root(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {
  if (!m_root.IsOpen()) throw std::system_error(errno, std::generic_category(), directory);
}

void HdfsFolder::Check(const HdfsPath& path, std::size_t count, const struct stat& status,
                       unsigned wanted, const std::string& caller) const {
  const std::string text = path.Text(count);
  CheckHdfsAccess(m_owners.Of(text, status.st_mode), wanted, caller, text, S_ISDIR(status.st_mode));
}

void HdfsFolder::CheckFolder(const HdfsPath& path, const Position& position, unsigned wanted,
                             const std::string& caller) const {
  Check(path, position.depth, StatusOf(position.folder), wanted, caller);
}

HdfsFolder::Position HdfsFolder::Walk(const HdfsPath& path, std::size_t count,
                                      const std::string& caller) const {
  Position position{CopyOf(m_root), 0};
  for (;;) {
    CheckFolder(path, position, kHdfsExecute, caller);
    if (position.depth == count) return position;
    const std::string& name = path.Names()[position.depth];
    const auto status = StatusIn(position.folder, name);
    if (!status) return position;
    if (!S_ISDIR(status->st_mode))
      throw HdfsError(HdfsFault::kParentNotDirectory,
                      path.Text(position.depth + 1) + " (is not a directory)");
    UniqueFd next = OpenFolderIn(position.folder, name);
    if (!next.IsOpen()) return position;
    position.folder = std::move(next);
    ++position.depth;
  }
}

HdfsFolder::Entry HdfsFolder::Find(const HdfsPath& path, const std::string& caller) const {
  if (path.IsRoot()) return {{}, StatusOf(m_root)};
  const std::size_t depth = path.Names().size() - 1;
  Entry entry{Walk(path, depth, caller), std::nullopt};
  if (entry.parent.depth == depth) entry.status = StatusIn(entry.parent.folder, path.Name());
  return entry;
}

void HdfsFolder::MakeRest(const HdfsPath& path, std::size_t count, Position& position,
                          const HdfsRights& rights) {
  while (position.depth < count) {
    const std::string& name = path.Names()[position.depth];
    if (mkdirat(position.folder.Get(), name.c_str(), 0777) != 0)
      ThrowDiskError(path.Text(position.depth + 1));
    position.folder = OpenFolderIn(position.folder, name);
    ++position.depth;
    m_owners.Set(path.Text(position.depth), rights);
  }
}

HdfsStatus HdfsFolder::Describe(const std::string& path, const struct stat& status,
                                const UniqueFd* folder) const {
  HdfsStatus result;
  result.isFolder = S_ISDIR(status.st_mode);
  result.length = result.isFolder ? 0 : static_cast<std::uint64_t>(status.st_size);
  result.modified = Milliseconds(status.st_mtim);
  result.accessed = result.isFolder ? 0 : Milliseconds(status.st_atim);
  result.rights = m_owners.Of(path, status.st_mode);
  result.id = status.st_ino;
  if (folder && folder->IsOpen()) result.children = NamesIn(*folder).size();
  return result;
}

HdfsStatus HdfsFolder::Status(const HdfsPath& path, const std::string& caller) const {
  const std::lock_guard lock(m_mutex);
  const Entry entry = Find(path, caller);
  if (!entry.status)
    throw HdfsError(HdfsFault::kFileNotFound, "File does not exist: " + path.Text());
  if (path.IsRoot()) return Describe("/", *entry.status, &m_root);
  const UniqueFd folder = OpenFolderIn(entry.parent.folder, path.Name());
  return Describe(path.Text(), *entry.status, &folder);
}

std::vector<HdfsStatus> HdfsFolder::List(const HdfsPath& path, const std::string& caller) const {
  const std::lock_guard lock(m_mutex);
  const Entry entry = Find(path, caller);
  if (!entry.status)
    throw HdfsError(HdfsFault::kFileNotFound, "File " + path.Text() + " does not exist.");
  if (!S_ISDIR(entry.status->st_mode)) return {Describe(path.Text(), *entry.status, nullptr)};
  Check(path, path.Names().size(), *entry.status, kHdfsRead, caller);
  const UniqueFd folder =
      path.IsRoot() ? CopyOf(m_root) : OpenFolderIn(entry.parent.folder, path.Name());
  std::vector<std::string> names = NamesIn(folder);
  std::sort(names.begin(), names.end());
  std::vector<HdfsStatus> list;
  for (const std::string& name : names) {
    const auto status = StatusIn(folder, name);
    if (!status) continue;
    const UniqueFd inner = OpenFolderIn(folder, name);
    list.push_back(Describe(Below(path.Text(), name), *status, &inner));
    list.back().name = name;
  }
  return list;
}

HdfsFile HdfsFolder::Open(const HdfsPath& path, const std::string& caller) const {
  const std::lock_guard lock(m_mutex);
  const Entry entry = Find(path, caller);
  if (!entry.status)
    throw HdfsError(HdfsFault::kFileNotFound, "File " + path.Text() + " not found.");
  if (S_ISDIR(entry.status->st_mode))
    throw HdfsError(HdfsFault::kFileNotFound, "Path is not a file: " + path.Text());
  Check(path, path.Names().size(), *entry.status, kHdfsRead, caller);
  UniqueFd file(openat(entry.parent.folder.Get(), path.Name().c_str(),
                       O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.IsOpen()) ThrowDiskError(path.Text());
  const auto length = static_cast<std::uint64_t>(StatusOf(file).st_size);
  return {std::make_shared<const UniqueFd>(std::move(file)), length};
}

UniqueFd HdfsFolder::Create(const HdfsPath& path, bool overwrite, bool createParent,
                            unsigned permission, const std::string& caller) {
  const std::lock_guard lock(m_mutex);
  Entry entry = Find(path, caller);
  if (entry.status && S_ISDIR(entry.status->st_mode))
    throw HdfsError(HdfsFault::kFileAlreadyExists, path.Text() + " already exists as a directory");
  if (entry.status && !overwrite)
    throw HdfsError(HdfsFault::kFileAlreadyExists,
                    path.Text() + " for client 127.0.0.1 already exists");
  const std::size_t depth = path.Names().size() - 1;
  if (entry.status) {
    Check(path, depth + 1, *entry.status, kHdfsWrite, caller);
    if (unlinkat(entry.parent.folder.Get(), path.Name().c_str(), 0) != 0)
      ThrowDiskError(path.Text());
  } else {
    if (entry.parent.depth < depth && !createParent)
      throw HdfsError(HdfsFault::kFileNotFound,
                      "Parent directory doesn't exist: " + path.Text(depth));
    CheckFolder(path, entry.parent, kHdfsWrite, caller);
    MakeRest(path, depth, entry.parent, {caller, kFolderPermission});
  }
  UniqueFd file(openat(entry.parent.folder.Get(), path.Name().c_str(),
                       O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  if (!file.IsOpen()) ThrowDiskError(path.Text());
  m_owners.Set(path.Text(), {caller, permission});
  return file;
}

bool HdfsFolder::MakeFolders(const HdfsPath& path, unsigned permission, const std::string& caller) {
  const std::lock_guard lock(m_mutex);
  Entry entry = Find(path, caller);
  if (entry.status) {
    if (S_ISDIR(entry.status->st_mode)) return true;
    throw HdfsError(HdfsFault::kFileAlreadyExists, "Path is not a directory: " + path.Text());
  }
  CheckFolder(path, entry.parent, kHdfsWrite, caller);
  MakeRest(path, path.Names().size() - 1, entry.parent, {caller, kFolderPermission});
  MakeRest(path, path.Names().size(), entry.parent, {caller, permission});
  return true;
}

bool HdfsFolder::Remove(const HdfsPath& path, bool recursive, const std::string& caller) {
  const std::lock_guard lock(m_mutex);
  if (path.IsRoot()) return false;
  const Entry entry = Find(path, caller);
  if (!entry.status) return false;
  CheckFolder(path, entry.parent, kHdfsWrite, caller);
  const bool isFolder = S_ISDIR(entry.status->st_mode);
  if (isFolder && !recursive && !NamesIn(OpenFolderIn(entry.parent.folder, path.Name())).empty())
    throw HdfsError(HdfsFault::kPathIsNotEmptyDirectory,
                    '`' + path.Text() + " is non empty': Directory is not empty");
  // An empty folder too, as links on disk may be in it, which count for nothing here.
  RemoveTree(entry.parent.folder, path.Name());
  m_owners.Remove(path.Text());
  return true;
}

bool HdfsFolder::Rename(const HdfsPath& from, const HdfsPath& to, const std::string& caller) {
  const std::lock_guard lock(m_mutex);
  if (from.IsRoot()) return false;
  const Entry source = Find(from, caller);
  if (!source.status) return false;
  const bool isFolder = S_ISDIR(source.status->st_mode);
  if (!isFolder && from.Text() == to.Text()) return true;
  // A folder as the new name means: into it.
  const Entry named = Find(to, caller);
  const bool isInto = named.status && S_ISDIR(named.status->st_mode);
  const HdfsPath target = isInto ? HdfsPath(Below(to.Text(), from.Name())) : to;
  if (isFolder && (target.Text() + '/').starts_with(from.Text() + '/')) return false;
  const Entry place = Find(target, caller);
  if (place.status || place.parent.depth + 1 < target.Names().size()) return false;
  CheckFolder(from, source.parent, kHdfsWrite, caller);
  CheckFolder(target, place.parent, kHdfsWrite, caller);
  if (renameat(source.parent.folder.Get(), from.Name().c_str(), place.parent.folder.Get(),
               target.Name().c_str()) != 0)
    ThrowDiskError(target.Text());
  m_owners.Move(from.Text(), target.Text());
  return true;
}

void HdfsFolder::Clear() {
  const std::lock_guard lock(m_mutex);
  RemoveAllIn(m_root);
  m_owners.Clear();
}

}  // namespace velandoc::standin
