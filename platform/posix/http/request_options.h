// What a request is to libcurl: its options, set on an easy handle before the transfer.
#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/posix/http/certificate_check.h"
#include "platform/posix/http/deadlines.h"
#include "platform/posix/http/endpoint.h"
#include "platform/posix/http/header_block.h"
#include "platform/posix/http/proxy.h"

namespace velandoc::http {

/// User name and password with the one scheme that they are for (a CURLAUTH bit).
struct Login {
  unsigned long scheme = 0;
  std::string user;
  std::string password;
};

enum class BodyKind { kNone, kMemory, kStreamed };

/// Read while a transfer is made. Only the body is kept.
struct TransferPlan {
  const Endpoint& server;
  const std::string& target;  // the request line's, also the absolute form for a proxy
  const std::string& path;    // the same without an origin
  const std::string& verb;
  const HeaderBlock& headers;  // in their order on the wire
  BodyKind bodyKind = BodyKind::kNone;
  std::string_view body;                    // kMemory; must live as long as the transfer
  std::optional<std::uint64_t> bodyLength;  // kStreamed; none: chunked
  const Proxy* proxy = nullptr;             // null: none
  const Login* serverLogin = nullptr;       // likewise
  const Login* proxyLogin = nullptr;
  DWORD ignoreFlags = 0;
};

/// libcurl's list of header lines.
class HeaderList {
 public:
  HeaderList() = default;
  ~HeaderList() { curl_slist_free_all(m_lines); }
  HeaderList(const HeaderList&) = delete;
  HeaderList& operator=(const HeaderList&) = delete;
  void Append(const char* line);
  curl_slist* Get() const { return m_lines; }

 private:
  curl_slist* m_lines = nullptr;
};

/// The options that do not depend on who takes the answer: address, verb, headers, body from
/// memory, proxy, logins, certificates. libcurl refers to some of them during the transfer, so this
/// object must outlive it.
class RequestOptions {
 public:
  RequestOptions(CURL* easy, const TransferPlan& plan, const Deadlines& deadlines);

  /// True if an answer's head may be a step of a login or of a tunnel, and not yet the answer.
  bool MayTakeSteps() const { return m_mayTakeSteps; }
  const CertificateCheck& Certificate() const { return *m_certificate; }

 private:
  void SetBody(CURL* easy, const TransferPlan& plan);
  void SetRoute(CURL* easy, const TransferPlan& plan);
  void SetLogins(CURL* easy, const TransferPlan& plan);
  void SetHeaders(CURL* easy, const TransferPlan& plan);

  std::shared_ptr<CertificateCheck> m_certificate;
  HeaderList m_headerList;
  HeaderList m_proxyHeaderList;
  HeaderList m_connectTo;
  bool m_mayTakeSteps = false;
};

}  // namespace velandoc::http
