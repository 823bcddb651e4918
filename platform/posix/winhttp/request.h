// WinHTTP's request handle: its head in WinHTTP's order, its redirects, and the logins that its
// owner gave it.
//
// Redirects, by the handle's policy: 301 and 302 go on with verb and body, POST as GET without one;
// 303 as GET (HEAD stays HEAD); 307 and 308 with verb and body. What would need a streamed body
// again fails with ERROR_WINHTTP_RESEND_REQUEST. From http to https quietly; from https to http
// only with WINHTTP_OPTION_REDIRECT_POLICY_ALWAYS, else ERROR_WINHTTP_REDIRECT_FAILED. A Location
// that is missing or of another scheme leaves the redirect as the answer.
//
// Logins: what WinHttpSetCredentials gave goes to the handle's own server (and to no other that a
// redirect leads to) from the first request on, so a streamed body needs no second one. Without it
// the user's Kerberos ticket answers a server that offers Negotiate, as far as the autologon policy
// allows. Nobody is ever asked.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/posix/http/http_request.h"
#include "platform/winhttp_types.h"

namespace velandoc::winhttp {

class Request final : public http::HttpRequest {
 public:
  Request(std::shared_ptr<http::Connect> connect, std::string verb, WideView objectName,
          std::string acceptTypes, DWORD flags);

  // All return ERROR_SUCCESS or a number of error_map.h.

  /// ERROR_WINHTTP_INVALID_OPTION for an option that is not one of a request,
  /// ERROR_INVALID_PARAMETER for a value that it does not have.
  DWORD SetOption(DWORD option, DWORD value);
  DWORD SetCredentials(DWORD target, DWORD scheme, LPCWSTR userName, LPCWSTR password);

  /// Until the request goes out. `total` bytes are announced, of which `first` are the first.
  DWORD Send(std::string_view headers, std::string_view first, DWORD total);
  DWORD Write(const char* data, std::size_t size);
  DWORD Receive();

 private:
  RedirectRules Redirects() const override;
  bool KeepsVerb(unsigned status) const override;
  void AdaptHeaders(bool keepsBody) override;
  void RecallLogins() override;
  const http::Login* KnownLogin(bool forProxy) const override;
  bool HasNextLogin() override;

  bool MayUseTicket() const;
  void BuildHead(std::string_view headers, DWORD total);

  enum class State { kOpen, kSent, kReceived };

  std::string m_acceptTypes;
  State m_state = State::kOpen;
  DWORD m_redirectPolicy = WINHTTP_OPTION_REDIRECT_POLICY_DISALLOW_HTTPS_TO_HTTP;
  DWORD m_autologonPolicy = WINHTTP_AUTOLOGON_SECURITY_LEVEL_MEDIUM;
  std::optional<http::Login> m_serverLogin;
  std::optional<http::Login> m_proxyLogin;
  std::optional<http::Login> m_hopLogin;  // what the hop's server gets
};

}  // namespace velandoc::winhttp
