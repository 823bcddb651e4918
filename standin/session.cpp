#include "standin/session.h"

#include <exception>
#include <optional>

#include "standin/request_body.h"
#include "standin/request_head.h"
#include "standin/response_writer.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

bool IsLastRequest(const Request& request) {
  if (request.Lists("Connection", "close")) return true;
  return request.version == "HTTP/1.0" && !request.Lists("Connection", "keep-alive");
}

Response ErrorPage(int status, std::string_view text) {
  Response response = HtmlPage(status, UsualReason(status), text);
  response.close = true;
  return response;
}

}  // namespace

Session::Session(Services& services, int socket, Port port, std::uint64_t number)
    : m_services(services),
      m_socket(socket),
      m_port(port),
      m_number(number),
      m_channel(MakeSocketChannel(socket)),
      m_input(*m_channel) {}

Ending Session::Run() {
  if (m_port == Port::kHttps && !StartTls(m_services.certificates.Forced(), {}))
    return Ending::kAbrupt;
  std::optional<Ending> ending;
  while (!ending) ending = ServeOne();
  if (*ending == Ending::kOrderly) m_channel->EndWriting();
  return *ending;
}

bool Session::StartTls(std::optional<CertificateKind> forced, const std::string& host) {
  auto channel = m_services.tls.Accept(m_socket, forced, host);
  if (!channel) return false;
  m_channel = std::move(channel);
  m_input.Attach(*m_channel);
  m_isTls = true;
  ++m_services.statistics.tlsHandshakes;
  return true;
}

std::optional<Ending> Session::ServeOne() {
  const bool isControl = m_port == Port::kControl;
  Request request;
  request.connection = m_number;
  const HeadResult head = ReadHead(m_input, request);
  if (head == HeadResult::kEnd) return Ending::kOrderly;
  request.tls = m_isTls;
  request.connectHost = m_connectHost;
  if (!m_connectHost.empty()) request.proxy = true;
  if (!isControl) ++m_services.statistics.requests;
  if (head != HeadResult::kComplete) {
    if (!isControl) m_services.log.Add(request);
    return Send(request, head == HeadResult::kTooLong
                             ? ErrorPage(431, "The head of the request is too long.")
                             : ErrorPage(400, "The head of the request is malformed."));
  }

  Application* application =
      (isControl ? m_services.controlPages : m_services.applications).Find(request);
  if (request.Lists("Expect", "100-continue") && m_input.Waiting().empty() &&
      !m_channel->Write("HTTP/1.1 100 Continue\r\n\r\n"))
    return Ending::kAbrupt;
  BodyOptions options;
  options.keep = application && !application->IgnoresBody(request);
  options.hash = !isControl && m_services.log.IsRecording();
  const BodyResult body = ReadBody(m_input, request, options);
  if (!isControl) m_services.log.Add(request);
  if (body == BodyResult::kCutShort) return Ending::kOrderly;
  if (body == BodyResult::kMalformed)
    return Send(request, ErrorPage(400, "The body of the request is malformed."));
  if (body == BodyResult::kTooLong)
    return Send(request, ErrorPage(413, "The body of the request is too long."));

  if (request.method == "CONNECT" && !isControl) return OpenTunnel(request);
  return Send(request, Answer(request, application));
}

std::optional<Ending> Session::OpenTunnel(const Request& request) {
  if (m_isTls || !m_connectHost.empty())
    return Send(request, ErrorPage(400, "A tunnel cannot be opened here."));
  if (!m_channel->Write("HTTP/1.1 200 Connection established\r\n\r\n")) return Ending::kAbrupt;
  m_connectHost = request.host;
  // The other end of the tunnel is this server: TLS if the client starts it, else plain HTTP.
  char first = 0;
  if (recv(m_socket, &first, 1, MSG_PEEK) != 1) return Ending::kOrderly;
  constexpr char kTlsHandshake = 0x16;
  if (first == kTlsHandshake && !StartTls(std::nullopt, m_connectHost)) return Ending::kAbrupt;
  return std::nullopt;
}

Response Session::Answer(const Request& request, Application* application) {
  if (!application) return HtmlPage(404, "Not Found", "There is nothing at this address.");
  try {
    return application->Answer(request);
  } catch (const std::exception& error) {
    return HtmlPage(500, "Internal Server Error", error.what());
  }
}

std::optional<Ending> Session::Send(const Request& request, const Response& response) {
  AnswerStream stream(*m_channel, m_services.stop);
  if (!WriteResponse(stream, response, request.method == "HEAD")) return Ending::kAbrupt;
  if (response.close || response.framing == Framing::kClose || IsLastRequest(request))
    return Ending::kOrderly;
  return std::nullopt;
}

}  // namespace velandoc::standin
