#include "platform/posix/http/http_request.h"

#include <utility>

namespace velandoc::http {
namespace {

// Each refused login is forgotten, so this only bounds a server that names a new realm each time.
constexpr int kMaxLogins = 4;

bool IsRedirect(unsigned status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}  // namespace

HttpRequest::HttpRequest(std::shared_ptr<Connect> connect, std::string verb, std::string target,
                         bool secure)
    : m_connect(std::move(connect)),
      m_verb(std::move(verb)),
      m_target(std::move(target)),
      m_secure(secure) {
  StartOver();
}

void HttpRequest::StartOver() {
  m_transfer.reset();
  m_answered = false;
  m_hop = Hop();
  m_hop.server.secure = m_secure;
  m_hop.server.host = m_connect->host;
  m_hop.server.port = m_connect->port;
  if (m_hop.server.port == 0) m_hop.server.port = m_secure ? 443 : 80;
  m_hop.path = m_target;
  m_hop.verb = m_verb;
}

void HttpRequest::PrepareHop() {
  m_hop.proxy.reset();
  if (m_connect->session->usesProxies) m_hop.proxy = ProxyFor(m_hop.server);
  RecallLogins();
}

void HttpRequest::MakeTransfer() {
  std::string wholeUrl;
  if (m_hop.proxy && m_hop.proxy->TakesWholeUrl(m_hop.server)) {
    wholeUrl = Origin(m_hop.server).append(m_hop.path);
  }
  const TransferPlan plan = {
      .server = m_hop.server,
      .target = wholeUrl.empty() ? m_hop.path : wholeUrl,
      .path = m_hop.path,
      .verb = m_hop.verb,
      .headers = m_sentHeaders,
      .bodyKind = m_hop.bodyKind,
      .body = m_body,
      .bodyLength = m_bodyLength,
      .proxy = m_hop.proxy ? &*m_hop.proxy : nullptr,
      .serverLogin = KnownLogin(false),
      .proxyLogin = m_hop.proxy ? KnownLogin(true) : nullptr,
      .ignoreFlags = m_securityFlags,
  };
  m_transfer.reset();
  m_transfer = std::make_unique<Transfer>(plan);
}

DWORD HttpRequest::Exchange() {
  MakeTransfer();
  return m_transfer->Start();
}

DWORD HttpRequest::BeginExchange() {
  MakeTransfer();
  return m_transfer->StartSending();
}

DWORD HttpRequest::PrepareRedirect(bool* follow) {
  *follow = false;
  const RedirectRules rules = Redirects();
  const ResponseHead& head = m_transfer->Head();
  if (rules.limit == 0 || !IsRedirect(head.status)) return ERROR_SUCCESS;
  const std::string* location = head.headers.Find("Location");
  if (location == nullptr || location->empty()) return ERROR_SUCCESS;
  Endpoint server = m_hop.server;
  std::string path = m_hop.path;
  if (!FollowLocation(*location, server, path)) return ERROR_SUCCESS;
  const bool keepsBody = KeepsVerb(head.status);
  if (keepsBody && m_hop.bodyKind == BodyKind::kStreamed) return rules.bodyIsGone;
  if (m_hop.server.secure && !server.secure && rules.downgraded != ERROR_SUCCESS) {
    return rules.downgraded;
  }
  m_hop.server = std::move(server);
  m_hop.path = std::move(path);
  if (!keepsBody) {
    m_hop.bodyKind = BodyKind::kNone;
    if (m_hop.verb != "HEAD") m_hop.verb = "GET";
  }
  AdaptHeaders(keepsBody);
  *follow = true;
  return ERROR_SUCCESS;
}

DWORD HttpRequest::Settle() {
  int redirects = 0;
  int logins = 0;
  for (;;) {
    // Asked even if a streamed body keeps it from being used: a login that was refused is forgotten
    // all the same.
    const bool hasNextLogin = HasNextLogin() && logins < kMaxLogins;
    if (hasNextLogin && m_hop.bodyKind != BodyKind::kStreamed) {
      ++logins;
    } else if (hasNextLogin) {
      if (const DWORD error = Redirects().bodyIsGone; error != ERROR_SUCCESS) return error;
      break;
    } else {
      bool follow = false;
      const DWORD error = PrepareRedirect(&follow);
      if (error != ERROR_SUCCESS) return error;
      if (!follow) break;
      if (++redirects > Redirects().limit) return ERROR_HTTP_REDIRECT_FAILED;
      PrepareHop();
      logins = 0;
    }
    m_transfer->Drain();
    if (const DWORD error = Exchange(); error != ERROR_SUCCESS) return error;
  }
  m_answered = true;
  return ERROR_SUCCESS;
}

DWORD HttpRequest::Available(std::size_t* count) {
  *count = 0;
  if (!m_answered) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  return m_transfer->Available(count);
}

DWORD HttpRequest::Read(char* buffer, std::size_t size, std::size_t* read) {
  *read = 0;
  if (!m_answered) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  return m_transfer->Read(buffer, size, read);
}

const ResponseHead* HttpRequest::Answer() const {
  return m_answered ? &m_transfer->Head() : nullptr;
}

const Endpoint& HttpRequest::Peer(bool ofProxy) const {
  return ofProxy && m_hop.proxy ? m_hop.proxy->endpoint : m_hop.server;
}

const CertificateFacts* HttpRequest::PeerCertificate() const {
  return m_transfer != nullptr ? &m_transfer->Certificate().facts : nullptr;
}

}  // namespace velandoc::http
