// The WinHttp port on Windows: winhttp.dll itself.
//
// In this order: the system's header defines macros by the names that ours declares as constants.
#include "platform/winhttp.h"

#include <winhttp.h>

namespace velandoc {
namespace {

class SystemWinHttp final : public WinHttp {
 public:
  HINTERNET WinHttpOpen(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                        DWORD flags) override {
    return ::WinHttpOpen(agent, accessType, proxy, proxyBypass, flags);
  }
  HINTERNET WinHttpConnect(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                           DWORD reserved) override {
    return ::WinHttpConnect(session, serverName, port, reserved);
  }
  HINTERNET WinHttpOpenRequest(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                               LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags) override {
    return ::WinHttpOpenRequest(connect, verb, objectName, version, referrer, acceptTypes, flags);
  }
  BOOL WinHttpSetOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override {
    return ::WinHttpSetOption(handle, option, buffer, size);
  }
  BOOL WinHttpQueryOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) override {
    return ::WinHttpQueryOption(handle, option, buffer, size);
  }
  BOOL WinHttpSetCredentials(HINTERNET request, DWORD target, DWORD scheme, LPCWSTR userName,
                             LPCWSTR password, LPVOID parameters) override {
    return ::WinHttpSetCredentials(request, target, scheme, userName, password, parameters);
  }
  BOOL WinHttpSendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                          DWORD optionalLength, DWORD totalLength, DWORD_PTR context) override {
    return ::WinHttpSendRequest(request, headers, headersLength, optional, optionalLength,
                                totalLength, context);
  }
  BOOL WinHttpWriteData(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override {
    return ::WinHttpWriteData(request, buffer, size, written);
  }
  BOOL WinHttpReceiveResponse(HINTERNET request, LPVOID reserved) override {
    return ::WinHttpReceiveResponse(request, reserved);
  }
  BOOL WinHttpQueryHeaders(HINTERNET request, DWORD infoLevel, LPCWSTR name, LPVOID buffer,
                           DWORD* size, DWORD* index) override {
    return ::WinHttpQueryHeaders(request, infoLevel, name, buffer, size, index);
  }
  BOOL WinHttpQueryDataAvailable(HINTERNET request, DWORD* available) override {
    return ::WinHttpQueryDataAvailable(request, available);
  }
  BOOL WinHttpReadData(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override {
    return ::WinHttpReadData(request, buffer, size, read);
  }
  BOOL WinHttpCloseHandle(HINTERNET handle) override { return ::WinHttpCloseHandle(handle); }
  DWORD GetLastError() override { return ::GetLastError(); }
};

}  // namespace

template <>
WinHttp& SystemPort<WinHttp>() {
  static SystemWinHttp port;
  return port;
}

}  // namespace velandoc
