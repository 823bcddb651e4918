// A WinInet port over another one that writes down what went out and what came back. The component
// tells its callers little of a failure, so whoever wants to name one has to see the exchange.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/forwarding_wininet.h"
#include "platform/text.h"

namespace velandoc {

/// One request and what came of it, its repetitions (credentials, certificates) included: the
/// latest counts.
struct ExchangeRecord {
  /// A good answer, which the caller reads anyway, is kept up to here: content types are large.
  static constexpr std::size_t kAnswerLimit = std::size_t{4} * 1024 * 1024;
  /// No more is read of a refusal: enough for a fault or a status page.
  static constexpr std::size_t kRefusalLimit = std::size_t{64} * 1024;

  std::string host;
  INTERNET_PORT port = 0;
  std::string path;
  std::string operation;  // of SOAP or RPC, without its version; empty for any other request
  bool sent = false;      // a send was tried
  DWORD error = 0;        // the platform's, of the operation that failed last; 0 for none
  int status = 0;         // of HTTP, 0 if no answer came
  std::string answer;     // its first kAnswerLimit bytes, or kRefusalLimit
};

/// Passes every operation on and changes nothing of what the caller sees. An answer that the caller
/// leaves unread is read, up to its limit, when its request is closed: until then credentials may
/// still be asked for on it. Answers 401 and 407 are never read here. For one thread.
class ExchangeWatch final : public ForwardingWinInet {
 public:
  explicit ExchangeWatch(WinInet& below) : ForwardingWinInet(below) {}

  /// In the order in which the requests were opened.
  const std::vector<ExchangeRecord>& Records() const { return m_records; }

  HINTERNET InternetConnectW(HINTERNET session, LPCWSTR serverName, INTERNET_PORT port,
                             LPCWSTR userName, LPCWSTR password, DWORD service, DWORD flags,
                             DWORD_PTR context) override;
  HINTERNET HttpOpenRequestW(HINTERNET connect, LPCWSTR verb, LPCWSTR objectName, LPCWSTR version,
                             LPCWSTR referrer, LPCWSTR* acceptTypes, DWORD flags,
                             DWORD_PTR context) override;
  BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override;
  BOOL HttpSendRequestExW(HINTERNET request, INTERNET_BUFFERSW* buffersIn,
                          INTERNET_BUFFERSW* buffersOut, DWORD flags, DWORD_PTR context) override;
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* buffersOut, DWORD flags,
                       DWORD_PTR context) override;
  BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override;
  BOOL InternetCloseHandle(HINTERNET handle) override;

 private:
  struct Endpoint {
    std::string host;
    INTERNET_PORT port = 0;
  };

  ExchangeRecord* Find(HINTERNET request);
  BOOL Sent(HINTERNET request, BOOL result);
  void ReadRefusal(HINTERNET request, ExchangeRecord& record);

  std::map<HINTERNET, Endpoint> m_connections;
  std::map<HINTERNET, std::size_t> m_requests;  // index in m_records
  std::vector<ExchangeRecord> m_records;
};

/// The method that a request names: of SOAP in the header SOAPAction, of RPC in the body. Empty if
/// it names none.
std::string FindOperation(WideView headers, std::string_view body);

}  // namespace velandoc
