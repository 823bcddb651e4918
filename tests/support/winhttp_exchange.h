// One request through the current WinHttp port, with its handles owned: what most tests of the port
// do.
#pragma once

#include <string>

#include "platform/text.h"
#include "platform/winhttp.h"

namespace velandoc::test {

/// Session, connection and request; closed in turn.
class HttpExchange {
 public:
  HttpExchange(const char* host, INTERNET_PORT port, LPCWSTR verb, LPCWSTR objectName,
               DWORD flags = 0, DWORD accessType = WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY);
  ~HttpExchange();
  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;

  HINTERNET Request() const { return m_request; }
  HINTERNET Connect() const { return m_connect; }
  HINTERNET Session() const { return m_session; }

  // 0, or the last error.

  DWORD SetOption(DWORD option, DWORD value);
  DWORD SetCredentials(DWORD scheme, LPCWSTR userName, LPCWSTR password,
                       DWORD target = WINHTTP_AUTH_TARGET_SERVER);
  /// The head, with all of `body` behind it; `total` above its length announces more.
  DWORD Send(const std::string& body = {}, DWORD total = 0, LPCWSTR headers = nullptr);
  DWORD Write(const std::string& data);
  DWORD Receive();
  /// Send and Receive.
  DWORD Run();

  /// Reads to the end in steps of `step` bytes, asking for each what there is. `*error` is 0, or
  /// the last error of the operation that failed.
  std::string ReadAll(DWORD step = 8192, DWORD* error = nullptr);
  /// 0 if there is none.
  DWORD Status();
  /// The value, or "(none)".
  std::string Header(DWORD number, DWORD* index = nullptr, LPCWSTR name = nullptr);

 private:
  HINTERNET m_session;
  HINTERNET m_connect;
  HINTERNET m_request;
};

}  // namespace velandoc::test
