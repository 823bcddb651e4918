// The operations of WebHDFS that are played, and the refusals that both roles share.
#pragma once

#include <string>
#include <string_view>

#include "standin/hdfs_error.h"
#include "standin/hdfs_path.h"

namespace velandoc::standin {

enum class HdfsOperationKind {
  kOpen,
  kCreate,
  kDelete,
  kRename,
  kMakeFolders,
  kStatus,
  kList,
  kHome,
};

struct HdfsOperation {
  std::string_view name;
  std::string_view method;
  HdfsOperationKind kind;
  bool isWrite;
};

// Each operation belongs to one method; HEAD counts as GET. Throws HdfsError for another pair.
const HdfsOperation& FindHdfsOperation(std::string_view name, std::string_view method);

// `what` is the beginning of its message.
HdfsError HdfsSafeModeError(const std::string& what, const std::string& host);
HdfsError HdfsGeneratedError(const std::string& caller, const HdfsPath& path);

}  // namespace velandoc::standin
