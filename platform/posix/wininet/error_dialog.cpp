#include "platform/posix/wininet/error_dialog.h"

#include <curl/curl.h>

#include "platform/posix/http/ascii_case.h"
#include "platform/posix/http/challenge.h"
#include "platform/posix/http/kerberos_ticket.h"
#include "platform/posix/terminal.h"
#include "platform/posix/wininet/netrc.h"

namespace velandoc::wininet {

using namespace http;

namespace {

struct CertificateQuestion {
  DWORD error;
  DWORD ignoreFlag;
  std::string_view problem;
};

constexpr CertificateQuestion kCertificateQuestions[] = {
    {ERROR_INTERNET_SEC_CERT_DATE_INVALID, SECURITY_FLAG_IGNORE_CERT_DATE_INVALID,
     "it has expired or is not valid yet"},
    {ERROR_INTERNET_SEC_CERT_CN_INVALID, SECURITY_FLAG_IGNORE_CERT_CN_INVALID,
     "it was issued for another name"},
    {ERROR_INTERNET_INVALID_CA, SECURITY_FLAG_IGNORE_UNKNOWN_CA,
     "it was issued by an authority that is not trusted here"},
};

bool SaysYes(const std::optional<std::string>& answer) {
  if (!answer) return false;
  const std::string_view word = TrimBlanks(*answer);
  return EqualNoCase(word, "y") || EqualNoCase(word, "yes");
}

/// A peer's words, in one line and with nothing that steers a terminal.
std::string Shown(std::string_view text) {
  constexpr std::size_t kMaxShown = 256;
  std::string shown(text.substr(0, kMaxShown));
  for (char& character : shown) {
    if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F) character = '?';
  }
  return shown;
}

DWORD AskAboutCertificate(Request& request, const CertificateQuestion& question) {
  Terminal& terminal = CurrentPort<Terminal>();
  const CertificateFacts* facts = request.PeerCertificate();
  if (facts == nullptr || !terminal.IsAvailable()) return ERROR_CANCELLED;
  std::string text = "The certificate of ";
  text.append(Shown(request.Peer(false).host)).append(" cannot be trusted: ");
  text.append(question.problem).append(".\n");
  text.append("  Subject:     ").append(facts->subject).append("\n");
  text.append("  Issuer:      ").append(facts->issuer).append("\n");
  text.append("  Valid from:  ").append(facts->validFrom).append("\n");
  text.append("  Valid until: ").append(facts->validUntil).append("\n");
  text.append("  SHA-256:     ").append(facts->sha256).append("\n");
  text.append("Connect all the same? [y/N] ");
  if (!SaysYes(terminal.Ask(text))) return ERROR_CANCELLED;
  request.AddSecurityFlags(question.ignoreFlag);
  return ERROR_SUCCESS;
}

class LoginQuestion {
 public:
  LoginQuestion(Request& request, bool ofProxy)
      : m_request(request),
        m_ofProxy(ofProxy),
        m_peer(request.Peer(ofProxy)),
        m_origin(Origin(m_peer)),
        m_challenge(ParseChallenges(
            request.Answer()->headers.All(ofProxy ? "Proxy-Authenticate" : "WWW-Authenticate"))) {}

  DWORD Ask() {
    const unsigned long passwordScheme = PasswordScheme(m_challenge.schemes);
    Request::Tried& tried = m_request.TriedLogins();
    if (passwordScheme != 0 && tried.netrc != m_origin) {
      tried.netrc = m_origin;
      if (const std::optional<NetrcLogin> login = NetrcLoginFor(m_peer.host)) {
        return Use({passwordScheme, login->user, login->password});
      }
    }
    if ((m_challenge.schemes & CURLAUTH_NEGOTIATE) != 0 && tried.ticket != m_origin) {
      tried.ticket = m_origin;
      if (MayHoldTicket()) return Use({CURLAUTH_NEGOTIATE, "", ""});
    }
    return passwordScheme != 0 ? AskUser(passwordScheme) : ERROR_SUCCESS;
  }

 private:
  DWORD AskUser(unsigned long scheme) {
    Terminal& terminal = CurrentPort<Terminal>();
    // As a dialog that is cancelled at once: the answer stands.
    if (!terminal.IsAvailable()) return ERROR_SUCCESS;
    std::string text = m_ofProxy ? "The proxy " : "The server ";
    text.append(Shown(m_peer.host));
    if (!m_challenge.realm.empty()) text.append(" (").append(Shown(m_challenge.realm)).append(")");
    text.append(" asks for a user name and a password.\nUser name (none to give up): ");
    const std::optional<std::string> user = terminal.Ask(text);
    if (!user || TrimBlanks(*user).empty()) return ERROR_CANCELLED;
    const std::optional<std::string> password = terminal.AskSecret("Password: ");
    if (!password) return ERROR_CANCELLED;
    return Use({scheme, std::string(TrimBlanks(*user)), *password});
  }

  DWORD Use(Login login) {
    CredentialCache::Store({m_ofProxy, m_peer, m_challenge.realm, std::move(login)});
    return ERROR_INTERNET_FORCE_RETRY;
  }

  Request& m_request;
  bool m_ofProxy;
  Endpoint m_peer;
  std::string m_origin;
  Challenge m_challenge;
};

}  // namespace

DWORD AskAboutError(Request& request, DWORD error, DWORD flags) {
  for (const CertificateQuestion& question : kCertificateQuestions) {
    if (question.error == error) return AskAboutCertificate(request, question);
  }
  if (error != ERROR_SUCCESS || (flags & FLAGS_ERROR_UI_FILTER_FOR_ERRORS) == 0) return error;
  const ResponseHead* answer = request.Answer();
  if (answer == nullptr) return ERROR_SUCCESS;
  if (answer->status == 401) return LoginQuestion(request, false).Ask();
  if (answer->status == 407) return LoginQuestion(request, true).Ask();
  return ERROR_SUCCESS;
}

}  // namespace velandoc::wininet
