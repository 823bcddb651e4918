// The WinInet port on Windows: wininet.dll itself.
#include "platform/wininet.h"

namespace velandoc {
namespace {

class SystemWinInet final : public WinInet {
 public:
  HINTERNET InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                          DWORD flags) override {
    return ::InternetOpenW(agent, accessType, proxy, proxyBypass, flags);
  }
  HINTERNET InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                             LPCWSTR userName, LPCWSTR password, DWORD service, DWORD flags,
                             DWORD_PTR context) override {
    return ::InternetConnectW(session, serverName, port, userName, password, service, flags,
                              context);
  }
  HINTERNET HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                             LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags,
                             DWORD_PTR context) override {
    return ::HttpOpenRequestW(connect, verb, objectName, version, referrer, acceptTypes, flags,
                              context);
  }
  BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override {
    return ::HttpSendRequestW(request, headers, headersLength, optional, optionalLength);
  }
  BOOL HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                          INTERNET_BUFFERSW* buffersOut, DWORD flags, DWORD_PTR context) override {
    return ::HttpSendRequestExW(request, buffersIn, buffersOut, flags, context);
  }
  BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override {
    return ::InternetWriteFile(request, buffer, size, written);
  }
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                       DWORD_PTR context) override {
    return ::HttpEndRequestW(request, buffersOut, flags, context);
  }
  BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override {
    return ::InternetReadFile(request, buffer, size, read);
  }
  BOOL HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer, DWORD* size,
                      DWORD* index) override {
    return ::HttpQueryInfoW(request, infoLevel, buffer, size, index);
  }
  DWORD InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                         LPVOID* data) override {
    return ::InternetErrorDlg(parent, request, error, flags, data);
  }
  BOOL InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) override {
    return ::InternetQueryOptionW(handle, option, buffer, size);
  }
  BOOL InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override {
    return ::InternetSetOptionW(handle, option, buffer, size);
  }
  BOOL InternetCloseHandle(HINTERNET handle) override { return ::InternetCloseHandle(handle); }
  HWND GetActiveWindow() override { return ::GetActiveWindow(); }
  DWORD GetLastError() override { return ::GetLastError(); }
};

}  // namespace

template <>
WinInet& SystemPort<WinInet>() {
  static SystemWinInet port;
  return port;
}

}  // namespace velandoc
