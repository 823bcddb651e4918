#include "platform/posix/winhttp/request.h"

#include <utility>

#include "platform/posix/http/challenge.h"
#include "platform/posix/http/kerberos_ticket.h"

namespace velandoc::winhttp {

using namespace http;

namespace {

constexpr int kMaxRedirects = 10;

/// The CURLAUTH bit that answers WinHTTP's scheme with a user name and a password; 0 if none does.
unsigned long PasswordBit(DWORD scheme) {
  switch (scheme) {
    case WINHTTP_AUTH_SCHEME_BASIC:
      return CURLAUTH_BASIC;
    case WINHTTP_AUTH_SCHEME_DIGEST:
      return CURLAUTH_DIGEST;
    case WINHTTP_AUTH_SCHEME_NTLM:
    // libcurl's Negotiate takes tickets only. A server that takes a password by Negotiate takes it
    // by NTLM as well.
    case WINHTTP_AUTH_SCHEME_NEGOTIATE:
      return CURLAUTH_NTLM;
    default:
      return 0;
  }
}

bool IsEmpty(LPCWSTR text) { return text == nullptr || *text == u'\0'; }

}  // namespace

Request::Request(std::shared_ptr<Connect> connect, std::string verb, WideView objectName,
                 std::string acceptTypes, DWORD flags)
    : HttpRequest(std::move(connect), std::move(verb), EscapedTarget(objectName),
                  (flags & WINHTTP_FLAG_SECURE) != 0),
      m_acceptTypes(std::move(acceptTypes)) {}

DWORD Request::SetOption(DWORD option, DWORD value) {
  switch (option) {
    case WINHTTP_OPTION_REDIRECT_POLICY:
      if (value > WINHTTP_OPTION_REDIRECT_POLICY_ALWAYS) return ERROR_INVALID_PARAMETER;
      m_redirectPolicy = value;
      return ERROR_SUCCESS;
    case WINHTTP_OPTION_AUTOLOGON_POLICY:
      if (value > WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH) return ERROR_INVALID_PARAMETER;
      m_autologonPolicy = value;
      return ERROR_SUCCESS;
    case WINHTTP_OPTION_SECURITY_FLAGS:
      if ((value & ~kCertificateIgnoreFlags) != 0) return ERROR_INVALID_PARAMETER;
      m_securityFlags = value;
      return ERROR_SUCCESS;
    default:
      return ERROR_WINHTTP_INVALID_OPTION;
  }
}

DWORD Request::SetCredentials(DWORD target, DWORD scheme, LPCWSTR userName, LPCWSTR password) {
  if (target != WINHTTP_AUTH_TARGET_SERVER && target != WINHTTP_AUTH_TARGET_PROXY) {
    return ERROR_INVALID_PARAMETER;
  }
  std::optional<Login>& login = target == WINHTTP_AUTH_TARGET_SERVER ? m_serverLogin : m_proxyLogin;
  const unsigned long passwordBit = PasswordBit(scheme);
  if (passwordBit == 0) return ERROR_INVALID_PARAMETER;
  if (!IsEmpty(userName)) {
    login = Login{passwordBit, Utf8(userName), IsEmpty(password) ? "" : Utf8(password)};
    return ERROR_SUCCESS;
  }
  // No name means the user who is logged on; what stands for him here is his ticket.
  if (passwordBit != CURLAUTH_NTLM) return ERROR_INVALID_PARAMETER;
  login.reset();
  if (MayHoldTicket()) login = Login{CURLAUTH_NEGOTIATE, "", ""};
  return ERROR_SUCCESS;
}

void Request::BuildHead(std::string_view headers, DWORD total) {
  HeaderBlock own;
  own.ReplaceFromText(headers);
  // The owner's word on the length does not count: a wrong one would run requests into each other.
  own.Remove("Content-Length");
  own.Remove("Transfer-Encoding");
  own.Remove("Connection");
  m_headers.Clear();
  if (!m_acceptTypes.empty()) m_headers.Append("Accept", m_acceptTypes);
  const std::string& agent = m_connect->session->agent;
  if (!agent.empty()) m_headers.Append("User-Agent", agent);
  m_headers.Append("Host", HostHeader(m_hop.server));
  if (total != 0 || m_verb == "PUT" || m_verb == "POST") {
    m_headers.Append("Content-Length", std::to_string(total));
  }
  m_headers.Append("Connection", "Keep-Alive");
  for (const HeaderLine& line : own.Lines()) m_headers.Replace(line.name, line.value);
  m_sentHeaders = m_headers;
}

DWORD Request::Send(std::string_view headers, std::string_view first, DWORD total) {
  m_state = State::kOpen;
  StartOver();
  if (!IsUsableHost(m_hop.server.host)) return ERROR_WINHTTP_NAME_NOT_RESOLVED;
  if (total < first.size()) total = static_cast<DWORD>(first.size());
  BuildHead(headers, total);
  m_body.clear();
  m_bodyLength.reset();
  if (total > first.size()) {
    m_hop.bodyKind = BodyKind::kStreamed;
    m_bodyLength = total;
  } else if (m_headers.Find("Content-Length") != nullptr) {
    m_hop.bodyKind = BodyKind::kMemory;
    m_body = first;
  }
  PrepareHop();
  DWORD error = BeginExchange();
  if (error == ERROR_SUCCESS && m_hop.bodyKind == BodyKind::kStreamed && !first.empty()) {
    error = m_transfer->Write(first.data(), first.size());
  }
  if (error == ERROR_SUCCESS) m_state = State::kSent;
  return error;
}

DWORD Request::Write(const char* data, std::size_t size) {
  if (m_state != State::kSent || m_hop.bodyKind != BodyKind::kStreamed) {
    return ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
  }
  return m_transfer->Write(data, size);
}

DWORD Request::Receive() {
  if (m_state != State::kSent) return ERROR_WINHTTP_INCORRECT_HANDLE_STATE;
  m_state = State::kReceived;
  const DWORD error =
      m_hop.bodyKind == BodyKind::kStreamed ? m_transfer->EndBody() : m_transfer->AwaitHead();
  return error == ERROR_SUCCESS ? Settle() : error;
}

HttpRequest::RedirectRules Request::Redirects() const {
  const bool follows = m_redirectPolicy != WINHTTP_OPTION_REDIRECT_POLICY_NEVER;
  const bool mayLeaveTls = m_redirectPolicy == WINHTTP_OPTION_REDIRECT_POLICY_ALWAYS;
  return {
      .limit = follows ? kMaxRedirects : 0,
      .downgraded = mayLeaveTls ? DWORD{ERROR_SUCCESS} : ERROR_WINHTTP_REDIRECT_FAILED,
      .bodyIsGone = ERROR_WINHTTP_RESEND_REQUEST,
  };
}

bool Request::KeepsVerb(unsigned status) const {
  if (status == 303) return false;
  return status == 307 || status == 308 || m_hop.verb != "POST";
}

void Request::AdaptHeaders(bool keepsBody) {
  // Only another server's name is written anew, behind all else.
  const std::string host = HostHeader(m_hop.server);
  const std::string* told = m_sentHeaders.Find("Host");
  if (told == nullptr || *told != host) m_sentHeaders.Replace("Host", host);
  if (keepsBody) return;
  m_sentHeaders.Remove("Content-Length");
  m_sentHeaders.Remove("Content-Type");
}

void Request::RecallLogins() {
  m_hopLogin.reset();
  const bool isOwnServer = m_hop.server.secure == m_secure &&
                           m_hop.server.host == m_connect->host &&
                           (m_connect->port == 0 || m_hop.server.port == m_connect->port);
  if (isOwnServer) m_hopLogin = m_serverLogin;
}

const Login* Request::KnownLogin(bool forProxy) const {
  const std::optional<Login>& login = forProxy ? m_proxyLogin : m_hopLogin;
  return login ? &*login : nullptr;
}

bool Request::MayUseTicket() const {
  switch (m_autologonPolicy) {
    case WINHTTP_AUTOLOGON_SECURITY_LEVEL_LOW:
      return true;
    case WINHTTP_AUTOLOGON_SECURITY_LEVEL_MEDIUM:
      // A name without a dot is one of the own network.
      return m_hop.server.host.find_first_of(".[") == std::string::npos;
    default:
      return false;
  }
}

bool Request::HasNextLogin() {
  const ResponseHead& head = m_transfer->Head();
  if (head.status != 401 || m_hopLogin) return false;
  const Challenge challenge = ParseChallenges(head.headers.All("WWW-Authenticate"));
  if ((challenge.schemes & CURLAUTH_NEGOTIATE) == 0 || !MayUseTicket() || !MayHoldTicket()) {
    return false;
  }
  m_hopLogin = Login{CURLAUTH_NEGOTIATE, "", ""};
  return true;
}

}  // namespace velandoc::winhttp
