// The WinHttp port: the operations of WinHTTP that the connections use, under WinHTTP's names, with
// its arguments and results. Windows calls winhttp.dll, a line an operation; Linux answers over
// libcurl and OpenSSL.
//
// All is synchronous: an operation returns when it is done. No operation shows a dialog or asks
// anybody. Handles come from the three opening operations and are closed once with
// WinHttpCloseHandle; a handle belongs to the thread that made it. An operation that returns a BOOL
// or a handle reports failure by FALSE or null and leaves the reason for GetLastError, which speaks
// of the calling thread's latest failed operation and must be asked before any other.
#pragma once

#include "platform/port.h"
#include "platform/winhttp_types.h"

namespace velandoc {

class WinHttp {
 public:
  virtual ~WinHttp() = default;

  /// A session. `accessType` WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY takes the user's proxies.
  virtual HINTERNET WinHttpOpen(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                                DWORD flags) = 0;
  /// Binds a session to host and port (0: the scheme's own); nothing is sent. An empty host is
  /// refused here or fails the send.
  virtual HINTERNET WinHttpConnect(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                                   DWORD reserved) = 0;
  /// A request. `acceptTypes` is null-ended or null, and must stay valid while the handle is open.
  virtual HINTERNET WinHttpOpenRequest(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                       LPCWSTR version, LPCWSTR referrer, LPCWSTR* acceptTypes,
                                       DWORD flags) = 0;
  /// Before the send. `size` in bytes.
  virtual BOOL WinHttpSetOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) = 0;
  /// WINHTTP_OPTION_URL alone is asked for: the request's URL as a null-ended text, the latest
  /// one's after redirects. `*size` is the buffer's size in bytes. A port that knows none says
  /// FALSE.
  virtual BOOL WinHttpQueryOption(HINTERNET /*handle*/, DWORD /*option*/, LPVOID /*buffer*/,
                                  DWORD* /*size*/) {
    return FALSE;
  }
  /// For the server or the proxy of a request, before the send. `parameters` is null.
  virtual BOOL WinHttpSetCredentials(HINTERNET request, DWORD target, DWORD scheme,
                                     LPCWSTR userName, LPCWSTR password, LPVOID parameters) = 0;
  /// Sends the head, and a body's first part if there is one. `headersLength` counts characters, -1
  /// for a null-ended text; `optionalLength` and `totalLength` count bytes. A `totalLength` above
  /// `optionalLength` announces what WinHttpWriteData is to bring.
  virtual BOOL WinHttpSendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                  LPVOID optional, DWORD optionalLength, DWORD totalLength,
                                  DWORD_PTR context) = 0;
  /// `*written` is 0 on failure.
  virtual BOOL WinHttpWriteData(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) = 0;
  /// Follows redirects, and returns when the final head has arrived. Once for each send.
  virtual BOOL WinHttpReceiveResponse(HINTERNET request, LPVOID reserved) = 0;
  /// A header or status of the answer as text; `name` counts for WINHTTP_QUERY_CUSTOM only. `*size`
  /// is the buffer's size in bytes, and on success the text's length in bytes without its
  /// terminator; ERROR_INSUFFICIENT_BUFFER stores the size needed.
  virtual BOOL WinHttpQueryHeaders(HINTERNET request, DWORD infoLevel, LPCWSTR name, LPVOID buffer,
                                   DWORD* size, DWORD* index) = 0;
  /// Waits for the next bytes of the body and stores how many there are at once; 0 with TRUE is its
  /// end.
  virtual BOOL WinHttpQueryDataAvailable(HINTERNET request, DWORD* available) = 0;
  /// At most `size` bytes; `*read` 0 with TRUE is the end of the body.
  virtual BOOL WinHttpReadData(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) = 0;
  virtual BOOL WinHttpCloseHandle(HINTERNET handle) = 0;

  virtual DWORD GetLastError() = 0;
};

template <>
WinHttp& SystemPort<WinHttp>();

}  // namespace velandoc
