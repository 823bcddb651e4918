#include "standin/hdfs_owners.h"

#include <utility>

#include "standin/hdfs_error.h"

namespace velandoc::standin {
namespace {

std::string Letters(unsigned permission, bool isFolder) {
  constexpr std::string_view kLetters = "rwxrwxrwx";
  std::string text(1, isFolder ? 'd' : '-');
  for (unsigned i = 0; i < kLetters.size(); ++i)
    text += (permission >> (8 - i)) & 1 ? kLetters[i] : '-';
  return text;
}

const char* NameOf(unsigned wanted) {
  return wanted == kHdfsRead ? "READ" : wanted == kHdfsWrite ? "WRITE" : "EXECUTE";
}

}  // namespace

HdfsRights HdfsOwners::Of(const std::string& path, unsigned permission) const {
  const auto found = m_rights.find(path);
  if (found != m_rights.end()) return found->second;
  // Anybody may make something in the root, as the private folder on disk is no example to follow.
  return {std::string(kHdfsSuperuser), path == "/" ? 0777 : permission & 0777};
}

void HdfsOwners::Set(const std::string& path, const HdfsRights& rights) {
  if (m_rights.size() < kMostPaths || m_rights.contains(path)) m_rights[path] = rights;
}

void HdfsOwners::Remove(const std::string& path) {
  m_rights.erase(path);
  // All that begins with the path and a slash: "0" is the letter behind the slash.
  m_rights.erase(m_rights.lower_bound(path + '/'), m_rights.lower_bound(path + '0'));
}

void HdfsOwners::Move(const std::string& from, const std::string& to) {
  std::map<std::string, HdfsRights> moved;
  if (const auto found = m_rights.find(from); found != m_rights.end()) moved[to] = found->second;
  for (auto row = m_rights.lower_bound(from + '/'); row != m_rights.lower_bound(from + '0'); ++row)
    moved[to + row->first.substr(from.size())] = row->second;
  Remove(from);
  Remove(to);
  m_rights.merge(moved);
}

void CheckHdfsAccess(const HdfsRights& rights, unsigned wanted, const std::string& caller,
                     const std::string& path, bool isFolder) {
  if (caller == kHdfsSuperuser) return;
  const unsigned bits = rights.owner == caller ? rights.permission >> 6 : rights.permission;
  if (bits & wanted) return;
  throw HdfsError(HdfsFault::kAccessControl,
                  "Permission denied: user=" + caller + ", access=" + NameOf(wanted) +
                      ", inode=\"" + path + "\":" + rights.owner + ':' + std::string(kHdfsGroup) +
                      ':' + Letters(rights.permission, isFolder));
}

}  // namespace velandoc::standin
