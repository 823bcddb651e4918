#include "hosts/command/exchange_watch.h"

#include <algorithm>
#include <charconv>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr int kStatusOk = 200;
constexpr int kStatusUnauthorized = 401;
constexpr int kStatusProxyAuthentication = 407;

void AppendLimited(std::string& answer, const char* bytes, std::size_t count, std::size_t limit) {
  answer.append(bytes, std::min(count, limit - answer.size()));
}

int ReadStatus(WinInet& port, HINTERNET request) {
  OLECHAR buffer[16] = {};
  DWORD size = sizeof buffer;
  if (!port.HttpQueryInfoW(request, HTTP_QUERY_STATUS_CODE, buffer, &size, nullptr)) return 0;
  const std::string digits = Utf8FromWide(WideView(buffer, size / sizeof(OLECHAR)));
  int status = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), status);
  return status;
}

/// "url+to+web+url%3a12.0.0.6665" as "url to web url".
std::string WithoutVersion(std::string_view method) {
  std::string name(method.substr(0, method.find("%3a")));
  std::replace(name.begin(), name.end(), '+', ' ');
  return name;
}

}  // namespace

std::string FindOperation(WideView headers, std::string_view body) {
  const std::string head = Utf8FromWide(headers);
  constexpr std::string_view kAction = "SOAPAction: ";
  if (const std::size_t at = head.find(kAction); at != head.npos) {
    std::string action = head.substr(at + kAction.size());
    action.resize(std::min(action.size(), action.find_first_of("\r\n")));
    // A namespace, then the method; npos + 1 is 0.
    return action.substr(action.find_last_of('/') + 1);
  }
  constexpr std::string_view kMethod = "method=";
  if (!body.starts_with(kMethod)) return {};
  return WithoutVersion(body.substr(0, body.find('&')).substr(kMethod.size()));
}

// The error is read at once, before anything of ours can overwrite it.
template <class Result>
Result ExchangeWatch::Keep(Result result) {
  if (!result) m_lastError = m_below.GetLastError();
  return result;
}

ExchangeRecord* ExchangeWatch::Find(HINTERNET request) {
  const auto found = m_requests.find(request);
  return found != m_requests.end() ? &m_records[found->second] : nullptr;
}

BOOL ExchangeWatch::Sent(HINTERNET request, BOOL result) {
  if (ExchangeRecord* record = Find(request)) {
    record->sent = true;
    record->error = result ? 0 : m_lastError;
    record->status = result ? ReadStatus(m_below, request) : 0;
    record->answer.clear();
  }
  return result;
}

HINTERNET ExchangeWatch::InternetOpenW(LPCWSTR agent, DWORD accessType, LPCWSTR proxy,
                                       LPCWSTR proxyBypass, DWORD flags) {
  return Keep(m_below.InternetOpenW(agent, accessType, proxy, proxyBypass, flags));
}

HINTERNET ExchangeWatch::InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                                          LPCWSTR userName, LPCWSTR password, DWORD service,
                                          DWORD flags, DWORD_PTR context) {
  HINTERNET connect = Keep(m_below.InternetConnectW(session, serverName, port, userName, password,
                                                    service, flags, context));
  m_connections[connect] = {Utf8FromWide(ViewOf(serverName)), port};
  return connect;
}

HINTERNET ExchangeWatch::HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                          LPCWSTR version, LPCWSTR referrer, LPCWSTR* acceptTypes,
                                          DWORD flags, DWORD_PTR context) {
  HINTERNET request = Keep(m_below.HttpOpenRequestW(connect, verb, objectName, version, referrer,
                                                    acceptTypes, flags, context));
  ExchangeRecord record;
  record.host = m_connections[connect].host;
  record.port = m_connections[connect].port;
  record.path = Utf8FromWide(ViewOf(objectName));
  if (request == nullptr) record.error = m_lastError;
  m_records.push_back(std::move(record));
  if (request != nullptr) m_requests[request] = m_records.size() - 1;
  return request;
}

BOOL ExchangeWatch::HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                     LPVOID optional, DWORD optionalLength) {
  if (ExchangeRecord* record = Find(request)) {
    const WideView head = headersLength == static_cast<DWORD>(-1) || headers == nullptr
                              ? ViewOf(headers)
                              : WideView(headers, headersLength);
    const std::string_view body(static_cast<const char*>(optional),
                                optional != nullptr ? optionalLength : 0);
    record->operation = FindOperation(head, body);
  }
  return Sent(request, Keep(m_below.HttpSendRequestW(request, headers, headersLength, optional,
                                                     optionalLength)));
}

BOOL ExchangeWatch::HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                                       INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                       DWORD_PTR context) {
  return Sent(request,
              Keep(m_below.HttpSendRequestExW(request, buffersIn, buffersOut, flags, context)));
}

BOOL ExchangeWatch::InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size,
                                      DWORD* written) {
  return Keep(m_below.InternetWriteFile(request, buffer, size, written));
}

BOOL ExchangeWatch::HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                    DWORD_PTR context) {
  return Sent(request, Keep(m_below.HttpEndRequestW(request, buffersOut, flags, context)));
}

BOOL ExchangeWatch::InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) {
  const BOOL result = Keep(m_below.InternetReadFile(request, buffer, size, read));
  if (ExchangeRecord* record = Find(request)) {
    if (result) {
      AppendLimited(record->answer, static_cast<const char*>(buffer), *read,
                    ExchangeRecord::kAnswerLimit);
    } else {
      record->error = m_lastError;
    }
  }
  return result;
}

BOOL ExchangeWatch::HttpQueryInfoW(HINTERNET request, DWORD infoLevel, LPVOID buffer, DWORD* size,
                                   DWORD* index) {
  return Keep(m_below.HttpQueryInfoW(request, infoLevel, buffer, size, index));
}

DWORD ExchangeWatch::InternetErrorDlg(HWND parent, HINTERNET request, DWORD error, DWORD flags,
                                      LPVOID* data) {
  return m_below.InternetErrorDlg(parent, request, error, flags, data);
}

BOOL ExchangeWatch::InternetQueryOptionW(HINTERNET handle, DWORD option, LPVOID buffer,
                                         DWORD* size) {
  return Keep(m_below.InternetQueryOptionW(handle, option, buffer, size));
}

BOOL ExchangeWatch::InternetSetOptionW(HINTERNET handle, DWORD option, LPVOID buffer, DWORD size) {
  return Keep(m_below.InternetSetOptionW(handle, option, buffer, size));
}

BOOL ExchangeWatch::InternetCloseHandle(HINTERNET handle) {
  if (ExchangeRecord* record = Find(handle)) ReadRefusal(handle, *record);
  m_requests.erase(handle);
  m_connections.erase(handle);
  return Keep(m_below.InternetCloseHandle(handle));
}

HWND ExchangeWatch::GetActiveWindow() { return m_below.GetActiveWindow(); }

void ExchangeWatch::ReadRefusal(HINTERNET request, ExchangeRecord& record) {
  if (record.status == 0 || record.status == kStatusOk || record.status == kStatusUnauthorized ||
      record.status == kStatusProxyAuthentication || record.error != 0) {
    return;
  }
  char buffer[8192];
  DWORD read = 0;
  while (record.answer.size() < ExchangeRecord::kRefusalLimit &&
         m_below.InternetReadFile(request, buffer, sizeof buffer, &read) && read != 0) {
    AppendLimited(record.answer, buffer, read, ExchangeRecord::kRefusalLimit);
  }
}

}  // namespace velandoc
