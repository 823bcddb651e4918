// A WinHttp port over another one, in which the N-th operation fails.
#pragma once

#include "platform/winhttp.h"

namespace velandoc::testing {

/// Counts the operations that can fail and makes one of them fail without reaching the port below.
/// Closing and asking for the last error always go through.
class FaultWinHttp : public WinHttp {
 public:
  /// `failAt` counts from 1; 0 never fails.
  FaultWinHttp(WinHttp& below, int failAt, DWORD error)
      : m_below(below), m_failAt(failAt), m_error(error) {}

  int Count() const { return m_count; }
  bool Failed() const { return m_failAt != 0 && m_count >= m_failAt; }

  HINTERNET WinHttpOpen(LPCWSTR agent, DWORD accessType, LPCWSTR proxy, LPCWSTR proxyBypass,
                        DWORD flags) override {
    return Fails() ? nullptr : m_below.WinHttpOpen(agent, accessType, proxy, proxyBypass, flags);
  }
  HINTERNET WinHttpConnect(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                           DWORD reserved) override {
    return Fails() ? nullptr : m_below.WinHttpConnect(session, serverName, port, reserved);
  }
  HINTERNET WinHttpOpenRequest(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                               LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags) override {
    return Fails() ? nullptr
                   : m_below.WinHttpOpenRequest(connect, verb, objectName, version, referrer,
                                                acceptTypes, flags);
  }
  BOOL WinHttpSetOption(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) override {
    return !Fails() && m_below.WinHttpSetOption(handle, option, buffer, size);
  }
  BOOL WinHttpSetCredentials(HINTERNET request, DWORD target, DWORD scheme, LPCWSTR userName,
                             LPCWSTR password, LPVOID parameters) override {
    return !Fails() &&
           m_below.WinHttpSetCredentials(request, target, scheme, userName, password, parameters);
  }
  BOOL WinHttpSendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                          DWORD optionalLength, DWORD totalLength, DWORD_PTR context) override {
    return !Fails() && m_below.WinHttpSendRequest(request, headers, headersLength, optional,
                                                  optionalLength, totalLength, context);
  }
  BOOL WinHttpWriteData(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* written) override {
    *written = 0;
    return !Fails() && m_below.WinHttpWriteData(request, buffer, size, written);
  }
  BOOL WinHttpReceiveResponse(HINTERNET request, LPVOID reserved) override {
    return !Fails() && m_below.WinHttpReceiveResponse(request, reserved);
  }
  BOOL WinHttpQueryHeaders(HINTERNET request, DWORD infoLevel, LPCWSTR name, LPVOID buffer,
                           DWORD* size, DWORD* index) override {
    return !Fails() && m_below.WinHttpQueryHeaders(request, infoLevel, name, buffer, size, index);
  }
  BOOL WinHttpQueryDataAvailable(HINTERNET request, DWORD* available) override {
    *available = 0;
    return !Fails() && m_below.WinHttpQueryDataAvailable(request, available);
  }
  BOOL WinHttpReadData(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override {
    *read = 0;
    return !Fails() && m_below.WinHttpReadData(request, buffer, size, read);
  }
  BOOL WinHttpCloseHandle(HINTERNET handle) override { return m_below.WinHttpCloseHandle(handle); }
  DWORD GetLastError() override { return m_count == m_failAt ? m_error : m_below.GetLastError(); }

 private:
  bool Fails() { return ++m_count == m_failAt; }

  WinHttp& m_below;
  int m_failAt;
  DWORD m_error;
  int m_count = 0;
};

}  // namespace velandoc::testing
