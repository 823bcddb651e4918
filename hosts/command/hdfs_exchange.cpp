#include "hosts/command/hdfs_exchange.h"

#include <algorithm>
#include <charconv>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr int kStatusOk = 200;
constexpr unsigned kHttpPort = 80;
constexpr unsigned kHttpsPort = 443;

thread_local HdfsExchangeLog* t_log = nullptr;

/// Host and port of "http://host:port/...".
void TakeEndpoint(WideView url, HdfsExchange& exchange) {
  const std::string text = Utf8FromWide(url);
  const std::size_t begin = text.find("://");
  if (begin == text.npos) return;
  std::string authority = text.substr(begin + 3);
  authority.resize(std::min(authority.find('/'), authority.size()));
  exchange.port = text.starts_with("https") ? kHttpsPort : kHttpPort;
  const std::size_t colon = authority.rfind(':');
  // A colon within brackets is an address's.
  if (colon != authority.npos && authority.find(']', colon) == authority.npos) {
    std::from_chars(authority.data() + colon + 1, authority.data() + authority.size(),
                    exchange.port);
    authority.resize(colon);
  }
  exchange.host = std::move(authority);
}

}  // namespace

int StatusNumber(WideView digits) {
  const std::string text = Utf8FromWide(digits);
  int status = 0;
  std::from_chars(text.data(), text.data() + text.size(), status);
  return status;
}

HdfsExchangeLog& HdfsExchangeLog::OfThread() {
  static HdfsExchangeLog first;
  return t_log != nullptr ? *t_log : first;
}

ThreadExchangeLog::ThreadExchangeLog() : m_previous(t_log) { t_log = &m_log; }

ThreadExchangeLog::~ThreadExchangeLog() { t_log = m_previous; }

const HdfsExchangeLog::OpenRequest* HdfsExchangeLog::FindRequest(Handle request) const {
  const auto found =
      std::find_if(m_requests.begin(), m_requests.end(),
                   [request](const OpenRequest& open) { return open.handle == request; });
  return found != m_requests.end() ? &*found : nullptr;
}

HdfsExchange* HdfsExchangeLog::Find(Handle request) {
  const OpenRequest* open = FindRequest(request);
  const bool known = open != nullptr && open->exchange < m_exchanges.size();
  return known ? &m_exchanges[open->exchange] : nullptr;
}

void HdfsExchangeLog::Connect(std::string host, unsigned port) {
  m_host = std::move(host);
  m_port = port;
}

void HdfsExchangeLog::Open(Handle request, std::string verb, WideString url, DWORD error) {
  HdfsExchange exchange;
  exchange.verb = std::move(verb);
  exchange.host = m_host;
  exchange.port = m_port;
  // The second request of an operation brings a file to where the first was told.
  exchange.isDataNode = !m_exchanges.empty();
  exchange.error = error;
  m_exchanges.push_back(std::move(exchange));
  if (request != nullptr) m_requests.push_back({request, m_exchanges.size() - 1, std::move(url)});
}

void HdfsExchangeLog::Answer(Handle request, int status, DWORD error, const WideString& url) {
  HdfsExchange* exchange = Find(request);
  if (exchange == nullptr) return;
  exchange->error = error;
  exchange->status = status;
  exchange->answer.clear();
  const WideString& opened = FindRequest(request)->url;
  if (opened.empty() || url.empty() || url == opened) return;
  exchange->isDataNode = true;
  TakeEndpoint(url, *exchange);
}

void HdfsExchangeLog::Fail(Handle request, DWORD error) {
  if (HdfsExchange* exchange = Find(request)) exchange->error = error;
}

void HdfsExchangeLog::Read(Handle request, const void* bytes, std::size_t count) {
  HdfsExchange* exchange = Find(request);
  if (exchange == nullptr) return;
  if (exchange->status == kStatusOk && exchange->verb == "GET") {
    if (m_count != nullptr) m_count->bytes += count;
    return;
  }
  const std::size_t room = HdfsExchange::kAnswerLimit - exchange->answer.size();
  exchange->answer.append(static_cast<const char*>(bytes), std::min(count, room));
}

void HdfsExchangeLog::Write(std::size_t count) {
  if (m_count != nullptr) m_count->bytes += count;
}

void HdfsExchangeLog::Close(Handle request) {
  std::erase_if(m_requests, [request](const OpenRequest& open) { return open.handle == request; });
}

}  // namespace velandoc
