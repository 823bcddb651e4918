#include "connection/wininet_connection.h"

#include "connection/escape_url.h"
#include "connection/schemes.h"
#include "connection/text_to_integer.h"

namespace velandoc {
namespace {

// One name for all protocols: servers see it in their logs.
constexpr LPCWSTR kAgent = OLESTR("CWinInetConnection");

constexpr DWORD kReadSize = 8192;
constexpr std::size_t kHeaderCapacity = 2048;  // characters

WideString TextOrEmpty(LPCWSTR text) { return text != nullptr ? WideString(text) : WideString(); }

}  // namespace

CWinInetConnection::CWinInetConnection(LPCWSTR url, LPCWSTR verb, bool escape)
    : m_verb(TextOrEmpty(verb)),
      m_requestFlags(INTERNET_FLAG_KEEP_CONNECTION | INTERNET_FLAG_NO_UI) {
  SetUrl(url, escape);
  if (m_url.schemeIndex == kHttpsScheme) m_requestFlags |= INTERNET_FLAG_SECURE;
}

CWinInetConnection::~CWinInetConnection() {
  CloseHandle(m_hRequest);
  CloseHandle(m_hConnect);
  CloseHandle(m_hSession);
}

WideString CWinInetConnection::GetVerb() { return m_verb; }

WideString CWinInetConnection::GetHostName() { return WideString(m_url.HostName()); }

INTERNET_PORT CWinInetConnection::GetPort() { return m_url.port; }

WideString CWinInetConnection::GetUrlPath() { return WideString(m_url.UrlPath()); }

WideString CWinInetConnection::GetExtraInfo() { return WideString(m_url.ExtraInfo()); }

void CWinInetConnection::ProcessResponse() {}

BOOL CWinInetConnection::SendRequest() {
  WinInet& platform = CurrentPort<WinInet>();
  if (m_streaming) {
    INTERNET_BUFFERSW buffersOut{};
    buffersOut.dwStructSize = sizeof buffersOut;
    return platform.HttpSendRequestExW(m_hRequest, nullptr, &buffersOut, 0, 0);
  }
  NarrowString body = ToUtf8(GetBody().c_str());
  const WideString headers = GetHeaders();
  constexpr DWORD nullEnded = static_cast<DWORD>(-1);
  return platform.HttpSendRequestW(m_hRequest, headers.c_str(), nullEnded, body.data(),
                                   static_cast<DWORD>(body.size()));
}

WideString CWinInetConnection::GetHeaders() { return m_headers; }

WideString CWinInetConnection::GetBody() { return m_body; }

bool CWinInetConnection::ReadResponse() {
  char buffer[kReadSize + 1];
  m_response.clear();
  DWORD count = 0;
  do {
    if (!CurrentPort<WinInet>().InternetReadFile(m_hRequest, buffer, kReadSize, &count)) {
      return false;
    }
    // Answers are text: what stands behind a NUL in a chunk is dropped, and the next chunk counts
    // again. An append by length would hand NULs to readers that take the text for null-ended.
    buffer[count] = 0;
    m_response.append(buffer);
  } while (count != 0);
  return true;
}

HRESULT CWinInetConnection::Resend() {
  CloseHandle(m_hRequest);
  const HRESULT opened = OpenRequest();
  return FAILED(opened) ? opened : SendWithRetry();
}

const LPCWSTR* CWinInetConnection::GetAcceptTypes() {
  static const LPCWSTR types[] = {OLESTR("text/*"), nullptr};
  return types;
}

HRESULT CWinInetConnection::Open(LPCWSTR headers, LPCWSTR body) {
  m_statusCode = 0;
  if (m_hConnect == nullptr) {
    WinInet& platform = CurrentPort<WinInet>();
    m_hSession = platform.InternetOpenW(kAgent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr,
                                        m_sessionFlags);
    if (m_hSession == nullptr) return E_FAIL;
    // A null connection is not tested for: the platform refuses it in OpenRequest. Whoever calls
    // Open again then gets a new session too, and the former one stays open.
    m_hConnect = platform.InternetConnectW(m_hSession, GetHostName().c_str(), GetPort(), nullptr,
                                           nullptr, INTERNET_SERVICE_HTTP, INTERNET_FLAG_NO_UI, 0);
  }
  m_headers = TextOrEmpty(headers);
  m_body = TextOrEmpty(body);

  const LPCWSTR* types = GetAcceptTypes();
  m_acceptTypes.clear();
  m_acceptTypePointers.clear();
  for (; *types != nullptr; ++types) m_acceptTypes.emplace_back(*types);
  for (const WideString& type : m_acceptTypes) m_acceptTypePointers.push_back(type.c_str());
  m_acceptTypePointers.push_back(nullptr);
  return OpenRequest();
}

HRESULT CWinInetConnection::OpenRequest() {
  const WideString objectName = GetUrlPath() + GetExtraInfo();
  m_hRequest = CurrentPort<WinInet>().HttpOpenRequestW(
      m_hConnect, GetVerb().c_str(), objectName.c_str(), nullptr, nullptr,
      m_acceptTypePointers.data(), m_requestFlags, 0);
  return m_hRequest != nullptr ? S_OK : E_FAIL;
}

void CWinInetConnection::SetUrl(LPCWSTR url, bool escape) {
  if (url == nullptr) return;
  WideString escaped;
  if (escape) {
    if (!EscapeUrl(url, escaped)) return;
    url = escaped.c_str();
  }
  m_url.Clear();
  if (!CrackUrl(url, m_url)) return;
  m_resourcePath.Assign(m_url.UrlPath());
  m_resourcePath.Append(m_url.ExtraInfo());
}

BOOL CWinInetConnection::QueryHeader(DWORD infoLevel, WideString& out) {
  OLECHAR buffer[kHeaderCapacity];
  DWORD size = sizeof buffer;
  const BOOL found =
      CurrentPort<WinInet>().HttpQueryInfoW(m_hRequest, infoLevel, buffer, &size, nullptr);
  if (found) out.assign(buffer, size / sizeof(OLECHAR));
  return found;
}

DWORD CWinInetConnection::QueryStatusCode() {
  WideString text;
  if (!QueryHeader(HTTP_QUERY_STATUS_CODE, text)) return 0;
  return static_cast<DWORD>(TextToInteger(text));
}

BOOL CWinInetConnection::BeginWrite(DWORD contentLength) {
  m_requestFlags |= INTERNET_FLAG_NO_CACHE_WRITE;
  m_verb = m_usePost ? OLESTR("POST") : OLESTR("PUT");
  if (FAILED(Open(nullptr, nullptr))) return FALSE;

  WideString header = OLESTR("Content-Length: ");
  for (const char digit : std::to_string(contentLength)) {
    header.push_back(static_cast<OLECHAR>(digit));
  }
  INTERNET_BUFFERSW buffers{};
  buffers.dwStructSize = sizeof buffers;
  buffers.lpcszHeader = header.c_str();
  buffers.dwHeadersLength = static_cast<DWORD>(header.size());
  const BOOL sent = CurrentPort<WinInet>().HttpSendRequestExW(m_hRequest, &buffers, nullptr, 0, 0);
  if (sent) m_streaming = true;
  return sent;
}

void CWinInetConnection::CloseHandle(HINTERNET& handle) {
  if (handle != nullptr) CurrentPort<WinInet>().InternetCloseHandle(handle);
  handle = nullptr;
}

}  // namespace velandoc
