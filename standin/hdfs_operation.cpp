#include "standin/hdfs_operation.h"

namespace velandoc::standin {
namespace {

using enum HdfsOperationKind;

constexpr HdfsOperation kOperations[] = {
    {"OPEN", "GET", kOpen, false},       {"GETFILESTATUS", "GET", kStatus, false},
    {"LISTSTATUS", "GET", kList, false}, {"GETHOMEDIRECTORY", "GET", kHome, false},
    {"CREATE", "PUT", kCreate, true},    {"MKDIRS", "PUT", kMakeFolders, true},
    {"RENAME", "PUT", kRename, true},    {"DELETE", "DELETE", kDelete, true},
};

std::string_view ClassOf(std::string_view method) {
  if (method == "PUT") return "PutOpParam";
  if (method == "POST") return "PostOpParam";
  if (method == "DELETE") return "DeleteOpParam";
  return "GetOpParam";
}

}  // namespace

const HdfsOperation& FindHdfsOperation(std::string_view name, std::string_view method) {
  if (method == "HEAD") method = "GET";
  for (const HdfsOperation& operation : kOperations)
    if (operation.name == name && operation.method == method) return operation;
  throw HdfsError(HdfsFault::kIllegalArgument,
                  "Invalid value for webhdfs parameter \"op\": No enum constant "
                  "org.apache.hadoop.hdfs.web.resources." +
                      std::string(ClassOf(method)) + ".Op." + std::string(name));
}

HdfsError HdfsSafeModeError(const std::string& what, const std::string& host) {
  return {HdfsFault::kSafeMode,
          what +
              ". Name node is in safe mode.\nIt was turned on manually. Use \"hdfs dfsadmin "
              "-safemode leave\" to turn safe mode off. NamenodeHostName:" +
              host};
}

HdfsError HdfsGeneratedError(const std::string& caller, const HdfsPath& path) {
  return {HdfsFault::kAccessControl, "Permission denied: user=" + caller +
                                         ", access=WRITE, inode=\"" + path.Text() +
                                         "\":hdfs:supergroup:dr-xr-xr-x"};
}

}  // namespace velandoc::standin
