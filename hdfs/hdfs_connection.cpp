#include "hdfs/hdfs_connection.h"

#include "hdfs/accept_types.h"

namespace velandoc {
namespace {

constexpr DWORD kReadSize = 8192;
constexpr DWORD kStatusOk = 200;

constexpr DWORD kDialogFlags = FLAGS_ERROR_UI_FILTER_FOR_ERRORS |
                               FLAGS_ERROR_UI_FLAGS_CHANGE_OPTIONS |
                               FLAGS_ERROR_UI_FLAGS_GENERATE_DATA;
static_assert(kDialogFlags == 7);

constexpr DWORD kIgnoreCertificateErrors =
    SECURITY_FLAG_IGNORE_REVOCATION | SECURITY_FLAG_IGNORE_UNKNOWN_CA |
    SECURITY_FLAG_IGNORE_WRONG_USAGE | SECURITY_FLAG_IGNORE_CERT_CN_INVALID |
    SECURITY_FLAG_IGNORE_CERT_DATE_INVALID;
static_assert(kIgnoreCertificateErrors == 0x3380);

}  // namespace

CHdfsConnection::CHdfsConnection(LPCWSTR url) : CWinInetConnection(url, OLESTR("GET"), false) {}

CHdfsConnection::~CHdfsConnection() = default;

void CHdfsConnection::ProcessResponse() {}

HRESULT CHdfsConnection::SendWithRetry() {
  if (m_hRequest == nullptr) return E_FAIL;
  while (true) {
    if (SendRequest()) {
      // An answer is never asked about: a 401 too is for the caller to read.
      m_statusCode = QueryStatusCode();
      m_lastError = ERROR_SUCCESS;
      return m_statusCode == kStatusOk ? S_OK : E_FAIL;
    }
    m_lastError = CurrentPort<WinInet>().GetLastError();
    if (!MaySendAgain(m_lastError)) return E_FAIL;
  }
}

bool CHdfsConnection::MaySendAgain(DWORD error) {
  const auto ask = [this, error] {
    WinInet& platform = CurrentPort<WinInet>();
    return platform.InternetErrorDlg(platform.GetActiveWindow(), m_hRequest, error, kDialogFlags,
                                     nullptr);
  };
  switch (error) {
    case ERROR_SUCCESS:
      return false;
    case ERROR_INTERNET_INCORRECT_PASSWORD:
    case ERROR_INTERNET_HTTP_TO_HTTPS_ON_REDIR:
    case ERROR_INTERNET_POST_IS_NON_SECURE: {
      const DWORD answer = ask();
      return answer == ERROR_SUCCESS || answer == ERROR_INTERNET_FORCE_RETRY;
    }
    case ERROR_INTERNET_SEC_CERT_DATE_INVALID:
    case ERROR_INTERNET_SEC_CERT_CN_INVALID:
    case ERROR_INTERNET_INVALID_CA:
      if (m_reportCertificateErrors) return ask() == ERROR_SUCCESS;
      IgnoreCertificateErrors();
      return true;
    default:
      return ask() == ERROR_INTERNET_FORCE_RETRY;
  }
}

void CHdfsConnection::IgnoreCertificateErrors() {
  WinInet& platform = CurrentPort<WinInet>();
  DWORD flags = 0;
  DWORD size = sizeof flags;
  platform.InternetQueryOptionW(m_hRequest, INTERNET_OPTION_SECURITY_FLAGS, &flags, &size);
  flags |= kIgnoreCertificateErrors;
  platform.InternetSetOptionW(m_hRequest, INTERNET_OPTION_SECURITY_FLAGS, &flags, sizeof flags);
}

bool CHdfsConnection::ReadResponse() {
  char buffer[kReadSize];
  DWORD count = 0;
  do {
    if (!CurrentPort<WinInet>().InternetReadFile(m_hRequest, buffer, kReadSize, &count)) {
      return false;
    }
    m_sink->Write(buffer, count);
  } while (count != 0);
  return true;
}

const LPCWSTR* CHdfsConnection::GetAcceptTypes() { return kHdfsAcceptTypes; }

}  // namespace velandoc
