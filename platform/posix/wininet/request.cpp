#include "platform/posix/wininet/request.h"

#include <charconv>
#include <utility>

#include "platform/posix/http/challenge.h"

namespace velandoc::wininet {

using namespace http;

namespace {

constexpr int kMaxRedirects = 20;
constexpr DWORD kRequestFlagsOfSecurity =
    SECURITY_FLAG_IGNORE_CERT_CN_INVALID | SECURITY_FLAG_IGNORE_CERT_DATE_INVALID |
    SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTPS | SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTP;
constexpr DWORD kSettableSecurityFlags =
    kRequestFlagsOfSecurity | kCertificateIgnoreFlags | SECURITY_FLAG_IGNORE_REVOCATION;

}  // namespace

Request::Request(std::shared_ptr<Connect> connect, std::string verb, WideView objectName,
                 const std::string& acceptTypes, DWORD flags)
    : HttpRequest(std::move(connect), std::move(verb), RequestTarget(objectName),
                  (flags & INTERNET_FLAG_SECURE) != 0),
      m_flags(flags) {
  // These bits mean the same in both sets of flags.
  m_securityFlags = flags & kRequestFlagsOfSecurity;
  if (!acceptTypes.empty()) m_headers.Append("Accept", acceptTypes);
  m_headers.Append("Host", HostHeader(m_hop.server));
}

DWORD Request::Prepare(std::string_view headers, BodyKind kind, std::uint64_t length) {
  m_bodyOpen = false;
  StartOver();
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
  PrepareHop();
  return ERROR_SUCCESS;
}

void Request::RecallLogins() {
  m_serverCredential = CredentialCache::Find(false, m_hop.server);
  m_proxyCredential.reset();
  if (m_hop.proxy) m_proxyCredential = CredentialCache::Find(true, m_hop.proxy->endpoint);
}

const Login* Request::KnownLogin(bool forProxy) const {
  const std::optional<Credential>& credential = forProxy ? m_proxyCredential : m_serverCredential;
  return credential ? &credential->login : nullptr;
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
  if (status == 401) return NextLogin(false, m_serverCredential);
  if (status == 407 && m_hop.proxy) return NextLogin(true, m_proxyCredential);
  return false;
}

HttpRequest::RedirectRules Request::Redirects() const {
  const bool follows = (m_flags & INTERNET_FLAG_NO_AUTO_REDIRECT) == 0;
  const bool mayLeaveTls = (m_securityFlags & SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTP) != 0;
  return {
      .limit = follows ? kMaxRedirects : 0,
      .downgraded =
          mayLeaveTls ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR},
      .bodyIsGone = ERROR_SUCCESS,
  };
}

bool Request::KeepsVerb(unsigned status) const { return status == 307 || status == 308; }

void Request::AdaptHeaders(bool keepsBody) {
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
  }
  if (headers.Find("Connection") != nullptr) headers.Replace("Connection", "Keep-Alive");
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

DWORD Request::SecurityFlags() const {
  return m_securityFlags | (m_hop.server.secure ? SECURITY_FLAG_SECURE : 0);
}

void Request::SetSecurityFlags(DWORD flags) { m_securityFlags = flags & kSettableSecurityFlags; }

}  // namespace velandoc::wininet
