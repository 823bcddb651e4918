// The WinInet port: the operations of WinINet that the connections use, under WinINet's names, with
// its arguments and results. Windows calls wininet.dll, a line an operation; Linux answers over
// libcurl and OpenSSL.
//
// Handles come from the three opening operations and are closed once with InternetCloseHandle; a
// child handle must be closed before its parent. A handle belongs to the thread that made it. An
// operation that returns a BOOL or a handle reports failure by FALSE or null and leaves the reason
// for GetLastError, which speaks of the calling thread's latest failed operation and must be asked
// before any other.
#pragma once

#include "platform/port.h"
#include "platform/wininet_types.h"

namespace velandoc {

class WinInet {
 public:
  virtual ~WinInet() = default;

  /// A session. `accessType` INTERNET_OPEN_TYPE_PRECONFIG takes the user's proxies.
  virtual HINTERNET InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy,
                                  LPCWSTR proxyBypass, DWORD flags) = 0;
  /// Binds a session to host and port; nothing is sent. An empty host is ERROR_INVALID_PARAMETER or
  /// fails the send.
  virtual HINTERNET InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                                     LPCWSTR userName, LPCWSTR password, DWORD service, DWORD flags,
                                     DWORD_PTR context) = 0;
  /// A request. `acceptTypes` is null-ended and must stay valid while the handle is open.
  virtual HINTERNET HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                     LPCWSTR version, LPCWSTR referrer, LPCWSTR* acceptTypes,
                                     DWORD flags, DWORD_PTR context) = 0;
  /// Sends head and body, follows redirects, and returns when the final head has arrived.
  /// `headersLength` counts characters, -1 for a null-ended text; `optionalLength` counts bytes.
  /// May be repeated on one handle: the answer of the earlier send is dropped.
  virtual BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                LPVOID optional, DWORD optionalLength) = 0;
  /// Sends the head of a request whose body follows by InternetWriteFile.
  virtual BOOL HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                                  INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                  DWORD_PTR context) = 0;
  /// `*written` is 0 on failure.
  virtual BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) = 0;
  /// Ends the body of HttpSendRequestExW and waits for the answer's head.
  virtual BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                               DWORD_PTR context) = 0;
  /// At most `size` bytes; `*read` 0 with TRUE is the end of the body.
  virtual BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) = 0;
  /// A header or status of the latest answer as text. `*size` is the buffer's size in bytes, and on
  /// success the text's length in bytes without its terminator; ERROR_INSUFFICIENT_BUFFER stores
  /// the size needed.
  virtual BOOL HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer, DWORD* size,
                              DWORD* index) = 0;
  /// ERROR_INTERNET_FORCE_RETRY: send again, something was changed. ERROR_SUCCESS: nothing to ask,
  /// or the user lets a certificate problem pass (the request's security flags are changed
  /// already). ERROR_CANCELLED: the user declined.
  virtual DWORD InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                                 LPVOID* data) = 0;
  virtual BOOL InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) = 0;
  virtual BOOL InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) = 0;
  virtual BOOL InternetCloseHandle(HINTERNET handle) = 0;

  /// The parent for InternetErrorDlg; null where there are no windows.
  virtual HWND GetActiveWindow() = 0;
  virtual DWORD GetLastError() = 0;
};

template <>
WinInet& SystemPort<WinInet>();

}  // namespace velandoc
