// A WinInet port over another one that writes down, for each thread by itself, whom a HDFS client
// spoke to and what came of it, and counts the bytes of files. A component's object tells its
// caller neither the data node that a request was sent on to nor the status of an upload's second
// answer.
#pragma once

#include "hosts/command/hdfs_exchange.h"
#include "platform/forwarding_wininet.h"

namespace velandoc {

/// Passes every operation on and changes nothing of what the caller sees; the one thing that it
/// adds is asked for by `ignoresCertificates`. For any number of threads: a handle belongs to the
/// thread that made it.
class HdfsWinInetWatch final : public ForwardingWinInet {
 public:
  /// `ignoresCertificates`: each request lets certificate problems pass from the start. The client
  /// itself does so only for what it may send again, which the body of an upload is not.
  HdfsWinInetWatch(WinInet& below, bool ignoresCertificates)
      : ForwardingWinInet(below), m_ignoresCertificates(ignoresCertificates) {}

  HINTERNET InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                             LPCWSTR userName, LPCWSTR password, DWORD service, DWORD flags,
                             DWORD_PTR context) override;
  HINTERNET HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                             LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags,
                             DWORD_PTR context) override;
  BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override;
  BOOL HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                          INTERNET_BUFFERSW* buffersOut, DWORD flags, DWORD_PTR context) override;
  BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override;
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                       DWORD_PTR context) override;
  BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override;
  BOOL InternetCloseHandle(HINTERNET handle) override;

 private:
  DWORD& LastError() override;
  BOOL Answered(HINTERNET request, BOOL result);

  const bool m_ignoresCertificates;
};

}  // namespace velandoc
