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

bool ReadResponseBody(CWinHttpConnection& connection, void* buffer, ULONG size, ULONG& read) {
  WinHttp& platform = CurrentPort<WinHttp>();
  read = 0;
  DWORD available = 0;
  if (!platform.WinHttpQueryDataAvailable(connection.m_hRequest, &available)) return false;
  if (available == 0) return true;
  DWORD count = 0;
  const BOOL isRead = platform.WinHttpReadData(connection.m_hRequest, buffer, size, &count);
  read = count;
  return isRead != FALSE;
}

HRESULT RewindResponse(CWinHttpConnection& connection) {
  CurrentPort<WinHttp>().WinHttpCloseHandle(connection.m_hRequest);
  connection.m_hRequest = nullptr;
  const HRESULT opened = connection.OpenRequest();
  return FAILED(opened) ? opened : connection.Execute();
}

}  // namespace velandoc
