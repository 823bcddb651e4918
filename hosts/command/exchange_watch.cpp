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

ExchangeRecord* ExchangeWatch::Find(HINTERNET request) {
  const auto found = m_requests.find(request);
  return found != m_requests.end() ? &m_records[found->second] : nullptr;
}

BOOL ExchangeWatch::Sent(HINTERNET request, BOOL result) {
  if (ExchangeRecord* record = Find(request)) {
    record->sent = true;
    record->error = result ? 0 : LastError();
    record->status = result ? ReadStatus(Below(), request) : 0;
    record->answer.clear();
  }
  return result;
}

HINTERNET ExchangeWatch::InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                                          LPCWSTR userName, LPCWSTR password, DWORD service,
                                          DWORD flags, DWORD_PTR context) {
  HINTERNET connect = ForwardingWinInet::InternetConnectW(session, serverName, port, userName,
                                                          password, service, flags, context);
  m_connections[connect] = {Utf8FromWide(ViewOf(serverName)), port};
  return connect;
}

HINTERNET ExchangeWatch::HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName,
                                          LPCWSTR version, LPCWSTR referrer, LPCWSTR* acceptTypes,
                                          DWORD flags, DWORD_PTR context) {
  HINTERNET request = ForwardingWinInet::HttpOpenRequestW(connect, verb, objectName, version,
                                                          referrer, acceptTypes, flags, context);
  ExchangeRecord record;
  record.host = m_connections[connect].host;
  record.port = m_connections[connect].port;
  record.path = Utf8FromWide(ViewOf(objectName));
  if (request == nullptr) record.error = LastError();
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
  return Sent(request, ForwardingWinInet::HttpSendRequestW(request, headers, headersLength,
                                                           optional, optionalLength));
}

BOOL ExchangeWatch::HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                                       INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                       DWORD_PTR context) {
  return Sent(request, ForwardingWinInet::HttpSendRequestExW(request, buffersIn, buffersOut, flags,
                                                             context));
}

BOOL ExchangeWatch::HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                                    DWORD_PTR context) {
  return Sent(request, ForwardingWinInet::HttpEndRequestW(request, buffersOut, flags, context));
}

BOOL ExchangeWatch::InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) {
  const BOOL result = ForwardingWinInet::InternetReadFile(request, buffer, size, read);
  if (ExchangeRecord* record = Find(request)) {
    if (result) {
      AppendLimited(record->answer, static_cast<const char*>(buffer), *read,
                    ExchangeRecord::kAnswerLimit);
    } else {
      record->error = LastError();
    }
  }
  return result;
}

BOOL ExchangeWatch::InternetCloseHandle(HINTERNET handle) {
  if (ExchangeRecord* record = Find(handle)) ReadRefusal(handle, *record);
  m_requests.erase(handle);
  m_connections.erase(handle);
  return ForwardingWinInet::InternetCloseHandle(handle);
}

void ExchangeWatch::ReadRefusal(HINTERNET request, ExchangeRecord& record) {
  if (record.status == 0 || record.status == kStatusOk || record.status == kStatusUnauthorized ||
      record.status == kStatusProxyAuthentication || record.error != 0) {
    return;
  }
  char buffer[8192];
  DWORD read = 0;
  while (record.answer.size() < ExchangeRecord::kRefusalLimit &&
         Below().InternetReadFile(request, buffer, sizeof buffer, &read) && read != 0) {
    AppendLimited(record.answer, buffer, read, ExchangeRecord::kRefusalLimit);
  }
}

}  // namespace velandoc
