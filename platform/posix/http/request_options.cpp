#include "platform/posix/http/request_options.h"

#include <new>

#include "platform/posix/http/name_override.h"

namespace velandoc::http {
namespace {

// What libcurl reads from a socket, or sends to it, in one call of the system.
constexpr long kReceiveBytes = 64 * 1024;
constexpr long kSendBytes = 256 * 1024;

}  // namespace

void HeaderList::Append(const char* line) {
  curl_slist* longer = curl_slist_append(m_lines, line);
  if (longer == nullptr) throw std::bad_alloc();
  m_lines = longer;
}

RequestOptions::RequestOptions(CURL* easy, const TransferPlan& plan, const Deadlines& deadlines)
    : m_certificate(std::make_shared<CertificateCheck>()) {
  m_certificate->host = plan.server.host;
  m_certificate->ignoreFlags = plan.ignoreFlags;
  const std::string url = Origin(plan.server) + plan.path;
  curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
  curl_easy_setopt(easy, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(easy, CURLOPT_REQUEST_TARGET, plan.target.c_str());
  curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, kReceiveBytes);
  curl_easy_setopt(easy, CURLOPT_UPLOAD_BUFFERSIZE, kSendBytes);
  curl_easy_setopt(easy, CURLOPT_NOPROGRESS, 1L);
  curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(deadlines.connect.count()));
  SetBody(easy, plan);
  if (plan.verb == "HEAD") curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
  curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, plan.verb.c_str());
  SetRoute(easy, plan);
  SetLogins(easy, plan);
  InstallCertificateCheck(easy, m_certificate);
  SetHeaders(easy, plan);
}

void RequestOptions::SetBody(CURL* easy, const TransferPlan& plan) {
  switch (plan.bodyKind) {
    case BodyKind::kNone:
      break;
    case BodyKind::kMemory:
      // Also for an empty body, which needs its "Content-Length: 0".
      curl_easy_setopt(easy, CURLOPT_POST, 1L);
      curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE,
                       static_cast<curl_off_t>(plan.body.size()));
      curl_easy_setopt(easy, CURLOPT_POSTFIELDS, plan.body.empty() ? "" : plan.body.data());
      break;
    case BodyKind::kStreamed:
      curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
      if (plan.bodyLength) {
        curl_easy_setopt(easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(*plan.bodyLength));
      }
      break;
  }
}

void RequestOptions::SetRoute(CURL* easy, const TransferPlan& plan) {
  if (plan.proxy) {
    curl_easy_setopt(easy, CURLOPT_PROXY, plan.proxy->url.c_str());
    // Whether the proxy serves this host is decided already.
    curl_easy_setopt(easy, CURLOPT_NOPROXY, "");
    return;
  }
  curl_easy_setopt(easy, CURLOPT_PROXY, "");
  // Through a proxy it is the proxy that looks names up.
  if (const auto connectTo = ConnectToText(plan.server.host)) {
    m_connectTo.Append(connectTo->c_str());
    curl_easy_setopt(easy, CURLOPT_CONNECT_TO, m_connectTo.Get());
  }
}

void RequestOptions::SetLogins(CURL* easy, const TransferPlan& plan) {
  if (plan.proxy) {
    curl_easy_setopt(easy, CURLOPT_PROXYAUTH, CURLAUTH_ANY);
    m_mayTakeSteps = plan.proxy->isHttp && (plan.server.secure || plan.proxy->HasLogin());
  }
  if (plan.proxyLogin) {
    curl_easy_setopt(easy, CURLOPT_PROXYUSERNAME, plan.proxyLogin->user.c_str());
    curl_easy_setopt(easy, CURLOPT_PROXYPASSWORD, plan.proxyLogin->password.c_str());
    curl_easy_setopt(easy, CURLOPT_PROXYAUTH, plan.proxyLogin->scheme);
    m_mayTakeSteps = true;
  }
  if (plan.serverLogin) {
    curl_easy_setopt(easy, CURLOPT_USERNAME, plan.serverLogin->user.c_str());
    curl_easy_setopt(easy, CURLOPT_PASSWORD, plan.serverLogin->password.c_str());
    curl_easy_setopt(easy, CURLOPT_HTTPAUTH, plan.serverLogin->scheme);
    m_mayTakeSteps = true;
  }
}

void RequestOptions::SetHeaders(CURL* easy, const TransferPlan& plan) {
  const auto isAbsent = [&plan](const char* name) { return plan.headers.Find(name) == nullptr; };
  // libcurl puts its own headers first. A name alone takes its header out, also for Host; the
  // request's own lines then stand in their order.
  m_headerList.Append("Host:");
  m_headerList.Append("Expect:");
  if (isAbsent("Accept")) m_headerList.Append("Accept:");
  if (isAbsent("User-Agent")) m_headerList.Append("User-Agent:");
  if (isAbsent("Content-Type")) m_headerList.Append("Content-Type:");
  if (plan.proxy) {
    if (plan.server.secure) {
      // The headers are for the server: the proxy must not see them.
      curl_easy_setopt(easy, CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));
      m_proxyHeaderList.Append("Proxy-Connection:");
      curl_easy_setopt(easy, CURLOPT_PROXYHEADER, m_proxyHeaderList.Get());
    } else {
      m_headerList.Append("Proxy-Connection:");
    }
  }
  std::string text;
  for (const HeaderLine& line : plan.headers.Lines()) {
    // "Name;" is libcurl's way to write a header with no value.
    text = line.name;
    text += line.value.empty() ? ";" : ": ";
    text += line.value;
    m_headerList.Append(text.c_str());
  }
  curl_easy_setopt(easy, CURLOPT_HTTPHEADER, m_headerList.Get());
}

}  // namespace velandoc::http
