#include "hosts/command/hdfs_wininet_watch.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr int kStatusOk = 200;
constexpr std::size_t kUrlCapacity = 4096;

constexpr DWORD kIgnoreCertificateProblems =
    SECURITY_FLAG_IGNORE_REVOCATION | SECURITY_FLAG_IGNORE_UNKNOWN_CA |
    SECURITY_FLAG_IGNORE_WRONG_USAGE | SECURITY_FLAG_IGNORE_CERT_CN_INVALID |
    SECURITY_FLAG_IGNORE_CERT_DATE_INVALID;

/// What the calling thread has open.
struct OpenRequest {
  HINTERNET handle;
  std::size_t exchange;  // in the thread's log
  WideString url;        // as it was opened; empty if the platform does not say
};
struct ThreadState {
  std::string host;  // of the latest connection: a client makes one for each request
  INTERNET_PORT port = 0;
  std::vector<OpenRequest> requests;
  DWORD lastError = 0;
};
ThreadState& State() {
  thread_local ThreadState state;
  return state;
}

// The error is read at once, before anything of ours can overwrite it.
template <class Result>
Result Keep(WinInet& below, Result result) {
  if (!result) State().lastError = below.GetLastError();
  return result;
}

const OpenRequest* FindRequest(HINTERNET handle) {
  const std::vector<OpenRequest>& requests = State().requests;
  const auto found =
      std::find_if(requests.begin(), requests.end(),
                   [handle](const OpenRequest& request) { return request.handle == handle; });
  return found != requests.end() ? &*found : nullptr;
}

HdfsExchange* FindExchange(HINTERNET handle) {
  const OpenRequest* request = FindRequest(handle);
  std::vector<HdfsExchange>& exchanges = ThreadExchangeLog().exchanges;
  // A log that was emptied meanwhile knows it no more: a stream may outlive its operation.
  const bool known = request != nullptr && request->exchange < exchanges.size();
  return known ? &exchanges[request->exchange] : nullptr;
}

WideString UrlOf(WinInet& below, HINTERNET request) {
  std::array<OLECHAR, kUrlCapacity> buffer{};
  DWORD size = sizeof buffer;
  if (!below.InternetQueryOptionW(request, INTERNET_OPTION_URL, buffer.data(), &size)) return {};
  return WideString(ViewOf(buffer.data()));
}

int StatusOf(WinInet& below, HINTERNET request) {
  std::array<OLECHAR, 16> buffer{};
  DWORD size = sizeof buffer;
  if (!below.HttpQueryInfoW(request, HTTP_QUERY_STATUS_CODE, buffer.data(), &size, nullptr)) {
    return 0;
  }
  const std::string digits = Utf8FromWide(ViewOf(buffer.data()));
  int status = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), status);
  return status;
}

/// Host and port of "http://host:port/...".
void TakeEndpoint(WideView url, HdfsExchange& exchange) {
  const std::string text = Utf8FromWide(url);
  const std::size_t begin = text.find("://");
  if (begin == text.npos) return;
  std::string authority = text.substr(begin + 3);
  authority.resize(std::min(authority.find('/'), authority.size()));
  exchange.port = text.starts_with("https") ? 443 : 80;
  const std::size_t colon = authority.rfind(':');
  if (colon != authority.npos && authority.find(']', colon) == authority.npos) {
    std::from_chars(authority.data() + colon + 1, authority.data() + authority.size(),
                    exchange.port);
    authority.resize(colon);
  }
  exchange.host = authority;
}

}  // namespace

BOOL HdfsWinInetWatch::Sent(HINTERNET request, BOOL result) {
  HdfsExchange* exchange = FindExchange(request);
  if (exchange == nullptr) return result;
  exchange->error = result ? 0 : State().lastError;
  exchange->status = result ? StatusOf(m_below, request) : 0;
  exchange->answer.clear();
  const WideString& opened = FindRequest(request)->url;
  const WideString url = opened.empty() ? WideString() : UrlOf(m_below, request);
  if (url != opened) {
    exchange->isDataNode = true;
    TakeEndpoint(url, *exchange);
  }
  return result;
}

HINTERNET HdfsWinInetWatch::InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy,
                                          LPCWSTR proxyBypass, DWORD flags) {
  return Keep(m_below, m_below.InternetOpenW(agent, accessType, proxy, proxyBypass, flags));
}

HINTERNET HdfsWinInetWatch::InternetConnectW(HINTERNET session, LPCWSTR serverName,
                                             INTERNET_PORT port, LPCWSTR userName, LPCWSTR password,
                                             DWORD service, DWORD flags, DWORD_PTR context) {
  State().host = Utf8FromWide(ViewOf(serverName));
  State().port = port;
  return Keep(m_below, m_below.InternetConnectW(session, serverName, port, userName, password,
                                                service, flags, context));
}

HINTERNET HdfsWinInetWatch::HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                             LPCWSTR version, LPCWSTR referrer,
                                             LPCWSTR* acceptTypes, DWORD flags, DWORD_PTR context) {
  HINTERNET request =
      Keep(m_below, m_below.HttpOpenRequestW(connect, verb, objectName, version, referrer,
                                             acceptTypes, flags, context));
  std::vector<HdfsExchange>& exchanges = ThreadExchangeLog().exchanges;
  HdfsExchange exchange;
  exchange.verb = Utf8FromWide(ViewOf(verb));
  exchange.host = State().host;
  exchange.port = State().port;
  // The second request of an operation is the one that brings a file to where the first was told.
  exchange.isDataNode = !exchanges.empty();
  if (request == nullptr) exchange.error = State().lastError;
  exchanges.push_back(std::move(exchange));
  if (request == nullptr) return request;
  State().requests.push_back({request, exchanges.size() - 1, UrlOf(m_below, request)});
  if (m_ignoresCertificates) {
    DWORD securityFlags = 0;
    DWORD size = sizeof securityFlags;
    m_below.InternetQueryOptionW(request, INTERNET_OPTION_SECURITY_FLAGS, &securityFlags, &size);
    securityFlags |= kIgnoreCertificateProblems;
    m_below.InternetSetOptionW(request, INTERNET_OPTION_SECURITY_FLAGS, &securityFlags,
                               sizeof securityFlags);
  }
  return request;
}

BOOL HdfsWinInetWatch::HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                        LPVOID optional, DWORD optionalLength) {
  return Sent(request, Keep(m_below, m_below.HttpSendRequestW(request, headers, headersLength,
                                                              optional, optionalLength)));
}

BOOL HdfsWinInetWatch::HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                                          INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                          DWORD_PTR context) {
  const BOOL result =
      Keep(m_below, m_below.HttpSendRequestExW(request, buffersIn, buffersOut, flags, context));
  if (HdfsExchange* exchange = FindExchange(request); exchange != nullptr && !result) {
    exchange->error = State().lastError;
  }
  return result;
}

BOOL HdfsWinInetWatch::InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size,
                                         DWORD* written) {
  const BOOL result = Keep(m_below, m_below.InternetWriteFile(request, buffer, size, written));
  if (TransferCount* count = ThreadExchangeLog().count) count->bytes += *written;
  return result;
}

BOOL HdfsWinInetWatch::HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut,
                                       DWORD flags, DWORD_PTR context) {
  return Sent(request, Keep(m_below, m_below.HttpEndRequestW(request, buffersOut, flags, context)));
}

BOOL HdfsWinInetWatch::InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) {
  const BOOL result = Keep(m_below, m_below.InternetReadFile(request, buffer, size, read));
  HdfsExchange* exchange = FindExchange(request);
  if (exchange == nullptr) return result;
  if (!result) exchange->error = State().lastError;
  if (exchange->status == kStatusOk && exchange->verb == "GET") {
    if (TransferCount* count = ThreadExchangeLog().count) count->bytes += *read;
  } else if (result) {
    const std::size_t room = HdfsExchange::kAnswerLimit - exchange->answer.size();
    exchange->answer.append(static_cast<const char*>(buffer), std::min<std::size_t>(*read, room));
  }
  return result;
}

BOOL HdfsWinInetWatch::HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer,
                                      DWORD* size, DWORD* index) {
  return Keep(m_below, m_below.HttpQueryInfoW(request, infoLevel, buffer, size, index));
}

DWORD HdfsWinInetWatch::InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                                         LPVOID* data) {
  return m_below.InternetErrorDlg(parent, request, error, flags, data);
}

BOOL HdfsWinInetWatch::InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer,
                                            DWORD* size) {
  return Keep(m_below, m_below.InternetQueryOptionW(handle, option, buffer, size));
}

BOOL HdfsWinInetWatch::InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer,
                                          DWORD size) {
  return Keep(m_below, m_below.InternetSetOptionW(handle, option, buffer, size));
}

BOOL HdfsWinInetWatch::InternetCloseHandle(HINTERNET handle) {
  std::erase_if(State().requests,
                [handle](const OpenRequest& request) { return request.handle == handle; });
  return Keep(m_below, m_below.InternetCloseHandle(handle));
}

HWND HdfsWinInetWatch::GetActiveWindow() { return m_below.GetActiveWindow(); }

DWORD HdfsWinInetWatch::GetLastError() { return State().lastError; }

}  // namespace velandoc
