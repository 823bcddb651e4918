// The same over WinHTTP as hdfs_wininet_watch.h over WinINet: who was spoken to and what came of
// it. Of the failures of its requests the WinHTTP client tells its caller next to nothing.
#pragma once

#include "hosts/command/hdfs_exchange.h"
#include "platform/winhttp.h"

namespace velandoc {

/// As HdfsWinInetWatch, for WinHTTP.
class HdfsWinHttpWatch : public WinHttp {
 public:
  /// `ignoresCertificates`: each request lets certificate problems pass. The client has no way of
  /// its own to that.
  HdfsWinHttpWatch(WinHttp& below, bool ignoresCertificates)
      : m_below(below), m_ignoresCertificates(ignoresCertificates) {}

  HINTERNET WinHttpOpen(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                        DWORD flags) override;
  HINTERNET WinHttpConnect(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                           DWORD reserved) override;
  HINTERNET WinHttpOpenRequest(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                               LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags) override;
  BOOL WinHttpSetOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override;
  BOOL WinHttpQueryOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) override;
  BOOL WinHttpSetCredentials(HINTERNET request, DWORD target, DWORD scheme, LPCWSTR userName,
                             LPCWSTR password, LPVOID parameters) override;
  BOOL WinHttpSendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                          DWORD optionalLength, DWORD totalLength, DWORD_PTR context) override;
  BOOL WinHttpWriteData(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override;
  BOOL WinHttpReceiveResponse(HINTERNET request, LPVOID reserved) override;
  BOOL WinHttpQueryHeaders(HINTERNET request, DWORD infoLevel, LPCWSTR name, LPVOID buffer,
                           DWORD* size, DWORD* index) override;
  BOOL WinHttpQueryDataAvailable(HINTERNET request, DWORD* available) override;
  BOOL WinHttpReadData(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override;
  BOOL WinHttpCloseHandle(HINTERNET handle) override;
  DWORD GetLastError() override;

 private:
  template <class Result>
  Result Keep(Result result);
  /// Keep, of an operation whose failure ends the exchange.
  BOOL Need(HINTERNET request, BOOL result);

  WinHttp& m_below;
  const bool m_ignoresCertificates;
};

}  // namespace velandoc
