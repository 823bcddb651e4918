// A request handle over libcurl: its head, and one exchange after the other, with the redirects and
// logins that belong to it. What the services above do in different ways is left to their classes:
// how a head is built, which redirects are followed how, and where logins come from.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/posix/http/handles.h"
#include "platform/posix/http/header_block.h"
#include "platform/posix/http/transfer.h"

namespace velandoc::http {

class HttpRequest : public HandleObject {
 public:
  // All return ERROR_SUCCESS or a number of error_map.h.

  /// How many bytes Read has at once; waits for the first of them. 0: the end of the body.
  DWORD Available(std::size_t* count);
  /// Fills the buffer unless the body ends before.
  DWORD Read(char* buffer, std::size_t size, std::size_t* read);

  /// Null while there is no answer.
  const ResponseHead* Answer() const;
  const HeaderBlock& Headers() const { return m_sentHeaders; }
  const std::string& Verb() const { return m_verb; }
  const std::string& Target() const { return m_target; }

  /// Who sent the answer, or refused it: after redirects, and the proxy when `ofProxy`.
  const Endpoint& Peer(bool ofProxy) const;
  const CertificateFacts* PeerCertificate() const;
  /// Where the request stands: its own URL, and after redirects the latest one's. Always with a
  /// port.
  std::string Url() const { return Origin(m_hop.server) + m_hop.path; }

 protected:
  struct Hop {
    Endpoint server;
    std::string path;
    std::string verb;
    BodyKind bodyKind = BodyKind::kNone;
    std::optional<Proxy> proxy;
  };

  struct RedirectRules {
    int limit;         // 0: none is followed
    DWORD downgraded;  // from https to http: ERROR_SUCCESS lets it pass
    DWORD bodyIsGone;  // what is needed again was streamed: ERROR_SUCCESS makes it the answer
  };

  HttpRequest(std::shared_ptr<Connect> connect, std::string verb, std::string target, bool secure);

  virtual RedirectRules Redirects() const = 0;
  /// Whether verb and body go along with a redirect of this status; GET goes on otherwise.
  virtual bool KeepsVerb(unsigned status) const = 0;
  /// Makes m_sentHeaders those of the hop that a redirect leads to.
  virtual void AdaptHeaders(bool keepsBody) = 0;

  /// The hop has a server and a proxy: finds the logins that they get with the first request.
  virtual void RecallLogins() = 0;
  /// Null for none.
  virtual const Login* KnownLogin(bool forProxy) const = 0;
  /// After a 401 or 407: whether there is a login to try, which KnownLogin tells from then on.
  virtual bool HasNextLogin() = 0;

  /// Drops the answer, and stands at the handle's own server again.
  void StartOver();
  /// The proxy for the hop's server, and the logins.
  void PrepareHop();
  /// Until the answer's head, for a streamed body until its first byte.
  DWORD Exchange();
  /// Until the request goes out: what fails behind that is told later.
  DWORD BeginExchange();
  /// Sends again until the answer is neither a redirect to follow nor asks for a login that is
  /// known.
  DWORD Settle();

  std::shared_ptr<Connect> m_connect;
  std::string m_verb;
  std::string m_target;
  bool m_secure;
  DWORD m_securityFlags = 0;
  HeaderBlock m_headers;
  HeaderBlock m_sentHeaders;  // the hop's
  std::string m_body;
  std::optional<std::uint64_t> m_bodyLength;  // of a streamed body
  Hop m_hop;
  // Behind what it points to: the plan's body is m_body.
  std::unique_ptr<Transfer> m_transfer;

 private:
  void MakeTransfer();
  /// ERROR_SUCCESS with `*follow` false: the answer stands.
  DWORD PrepareRedirect(bool* follow);

  bool m_answered = false;
};

}  // namespace velandoc::http
