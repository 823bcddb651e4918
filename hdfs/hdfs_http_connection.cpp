#include "hdfs/hdfs_http_connection.h"

#include "hdfs/accept_types.h"

namespace velandoc {

CHdfsHttpConnection::CHdfsHttpConnection(LPCWSTR url) : CWinHttpConnection(url) {
  SetAcceptTypes(kHdfsAcceptTypes);
}

}  // namespace velandoc
