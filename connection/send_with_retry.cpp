// The authentication and certificate loop of the connections.

#include <algorithm>
#include <array>

#include "connection/wininet_connection.h"

namespace velandoc {
namespace {

// For each of 401 and 407; the answer after the last one ends the call.
constexpr int kCredentialAttempts = 3;

constexpr DWORD kStatusOk = 200;
constexpr DWORD kStatusUnauthorized = 401;
constexpr DWORD kStatusProxyAuthentication = 407;

// Filter, change options, generate data: with "filter" and error 0 the platform looks at the answer
// and decides by itself whether the user has to be asked.
constexpr DWORD kDialogFlags = FLAGS_ERROR_UI_FILTER_FOR_ERRORS |
                               FLAGS_ERROR_UI_FLAGS_CHANGE_OPTIONS |
                               FLAGS_ERROR_UI_FLAGS_GENERATE_DATA;
static_assert(kDialogFlags == 7);

// Errors of a send that the user can let pass in the dialog; the send is then repeated.
constexpr std::array<DWORD, 6> kRepeatable = {
    ERROR_INTERNET_INCORRECT_PASSWORD,  ERROR_INTERNET_SEC_CERT_DATE_INVALID,
    ERROR_INTERNET_SEC_CERT_CN_INVALID, ERROR_INTERNET_HTTP_TO_HTTPS_ON_REDIR,
    ERROR_INTERNET_POST_IS_NON_SECURE,  ERROR_INTERNET_INVALID_CA,
};

bool IsRepeatable(DWORD error) {
  return std::find(kRepeatable.begin(), kRepeatable.end(), error) != kRepeatable.end();
}

}  // namespace

// Only the credential attempts are counted. The other ways to send again have no limit: each of
// them is the user's word in a dialog.
HRESULT CWinInetConnection::SendWithRetry() {
  if (m_hRequest == nullptr) return E_FAIL;
  WinInet& platform = CurrentPort<WinInet>();
  int unauthorized = 0;
  int proxyAuthentication = 0;
  for (;;) {
    const BOOL sent = SendRequest();
    // Before anything can overwrite it.
    const DWORD error = sent ? ERROR_SUCCESS : platform.GetLastError();
    if (sent) {
      m_statusCode = QueryStatusCode();
      // The refusal that ends the call shows no dialog, and leaves m_lastError as it stood.
      if (m_statusCode == kStatusUnauthorized && ++unauthorized > kCredentialAttempts) {
        return E_FAIL;
      }
      if (m_statusCode == kStatusProxyAuthentication &&
          ++proxyAuthentication > kCredentialAttempts) {
        return E_FAIL;
      }
    }
    // Asked after every send, a good one too: it is the platform that answers a 401 or 407 with a
    // question to the user.
    const DWORD result = platform.InternetErrorDlg(platform.GetActiveWindow(), m_hRequest, error,
                                                   kDialogFlags, nullptr);
    if (result == ERROR_INTERNET_FORCE_RETRY) continue;
    m_statusCode = QueryStatusCode();
    m_lastError = error;
    if (sent) return m_statusCode == kStatusOk ? S_OK : E_FAIL;
    if (!IsRepeatable(error) || result != ERROR_SUCCESS) return E_FAIL;
  }
}

}  // namespace velandoc
