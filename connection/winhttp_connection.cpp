#include "connection/winhttp_connection.h"

#include "connection/escape_url.h"
#include "connection/schemes.h"
#include "connection/text_to_integer.h"

namespace velandoc {
namespace {

constexpr LPCWSTR kAgent = OLESTR("CWinHttpConnection");

constexpr DWORD kChunkSize = 8192;

LPCWSTR NullIfEmpty(const WideString& text) { return text.empty() ? nullptr : text.c_str(); }

}  // namespace

CWinHttpConnection::CWinHttpConnection(LPCWSTR url) {
  WideString escaped;
  if (url != nullptr && EscapeUrl(url, escaped)) {
    m_url.Clear();
    if (CrackUrl(escaped.c_str(), m_url)) {
      m_resourcePath.Assign(m_url.UrlPath());
      m_resourcePath.Append(m_url.ExtraInfo());
    }
  }
  if (m_url.schemeIndex == kHttpsScheme) m_requestFlags |= WINHTTP_FLAG_SECURE;
}

CWinHttpConnection::~CWinHttpConnection() {
  if (m_hRequest != nullptr) CurrentPort<WinHttp>().WinHttpCloseHandle(m_hRequest);
  m_hRequest = nullptr;
}

void CWinHttpConnection::ProcessResponse() {}

void CWinHttpConnection::SetAcceptTypes(const LPCWSTR* types) {
  m_acceptTypes.clear();
  m_acceptTypePointers.clear();
  for (; *types != nullptr; ++types) m_acceptTypes.emplace_back(*types);
  for (const WideString& type : m_acceptTypes) m_acceptTypePointers.push_back(type.c_str());
  m_acceptTypePointers.push_back(nullptr);
}

HRESULT CWinHttpConnection::OpenRequest() {
  WinHttp& platform = CurrentPort<WinHttp>();
  const WideString objectName = WideString(m_url.UrlPath()).append(m_url.ExtraInfo());
  m_hRequest = platform.WinHttpOpenRequest(m_hConnect, m_verb.c_str(), objectName.c_str(), nullptr,
                                           nullptr, m_acceptTypePointers.data(), m_requestFlags);
  if (m_hRequest == nullptr) return E_FAIL;
  // A request that refuses one of these goes out all the same.
  if (m_noRedirect) {
    DWORD never = WINHTTP_OPTION_REDIRECT_POLICY_NEVER;
    platform.WinHttpSetOption(m_hRequest, WINHTTP_OPTION_REDIRECT_POLICY, &never, sizeof never);
  }
  if (m_autoLogonPolicy != kNoPolicy) {
    DWORD policy = m_autoLogonPolicy;
    platform.WinHttpSetOption(m_hRequest, WINHTTP_OPTION_AUTOLOGON_POLICY, &policy, sizeof policy);
  }
  if (m_authScheme != 0) {
    platform.WinHttpSetCredentials(m_hRequest, WINHTTP_AUTH_TARGET_SERVER, m_authScheme,
                                   m_userName.c_str(), m_password.c_str(), nullptr);
  }
  return S_OK;
}

HRESULT CWinHttpConnection::SendRequest() {
  WinHttp& platform = CurrentPort<WinHttp>();
  m_statusCode = 0;
  if (m_hConnect == nullptr) {
    m_hSession = platform.WinHttpOpen(kAgent, WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY, nullptr, nullptr,
                                      m_sessionFlags);
    if (m_hSession == nullptr) return E_FAIL;
    m_lastError = 0;
    m_hConnect = platform.WinHttpConnect(m_hSession, m_url.hostName, m_url.port, 0);
    if (m_hConnect == nullptr) return E_FAIL;
  }
  // No headers and no body are ever sent from here. What sends them stays for a protocol that has
  // some.
  m_headers.clear();
  m_body.clear();
  if (m_acceptTypes.empty()) {
    static const LPCWSTR types[] = {OLESTR("text/*"), nullptr};
    SetAcceptTypes(types);
  }
  if (const HRESULT opened = OpenRequest(); FAILED(opened)) return opened;
  if (m_hRequest == nullptr || m_streaming) return E_FAIL;

  // One text for all objects, not locked. It is written only when it changes, and the body is
  // always empty, so it never is while threads send side by side.
  static NarrowString bytes;
  if (NarrowString encoded = ToUtf8(m_body.c_str()); encoded != bytes) bytes = std::move(encoded);
  const BOOL sent = platform.WinHttpSendRequest(
      m_hRequest, NullIfEmpty(m_headers), static_cast<DWORD>(m_headers.size()),
      bytes.empty() ? nullptr : bytes.data(), static_cast<DWORD>(bytes.size()), m_totalLength, 0);
  return sent ? S_OK : E_FAIL;
}

HRESULT CWinHttpConnection::Execute() {
  if (const HRESULT sent = SendRequest(); FAILED(sent)) return sent;
  m_responseStarted = true;
  if (!CurrentPort<WinHttp>().WinHttpReceiveResponse(m_hRequest, nullptr)) return E_FAIL;
  m_statusCode = QueryStatusCode();
  if (m_keepBody) return S_OK;
  if (!ReadResponse()) return E_FAIL;
  ProcessResponse();
  return S_OK;
}

HRESULT CWinHttpConnection::SendStream(IStream* stream) {
  STATSTG info{};
  // A stream that cannot tell its size counts as empty.
  stream->Stat(&info, STATFLAG_NONAME);
  m_totalLength = static_cast<DWORD>(info.cbSize.QuadPart);  // the low 32 bits
  if (const HRESULT sent = SendRequest(); FAILED(sent)) return sent;
  char buffer[kChunkSize + 1];
  for (;;) {
    // A failed read ends the body like the stream's end.
    ULONG count = 0;
    stream->Read(buffer, kChunkSize, &count);
    if (count == 0) break;
    DWORD written = 0;
    if (!CurrentPort<WinHttp>().WinHttpWriteData(m_hRequest, buffer, count, &written)) {
      return E_FAIL;
    }
  }
  // The owner looks at the status, not at how the answer was read.
  ReadResponse();
  return S_OK;
}

bool CWinHttpConnection::ReadResponse() {
  WinHttp& platform = CurrentPort<WinHttp>();
  m_responseText.clear();
  if (!m_responseStarted) {
    m_responseStarted = true;
    if (!platform.WinHttpReceiveResponse(m_hRequest, nullptr)) return false;
    m_statusCode = QueryStatusCode();
  }
  char buffer[kChunkSize + 1];
  for (;;) {
    DWORD count = 0;
    if (!platform.WinHttpQueryDataAvailable(m_hRequest, &count)) return false;
    if (count == 0) return true;
    // Whatever the availability said: it only tells the end.
    if (!platform.WinHttpReadData(m_hRequest, buffer, kChunkSize, &count)) return false;
    if (count == 0) return true;
    if (m_sink != nullptr) {
      m_sink->Write(buffer, count);
    } else {
      // Answers are text: what stands behind a NUL in a chunk is dropped, and the next chunk counts
      // again.
      buffer[count] = 0;
      m_responseText.append(buffer);
    }
  }
}

BOOL CWinHttpConnection::QueryHeader(DWORD infoLevel, WideString& out) {
  WideString text;
  if (!QueryText(infoLevel, text)) return FALSE;
  // Up to its terminator, whatever length was told.
  out.assign(text.c_str());
  return TRUE;
}

DWORD CWinHttpConnection::QueryStatusCode() {
  WideString text;
  if (!QueryText(WINHTTP_QUERY_STATUS_CODE, text)) return 0;
  return static_cast<DWORD>(TextToInteger(text.c_str()));
}

// Asked without a buffer first: that fails and tells the size. A query that needs no room has
// nothing to tell.
bool CWinHttpConnection::QueryText(DWORD infoLevel, WideString& text) {
  WinHttp& platform = CurrentPort<WinHttp>();
  DWORD size = 0;
  if (platform.WinHttpQueryHeaders(m_hRequest, infoLevel, nullptr, nullptr, &size, nullptr)) {
    return false;
  }
  // As many characters as bytes are needed: twice the room, and always a terminator behind it.
  text.assign(size, OLECHAR{0});
  return platform.WinHttpQueryHeaders(m_hRequest, infoLevel, nullptr, text.data(), &size,
                                      nullptr) != FALSE;
}

}  // namespace velandoc
