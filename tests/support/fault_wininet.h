// A WinInet port over another one, in which the N-th operation fails.
#pragma once

#include "platform/wininet.h"

namespace velandoc::testing {

/// Counts the operations that can fail and makes one of them fail without reaching the port below.
/// Closing, asking for the last error and asking for the active window always go through.
class FaultWinInet : public WinInet {
 public:
  /// `failAt` counts from 1; 0 never fails.
  FaultWinInet(WinInet& below, int failAt, DWORD error)
      : m_below(below), m_failAt(failAt), m_error(error) {}

  int Count() const { return m_count; }
  bool Failed() const { return m_failAt != 0 && m_count >= m_failAt; }

  HINTERNET InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                          DWORD flags) override {
    return Fails() ? nullptr : m_below.InternetOpenW(agent, accessType, proxy, proxyBypass, flags);
  }
  HINTERNET InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                             LPCWSTR userName, LPCWSTR password, DWORD service, DWORD flags,
                             DWORD_PTR context) override {
    return Fails() ? nullptr
                   : m_below.InternetConnectW(session, serverName, port, userName, password,
                                              service, flags, context);
  }
  HINTERNET HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                             LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags,
                             DWORD_PTR context) override {
    return Fails() ? nullptr
                   : m_below.HttpOpenRequestW(connect, verb, objectName, version, referrer,
                                              acceptTypes, flags, context);
  }
  BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override {
    return !Fails() &&
           m_below.HttpSendRequestW(request, headers, headersLength, optional, optionalLength);
  }
  BOOL HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                          INTERNET_BUFFERSW* buffersOut, DWORD flags, DWORD_PTR context) override {
    return !Fails() && m_below.HttpSendRequestExW(request, buffersIn, buffersOut, flags, context);
  }
  BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override {
    *written = 0;
    return !Fails() && m_below.InternetWriteFile(request, buffer, size, written);
  }
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                       DWORD_PTR context) override {
    return !Fails() && m_below.HttpEndRequestW(request, buffersOut, flags, context);
  }
  BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override {
    *read = 0;
    return !Fails() && m_below.InternetReadFile(request, buffer, size, read);
  }
  BOOL HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer, DWORD* size,
                      DWORD* index) override {
    return !Fails() && m_below.HttpQueryInfoW(request, infoLevel, buffer, size, index);
  }
  /// Its failure is the user's refusal, whatever the error asked for.
  DWORD InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                         LPVOID* data) override {
    return Fails() ? ERROR_CANCELLED
                   : m_below.InternetErrorDlg(parent, request, error, flags, data);
  }
  BOOL InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD* size) override {
    return !Fails() && m_below.InternetQueryOptionW(handle, option, buffer, size);
  }
  BOOL InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override {
    return !Fails() && m_below.InternetSetOptionW(handle, option, buffer, size);
  }
  BOOL InternetCloseHandle(HINTERNET handle) override {
    return m_below.InternetCloseHandle(handle);
  }
  HWND GetActiveWindow() override { return m_below.GetActiveWindow(); }
  DWORD GetLastError() override { return m_count == m_failAt ? m_error : m_below.GetLastError(); }

 private:
  bool Fails() { return ++m_count == m_failAt; }

  WinInet& m_below;
  int m_failAt;
  DWORD m_error;
  int m_count = 0;
};

}  // namespace velandoc::testing
