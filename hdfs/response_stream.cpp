#include "hdfs/response_stream.h"

namespace velandoc {

bool ReadResponseBody(CWinInetConnection& connection, void* buffer, ULONG size, ULONG& read) {
  DWORD count = 0;
  const BOOL isRead =
      CurrentPort<WinInet>().InternetReadFile(connection.m_hRequest, buffer, size, &count);
  read = count;
  return isRead != FALSE;
}

HRESULT RewindResponse(CWinInetConnection& connection) { return connection.Resend(); }

}  // namespace velandoc
