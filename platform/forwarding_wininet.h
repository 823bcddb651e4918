// A WinInet port over another one that passes every operation on: what a port that watches another
// one begins with, and overrides where it has something to see.
#pragma once

#include "platform/wininet.h"

namespace velandoc {

/// Changes nothing of what the caller sees. The reason of a failure is read as soon as the port
/// below has failed, before anything that a derived class does can overwrite it, and kept for
/// GetLastError.
class ForwardingWinInet : public WinInet {
 public:
  HINTERNET InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                          DWORD flags) override {
    return Keep(m_below.InternetOpenW(agent, accessType, proxy, proxyBypass, flags));
  }
  HINTERNET InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                             LPCWSTR userName, LPCWSTR password, DWORD service, DWORD flags,
                             DWORD_PTR context) override {
    return Keep(m_below.InternetConnectW(session, serverName, port, userName, password, service,
                                         flags, context));
  }
  HINTERNET HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                             LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags,
                             DWORD_PTR context) override {
    return Keep(m_below.HttpOpenRequestW(connect, verb, objectName, version, referrer, acceptTypes,
                                         flags, context));
  }
  BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override {
    return Keep(
        m_below.HttpSendRequestW(request, headers, headersLength, optional, optionalLength));
  }
  BOOL HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                          INTERNET_BUFFERSW* buffersOut, DWORD flags, DWORD_PTR context) override {
    return Keep(m_below.HttpSendRequestExW(request, buffersIn, buffersOut, flags, context));
  }
  BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override {
    return Keep(m_below.InternetWriteFile(request, buffer, size, written));
  }
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                       DWORD_PTR context) override {
    return Keep(m_below.HttpEndRequestW(request, buffersOut, flags, context));
  }
  BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override {
    return Keep(m_below.InternetReadFile(request, buffer, size, read));
  }
  BOOL HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer, DWORD* size,
                      DWORD* index) override {
    return Keep(m_below.HttpQueryInfoW(request, infoLevel, buffer, size, index));
  }
  DWORD InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                         LPVOID* data) override {
    return m_below.InternetErrorDlg(parent, request, error, flags, data);
  }
  BOOL InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) override {
    return Keep(m_below.InternetQueryOptionW(handle, option, buffer, size));
  }
  BOOL InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override {
    return Keep(m_below.InternetSetOptionW(handle, option, buffer, size));
  }
  BOOL InternetCloseHandle(HINTERNET handle) override {
    return Keep(m_below.InternetCloseHandle(handle));
  }
  HWND GetActiveWindow() override { return m_below.GetActiveWindow(); }
  DWORD GetLastError() override { return LastError(); }

 protected:
  /// `below` must outlive this one.
  explicit ForwardingWinInet(WinInet& below) : m_below(below) {}

  /// The port below, for questions of the derived class's own: their failures are not kept.
  WinInet& Below() { return m_below; }
  /// The error of the latest operation that failed. Kept for one thread; a port that several
  /// threads use keeps one for each.
  virtual DWORD& LastError() { return m_lastError; }

 private:
  template <class Result>
  Result Keep(Result result) {
    if (!result) LastError() = m_below.GetLastError();
    return result;
  }

  WinInet& m_below;
  DWORD m_lastError = 0;
};

}  // namespace velandoc
