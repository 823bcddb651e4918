// The files of HDFS: a folder on disk. No path leads out of it, and links are not there.
//
// Any thread may call. Every operation throws HdfsError where HDFS refuses.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "standin/hdfs_owners.h"
#include "standin/hdfs_path.h"
#include "standin/unique_fd.h"

namespace velandoc::standin {

struct HdfsStatus {
  // Within its folder; empty for what was asked for itself.
  std::string name;
  bool isFolder = false;
  std::uint64_t length = 0;
  // Milliseconds since 1970.
  std::int64_t modified = 0;
  std::int64_t accessed = 0;
  HdfsRights rights;
  std::uint64_t id = 0;
  std::uint64_t children = 0;
};

struct HdfsFile {
  std::shared_ptr<const UniqueFd> file;
  std::uint64_t length = 0;
};

class HdfsFolder {
 public:
  // `directory` has to be there, and must not be a link. Throws std::system_error.
  explicit HdfsFolder(const std::string& directory);

  HdfsStatus Status(const HdfsPath& path, const std::string& caller) const;
  // By the bytes of the names; of a file, itself. Names that are no UTF-8 are left out.
  std::vector<HdfsStatus> List(const HdfsPath& path, const std::string& caller) const;
  HdfsFile Open(const HdfsPath& path, const std::string& caller) const;

  // A new empty file for writing, and the folders to it. An old one of that name is taken away, but
  // stays whole for those who are reading it.
  UniqueFd Create(const HdfsPath& path, bool overwrite, bool createParent, unsigned permission,
                  const std::string& caller);
  bool MakeFolders(const HdfsPath& path, unsigned permission, const std::string& caller);
  bool Remove(const HdfsPath& path, bool recursive, const std::string& caller);
  bool Rename(const HdfsPath& from, const HdfsPath& to, const std::string& caller);

  // Takes away everything, whosever it is.
  void Clear();

 private:
  // As deep as folders were found.
  struct Position {
    UniqueFd folder;
    std::size_t depth = 0;
  };
  struct Entry {
    // The folder that holds it.
    Position parent;
    // Nothing if it is not there; the root has a status but no parent.
    std::optional<struct stat> status;
  };

  Position Walk(const HdfsPath& path, std::size_t count, const std::string& caller) const;
  Entry Find(const HdfsPath& path, const std::string& caller) const;
  // The folders from where `position` stands up to `count` names.
  void MakeRest(const HdfsPath& path, std::size_t count, Position& position,
                const HdfsRights& rights);
  void Check(const HdfsPath& path, std::size_t count, const struct stat& status, unsigned wanted,
             const std::string& caller) const;
  void CheckFolder(const HdfsPath& path, const Position& position, unsigned wanted,
                   const std::string& caller) const;
  HdfsStatus Describe(const std::string& path, const struct stat& status,
                      const UniqueFd* folder) const;

  mutable std::mutex m_mutex;
  UniqueFd m_root;
  HdfsOwners m_owners;
};

}  // namespace velandoc::standin
