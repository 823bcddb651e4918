#include "platform/posix/wininet/request.h"

#include <charconv>
#include <utility>

#include "platform/posix/http/ascii_case.h"

namespace velandoc::wininet {

using namespace http;

namespace {

constexpr int kMaxRedirects = 20;
// Each refused login is forgotten, so this only bounds a server that names a new realm each time.
constexpr int kMaxLogins = 4;
constexpr DWORD kRequestFlagsOfSecurity =
    SECURITY_FLAG_IGNORE_CERT_CN_INVALID | SECURITY_FLAG_IGNORE_CERT_DATE_INVALID |
    SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTPS | SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTP;
constexpr DWORD kSettableSecurityFlags =
    kRequestFlagsOfSecurity | kCertificateIgnoreFlags | SECURITY_FLAG_IGNORE_REVOCATION;

bool IsRedirect(unsigned status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}  // namespace

Request::Request(std::shared_ptr<Connect> connect, std::string verb, WideView objectName,
                 const std::string& acceptTypes, DWORD flags)
    : m_connect(std::move(connect)),
      m_verb(std::move(verb)),
      m_target(RequestTarget(objectName)),
      m_flags(flags),
      // These bits mean the same in both sets of flags.
      m_securityFlags(flags & kRequestFlagsOfSecurity) {
  StartHop();
  if (!acceptTypes.empty()) m_headers.Append("Accept", acceptTypes);
  m_headers.Append("Host", HostHeader(m_hop.server));
}

void Request::StartHop() {
  m_hop = Hop();
  m_hop.server.secure = (m_flags & INTERNET_FLAG_SECURE) != 0;
  m_hop.server.host = m_connect->host;
  m_hop.server.port = m_connect->port;
  if (m_hop.server.port == 0) m_hop.server.port = m_hop.server.secure ? 443 : 80;
  m_hop.path = m_target;
  m_hop.verb = m_verb;
}

DWORD Request::Prepare(std::string_view headers, BodyKind kind, std::uint64_t length) {
  m_transfer.reset();
  m_answered = false;
  m_bodyOpen = false;
  StartHop();
  if (!IsUsableHost(m_hop.server.host)) return ERROR_INTERNET_NAME_NOT_RESOLVED;

  const bool isGet = m_verb == "GET";
  if (kind == BodyKind::kMemory) {
    if (length != 0 || !isGet) m_headers.Set("Content-Length", std::to_string(length));
  } else if (length != 0) {
    m_headers.Set("Content-Length", std::to_string(length));
  }
  if (!m_connect->session->agent.empty()) {
    m_headers.AddIfNew("User-Agent", m_connect->session->agent);
  }
  if ((m_flags & INTERNET_FLAG_NO_CACHE_WRITE) != 0 && (m_verb == "PUT" || m_verb == "POST")) {
    m_headers.AddIfNew("Cache-Control", "no-cache");
  }
  m_headers.ReplaceFromText(headers);

  m_bodyLength.reset();
  if (kind == BodyKind::kMemory) {
    // The caller's word does not count where the length is known: a wrong one would run requests
    // into each other.
    if (m_headers.Find("Content-Length") != nullptr) {
      m_headers.Set("Content-Length", std::to_string(length));
    }
    m_headers.Remove("Transfer-Encoding");
    if (length == 0 && (isGet || m_verb == "HEAD")) kind = BodyKind::kNone;
  } else if (const std::string* text = m_headers.Find("Content-Length")) {
    std::uint64_t declared = 0;
    const char* end = text->data() + text->size();
    const auto [rest, error] = std::from_chars(text->data(), end, declared);
    if (error != std::errc() || rest != end || declared > INT64_MAX) return ERROR_INVALID_PARAMETER;
    m_bodyLength = declared;
  } else {
    m_headers.AddIfNew("Transfer-Encoding", "chunked");
  }
  if ((m_flags & INTERNET_FLAG_KEEP_CONNECTION) != 0) {
    m_headers.Replace("Connection", "Keep-Alive");
  }
  m_hop.bodyKind = kind;
  m_sentHeaders = m_headers;
  RecallLogins();
  return ERROR_SUCCESS;
}

void Request::RecallLogins() {
  m_hop.proxy = ProxyFor(m_hop.server);
  m_hop.serverCredential = CredentialCache::Find(false, m_hop.server);
  m_hop.proxyCredential.reset();
  if (m_hop.proxy) m_hop.proxyCredential = CredentialCache::Find(true, m_hop.proxy->endpoint);
}

DWORD Request::Exchange() {
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
      .serverLogin = m_hop.serverCredential ? &m_hop.serverCredential->login : nullptr,
      .proxyLogin = m_hop.proxyCredential ? &m_hop.proxyCredential->login : nullptr,
      .ignoreFlags = m_securityFlags,
  };
  m_transfer.reset();
  m_transfer = std::make_unique<Transfer>(plan);
  return m_transfer->Start();
}

bool Request::NextLogin(bool forProxy, std::optional<Credential>& current) {
  const Endpoint& endpoint = Peer(forProxy);
  const Challenge challenge = ParseChallenges(
      m_transfer->Head().headers.All(forProxy ? "Proxy-Authenticate" : "WWW-Authenticate"));
  if (current && (current->realm == challenge.realm || challenge.realm.empty())) {
    CredentialCache::Forget(*current);
  }
  std::optional<Credential> next = CredentialCache::Find(forProxy, endpoint, &challenge.realm);
  if (!next || (next->login.scheme & challenge.schemes) == 0) return false;
  current = std::move(next);
  return true;
}

bool Request::HasNextLogin() {
  const unsigned status = m_transfer->Head().status;
  if (status == 401) return NextLogin(false, m_hop.serverCredential);
  if (status == 407 && m_hop.proxy) return NextLogin(true, m_hop.proxyCredential);
  return false;
}

Request::Redirect Request::PrepareRedirect() {
  const ResponseHead& head = m_transfer->Head();
  if ((m_flags & INTERNET_FLAG_NO_AUTO_REDIRECT) != 0 || !IsRedirect(head.status)) {
    return Redirect::kNone;
  }
  const std::string* location = head.headers.Find("Location");
  if (location == nullptr || location->empty()) return Redirect::kNone;
  const bool keepsBody = head.status == 307 || head.status == 308;
  if (keepsBody && m_hop.bodyKind == BodyKind::kStreamed) return Redirect::kNone;
  Endpoint server = m_hop.server;
  std::string path = m_hop.path;
  if (!FollowLocation(*location, server, path)) return Redirect::kNone;
  if (m_hop.server.secure && !server.secure &&
      (m_securityFlags & SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTP) == 0) {
    return Redirect::kRefused;
  }
  m_hop.server = std::move(server);
  m_hop.path = std::move(path);
  // The order on the wire after a redirect is WinINet's: Host behind the caller's headers.
  HeaderBlock& headers = m_sentHeaders;
  const std::string* length = headers.Find("Content-Length");
  const std::string lengthText = length != nullptr && keepsBody ? *length : std::string();
  headers.Remove("Content-Length");
  headers.Replace("Host", HostHeader(m_hop.server));
  if (keepsBody) {
    if (!lengthText.empty()) headers.Append("Content-Length", lengthText);
  } else {
    headers.Remove("Content-Type");
    headers.Remove("Transfer-Encoding");
    m_hop.bodyKind = BodyKind::kNone;
    if (m_hop.verb != "HEAD") m_hop.verb = "GET";
  }
  if (headers.Find("Connection") != nullptr) headers.Replace("Connection", "Keep-Alive");
  return Redirect::kFollow;
}

DWORD Request::Settle() {
  int redirects = 0;
  int logins = 0;
  for (;;) {
    // A streamed body cannot be sent again; a login that it was refused is forgotten all the same.
    const bool hasNextLogin = HasNextLogin();
    if (hasNextLogin && m_hop.bodyKind != BodyKind::kStreamed && logins < kMaxLogins) {
      ++logins;
    } else {
      const Redirect redirect = PrepareRedirect();
      if (redirect == Redirect::kRefused) return ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR;
      if (redirect == Redirect::kNone) break;
      if (++redirects > kMaxRedirects) return ERROR_HTTP_REDIRECT_FAILED;
      RecallLogins();
      logins = 0;
    }
    m_transfer->Drain();
    if (const DWORD error = Exchange(); error != ERROR_SUCCESS) return error;
  }
  m_answered = true;
  return ERROR_SUCCESS;
}

DWORD Request::Send(std::string_view headers, std::string_view body) {
  DWORD error = Prepare(headers, BodyKind::kMemory, body.size());
  if (error != ERROR_SUCCESS) return error;
  m_body = body;
  error = Exchange();
  return error == ERROR_SUCCESS ? Settle() : error;
}

DWORD Request::BeginBody(std::string_view headers, DWORD total) {
  DWORD error = Prepare(headers, BodyKind::kStreamed, total);
  if (error != ERROR_SUCCESS) return error;
  m_body.clear();
  error = Exchange();
  m_bodyOpen = error == ERROR_SUCCESS;
  return error;
}

DWORD Request::WriteBody(const char* data, std::size_t size) {
  if (!m_bodyOpen) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  return m_transfer->Write(data, size);
}

DWORD Request::EndBody() {
  if (!m_bodyOpen) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  m_bodyOpen = false;
  const DWORD error = m_transfer->EndBody();
  return error == ERROR_SUCCESS ? Settle() : error;
}

DWORD Request::Read(char* buffer, std::size_t size, std::size_t* read) {
  *read = 0;
  if (!m_answered) return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
  return m_transfer->Read(buffer, size, read);
}

const ResponseHead* Request::Answer() const { return m_answered ? &m_transfer->Head() : nullptr; }

DWORD Request::SecurityFlags() const {
  return m_securityFlags | (m_hop.server.secure ? SECURITY_FLAG_SECURE : 0);
}

void Request::SetSecurityFlags(DWORD flags) { m_securityFlags = flags & kSettableSecurityFlags; }

const Endpoint& Request::Peer(bool ofProxy) const {
  return ofProxy && m_hop.proxy ? m_hop.proxy->endpoint : m_hop.server;
}

const CertificateFacts* Request::PeerCertificate() const {
  return m_transfer != nullptr ? &m_transfer->Certificate().facts : nullptr;
}

}  // namespace velandoc::wininet
