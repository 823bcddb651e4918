// What HDFS tells of a file or folder, from the answers to GETFILESTATUS and LISTSTATUS.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "hosts/command/hdfs_caller.h"
#include "hosts/command/moment.h"

namespace velandoc {

struct FileStatus {
  std::string path;
  std::string type;  // "FILE", "DIRECTORY" or "SYMLINK"
  std::uint64_t length = 0;
  std::string owner;
  std::string group;
  std::string permission;  // octal: "644"
  std::uint64_t replication = 0;
  std::optional<Moment> modified;
  nlohmann::ordered_json raw;  // as the server wrote it

  bool IsFolder() const { return type == "DIRECTORY"; }
  bool IsFile() const { return type == "FILE"; }
};

std::optional<HdfsFailure> AskStatus(HdfsCaller& caller, const std::string& path,
                                     FileStatus& status);
/// What is in a folder, in the server's order; of a file itself. A name that no local folder could
/// have is a failure: see IsPlainName.
std::optional<HdfsFailure> AskList(HdfsCaller& caller, const std::string& path,
                                   std::vector<FileStatus>& list);

}  // namespace velandoc
