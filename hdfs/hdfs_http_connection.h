// CHdfsHttpConnection, one WebHDFS request over WinHTTP.
#pragma once

#include "connection/winhttp_connection.h"

namespace velandoc {

/// A CWinHttpConnection that asks for text and JSON, and nothing else. Final: who makes one on the
/// heap deletes it as what it is, since the base's destructor is not virtual.
class CHdfsHttpConnection final : public CWinHttpConnection {
 public:
  explicit CHdfsHttpConnection(LPCWSTR url);
};

}  // namespace velandoc
