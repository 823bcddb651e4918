// One request through the current WinInet port, with its handles owned: what most tests of the port
// do.
#pragma once

#include <string>

#include "platform/text.h"
#include "platform/wininet.h"

namespace velandoc::test {

inline constexpr DWORD kUsualFlags = INTERNET_FLAG_KEEP_CONNECTION | INTERNET_FLAG_NO_UI;

/// Session, connection and request; closed in turn.
class Exchange {
 public:
  Exchange(const char* host, INTERNET_PORT port, LPCWSTR verb, LPCWSTR objectName,
           DWORD flags = kUsualFlags);
  ~Exchange();
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  HINTERNET Request() const { return m_request; }
  HINTERNET Connect() const { return m_connect; }
  HINTERNET Session() const { return m_session; }

  /// 0, or the last error.
  DWORD Send(LPCWSTR headers = OLESTR(""), const std::string& body = {});
  /// The head of a streamed body, with "Content-Length: `length`"; a negative length writes none.
  DWORD Begin(long long length);
  DWORD Write(const std::string& data);
  DWORD End();
  /// Reads to the end in steps of `step` bytes. `*error` is 0, or the last error of the read that
  /// failed.
  std::string ReadAll(DWORD step = 8192, DWORD* error = nullptr);
  /// 0 if there is none.
  DWORD Status();
  /// The value, or "(none)".
  std::string Header(DWORD number, DWORD* index = nullptr);

 private:
  HINTERNET m_session;
  HINTERNET m_connect;
  HINTERNET m_request;
};

}  // namespace velandoc::test
