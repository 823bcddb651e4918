// A request handle: its head as the caller builds it, and one exchange after the other, with the
// redirects and logins that belong to it.
//
// Redirects: 301, 302 and 303 go on as GET without the body (HEAD stays HEAD), 307 and 308 with
// verb and body; off with INTERNET_FLAG_NO_AUTO_REDIRECT. A streamed body is gone once it is sent,
// so its 307 or 308 is the answer. From http to https quietly; from https to http only with
// SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTP, else ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR. A Location
// that is missing or of another scheme leaves the redirect as the answer.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/posix/http/challenge.h"
#include "platform/posix/http/handles.h"
#include "platform/posix/http/header_block.h"
#include "platform/posix/http/transfer.h"
#include "platform/posix/wininet/credentials.h"

namespace velandoc::wininet {

class Request final : public http::HandleObject {
 public:
  Request(std::shared_ptr<http::Connect> connect, std::string verb, WideView objectName,
          const std::string& acceptTypes, DWORD flags);

  /// All return ERROR_SUCCESS or WinINet's number.
  DWORD Send(std::string_view headers, std::string_view body);
  /// `total` 0: the length is the header's, and without one the body goes out chunked.
  DWORD BeginBody(std::string_view headers, DWORD total);
  DWORD WriteBody(const char* data, std::size_t size);
  DWORD EndBody();
  DWORD Read(char* buffer, std::size_t size, std::size_t* read);

  /// Null while there is no answer.
  const http::ResponseHead* Answer() const;
  const http::HeaderBlock& Headers() const { return m_sentHeaders; }
  const std::string& Verb() const { return m_verb; }
  const std::string& Target() const { return m_target; }

  DWORD SecurityFlags() const;
  void SetSecurityFlags(DWORD flags);
  void AddSecurityFlags(DWORD flags) { SetSecurityFlags(m_securityFlags | flags); }

  /// Who sent the answer, or refused it: after redirects, and the proxy when `ofProxy`.
  const http::Endpoint& Peer(bool ofProxy) const;
  const http::CertificateFacts* PeerCertificate() const;

  /// What InternetErrorDlg has tried already for this request, so that it asks for each only once.
  struct Tried {
    std::string netrc;   // origin
    std::string ticket;  // origin
  };
  Tried& TriedLogins() { return m_tried; }

 private:
  struct Hop {
    http::Endpoint server;
    std::string path;
    std::string verb;
    http::BodyKind bodyKind = http::BodyKind::kNone;
    std::optional<http::Proxy> proxy;
    std::optional<Credential> serverCredential;
    std::optional<Credential> proxyCredential;
  };

  DWORD Prepare(std::string_view headers, http::BodyKind kind, std::uint64_t length);
  void StartHop();
  /// The proxy for the hop's server, and the logins that both took before.
  void RecallLogins();
  /// One exchange up to its head, for a streamed body up to its first byte.
  DWORD Exchange();
  /// Whether another known login is to be tried after this 401 or 407.
  bool HasNextLogin();
  bool NextLogin(bool forProxy, std::optional<Credential>& current);
  /// Sends again until the answer is neither a redirect to follow nor asks for a login that is
  /// known.
  DWORD Settle();
  enum class Redirect { kNone, kFollow, kRefused };
  Redirect PrepareRedirect();

  std::shared_ptr<http::Connect> m_connect;
  std::string m_verb;
  std::string m_target;
  DWORD m_flags;
  DWORD m_securityFlags;
  http::HeaderBlock m_headers;
  http::HeaderBlock m_sentHeaders;  // the hop's
  std::string m_body;
  std::optional<std::uint64_t> m_bodyLength;
  Hop m_hop;
  Tried m_tried;
  bool m_bodyOpen = false;
  bool m_answered = false;
  // Behind what it points to: the plan's body is m_body.
  std::unique_ptr<http::Transfer> m_transfer;
};

}  // namespace velandoc::wininet
