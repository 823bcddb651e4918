#include "standin/hdfs_error.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

#include "standin/hdfs_json.h"

namespace velandoc::standin {
namespace {

struct FaultRow {
  HdfsFault fault;
  int status;
  std::string_view javaClass;
};

constexpr FaultRow kFaults[] = {
    {HdfsFault::kAccessControl, 403, "org.apache.hadoop.security.AccessControlException"},
    {HdfsFault::kFileAlreadyExists, 403, "org.apache.hadoop.fs.FileAlreadyExistsException"},
    {HdfsFault::kFileNotFound, 404, "java.io.FileNotFoundException"},
    {HdfsFault::kIllegalArgument, 400, "java.lang.IllegalArgumentException"},
    {HdfsFault::kInvalidPath, 400, "org.apache.hadoop.fs.InvalidPathException"},
    {HdfsFault::kInvalidToken, 403, "org.apache.hadoop.security.token.SecretManager$InvalidToken"},
    {HdfsFault::kIo, 403, "java.io.IOException"},
    {HdfsFault::kParentNotDirectory, 403, "org.apache.hadoop.fs.ParentNotDirectoryException"},
    {HdfsFault::kPathIsNotEmptyDirectory, 403,
     "org.apache.hadoop.fs.PathIsNotEmptyDirectoryException"},
    {HdfsFault::kPathTooLong, 403,
     "org.apache.hadoop.hdfs.protocol.FSLimitException$PathComponentTooLongException"},
    {HdfsFault::kSafeMode, 403, "org.apache.hadoop.hdfs.server.namenode.SafeModeException"},
    {HdfsFault::kStandby, 403, "org.apache.hadoop.ipc.StandbyException"},
};

}  // namespace

Response HdfsErrorAnswer(const HdfsError& error) {
  const FaultRow& row =
      *std::find_if(std::begin(kFaults), std::end(kFaults),
                    [&error](const FaultRow& one) { return one.fault == error.Fault(); });
  const std::string_view name = row.javaClass.substr(row.javaClass.find_last_of(".$") + 1);
  return HdfsJson(
      row.status,
      {{"RemoteException",
        {{"exception", name}, {"javaClassName", row.javaClass}, {"message", error.what()}}}});
}

}  // namespace velandoc::standin
