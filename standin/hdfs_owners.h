// Who owns the files and folders of HDFS and what others may do with them.
//
// Kept beside the disk, whose own owner and permissions are those of the stand-in's process. Not
// for several threads at once.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace velandoc::standin {

// May do everything, and owns what nobody made by WebHDFS.
inline constexpr std::string_view kHdfsSuperuser = "hdfs";
inline constexpr std::string_view kHdfsGroup = "supergroup";
// Whoever comes without a name.
inline constexpr std::string_view kHdfsNobody = "dr.who";

struct HdfsRights {
  std::string owner;
  unsigned permission = 0;
};

// Bits of one digit of a permission.
inline constexpr unsigned kHdfsRead = 4;
inline constexpr unsigned kHdfsWrite = 2;
inline constexpr unsigned kHdfsExecute = 1;

class HdfsOwners {
 public:
  // `permission` is that of the disk, which counts where none was set.
  HdfsRights Of(const std::string& path, unsigned permission) const;

  // Beyond 100,000 paths nothing is noted.
  void Set(const std::string& path, const HdfsRights& rights);
  // With all that lies below.
  void Remove(const std::string& path);
  void Move(const std::string& from, const std::string& to);
  void Clear() { m_rights.clear(); }

 private:
  static constexpr std::size_t kMostPaths = 100'000;

  std::map<std::string, HdfsRights> m_rights;
};

// Throws HdfsError unless `caller` has the right. The superuser is the only one in the group.
void CheckHdfsAccess(const HdfsRights& rights, unsigned wanted, const std::string& caller,
                     const std::string& path, bool isFolder);

}  // namespace velandoc::standin
