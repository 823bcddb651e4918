// WinINet's request handle: its head in WinINet's order, its redirects, and the logins that this
// process was given.
//
// Redirects: 301, 302 and 303 go on as GET without the body (HEAD stays HEAD), 307 and 308 with
// verb and body; off with INTERNET_FLAG_NO_AUTO_REDIRECT. A streamed body is gone once it is sent,
// so its 307 or 308 is the answer. From http to https quietly; from https to http only with
// SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTP, else ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR. A Location
// that is missing or of another scheme leaves the redirect as the answer.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/posix/http/http_request.h"
#include "platform/posix/wininet/credentials.h"

namespace velandoc::wininet {

class Request final : public http::HttpRequest {
 public:
  Request(std::shared_ptr<http::Connect> connect, std::string verb, WideView objectName,
          const std::string& acceptTypes, DWORD flags);

  /// All return ERROR_SUCCESS or WinINet's number.
  DWORD Send(std::string_view headers, std::string_view body);
  /// `total` 0: the length is the header's, and without one the body goes out chunked.
  DWORD BeginBody(std::string_view headers, DWORD total);
  DWORD WriteBody(const char* data, std::size_t size);
  DWORD EndBody();

  DWORD SecurityFlags() const;
  void SetSecurityFlags(DWORD flags);
  void AddSecurityFlags(DWORD flags) { SetSecurityFlags(m_securityFlags | flags); }

  /// What InternetErrorDlg has tried already for this request, so that it asks for each only once.
  struct Tried {
    std::string netrc;   // origin
    std::string ticket;  // origin
  };
  Tried& TriedLogins() { return m_tried; }

 private:
  RedirectRules Redirects() const override;
  bool KeepsVerb(unsigned status) const override;
  void AdaptHeaders(bool keepsBody) override;
  void RecallLogins() override;
  const http::Login* KnownLogin(bool forProxy) const override;
  bool HasNextLogin() override;

  DWORD Prepare(std::string_view headers, http::BodyKind kind, std::uint64_t length);
  bool NextLogin(bool forProxy, std::optional<Credential>& current);

  DWORD m_flags;
  Tried m_tried;
  std::optional<Credential> m_serverCredential;
  std::optional<Credential> m_proxyCredential;
  bool m_bodyOpen = false;
};

}  // namespace velandoc::wininet
