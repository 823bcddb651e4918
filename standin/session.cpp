#include "standin/session.h"

#include <exception>
#include <memory>
#include <optional>

#include "standin/operation_name.h"
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

Ending EndingOf(const Cut& cut) { return cut.isReset ? Ending::kReset : Ending::kAbrupt; }

std::string InterimAnswer(int status) {
  std::string answer = "HTTP/1.1 " + std::to_string(status) + ' ';
  answer += UsualReason(status);
  return answer + "\r\n\r\n";
}

std::unique_ptr<BodySink> OpenBody(Application* application, const Request& request,
                                   const Plan& plan) {
  // What a rule answers never reaches the application.
  if (!application || plan.response || plan.raw || plan.hang) return nullptr;
  return application->OpenBody(request);
}

Response AnswerOf(Application* application, const Request& request, BodySink* sink) {
  if (!application) return HtmlPage(404, "Not Found", "There is nothing at this address.");
  try {
    if (sink) return sink->Settled() ? *sink->Settled() : sink->Finish();
    return application->Answer(request);
  } catch (const std::exception& error) {
    return HtmlPage(500, "Internal Server Error", error.what());
  }
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
  const bool isHttps = m_port == Port::kHttps;
  if (!IsControl())
    if (const auto rule = m_services.rules.AtAccept(isHttps)) return EndingOf(*rule->actions.cut);
  if (isHttps && !StartTls(m_services.certificates.Forced(), {})) return Ending::kAbrupt;
  Next ending;
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

Application* Session::FindApplication(const Request& request) const {
  return (IsControl() ? m_services.controlPages : m_services.applications).Find(request);
}

Session::Next Session::ServeOne() {
  Request request;
  request.connection = m_number;
  const HeadResult head = ReadHead(m_input, request);
  if (head == HeadResult::kEnd) return Ending::kOrderly;
  request.tls = m_isTls;
  request.connectHost = m_connectHost;
  if (!m_connectHost.empty()) request.proxy = true;
  if (!IsControl()) ++m_services.statistics.requests;
  if (head == HeadResult::kComplete) {
    std::optional<BodyResult> body;
    const Plan plan = IsControl() ? Plan() : PlanFor(request, body);
    return Handle(request, plan, body);
  }
  if (!IsControl()) m_services.log.Add(request);
  return Send(request, {},
              head == HeadResult::kTooLong
                  ? ErrorPage(431, "The head of the request is too long.")
                  : ErrorPage(400, "The head of the request is malformed."));
}

Plan Session::PlanFor(Request& request, std::optional<BodyResult>& body) {
  if (m_services.rules.AsksForOperations() && IsRpcRequest(request))
    body = ReadBodyOf(request, FindApplication(request), nullptr, std::nullopt)
               .value_or(BodyResult::kCutShort);
  request.operation = OperationName(request);
  request.role = RoleName(request);
  return MakePlan(m_services.rules, request, m_auth);
}

bool Session::WaitsWithBody(const Request& request) const {
  return request.Lists("Expect", "100-continue") && m_input.Waiting().empty();
}

bool Session::SendContinue(const Request& request, const BodySink* sink) {
  if (!WaitsWithBody(request) && !(sink && sink->GreetsUnasked())) return true;
  return m_channel->Write("HTTP/1.1 100 Continue\r\n\r\n");
}

std::optional<BodyResult> Session::ReadBodyOf(Request& request, const Application* application,
                                              BodySink* sink,
                                              std::optional<std::uint64_t> stopAfter) {
  const bool isSettled = sink && sink->Settled();
  if (isSettled && WaitsWithBody(request)) return BodyResult::kComplete;
  if (!SendContinue(request, sink)) return std::nullopt;
  BodyOptions options;
  options.keep = !sink && application && !application->IgnoresBody(request);
  options.largestHash = IsControl() ? 0 : m_services.log.LargestHash();
  options.stopAfter = stopAfter;
  if (!isSettled) options.sink = sink;
  return ReadBody(m_input, request, options);
}

Session::Next Session::Handle(Request& request, const Plan& plan, std::optional<BodyResult> body) {
  request.user = plan.user;
  Application* application = FindApplication(request);
  const std::unique_ptr<BodySink> sink = OpenBody(application, request, plan);
  if (!body && plan.isEarly) body = BodyResult::kComplete;
  if (!body) {
    const bool isCut = plan.cut && plan.cut->at == Cut::At::kRequest;
    body =
        ReadBodyOf(request, application, sink.get(), isCut ? plan.cut->afterBytes : std::nullopt);
    if (!body) return Ending::kAbrupt;
  }
  if (!IsControl()) {
    request.operation = OperationName(request);
    m_services.log.Add(request);
  }
  if (*body == BodyResult::kStopped) return EndingOf(*plan.cut);
  if (*body != BodyResult::kComplete) return Refuse(request, *body);
  return Answer(request, plan, application, sink.get());
}

Session::Next Session::Refuse(const Request& request, BodyResult body) {
  if (body == BodyResult::kMalformed)
    return Send(request, {}, ErrorPage(400, "The body of the request is malformed."));
  if (body == BodyResult::kTooLong)
    return Send(request, {}, ErrorPage(413, "The body of the request is too long."));
  return Ending::kOrderly;
}

Session::Next Session::Answer(const Request& request, const Plan& plan, Application* application,
                              BodySink* sink) {
  if (plan.delay.count() > 0 && !m_services.stop.Sleep(plan.delay)) return Ending::kAbrupt;
  if (plan.cut && plan.cut->at == Cut::At::kRequest) return EndingOf(*plan.cut);
  if (plan.hang) {
    m_services.stop.Sleep(*plan.hang);
    return Ending::kAbrupt;
  }
  for (const int status : plan.interimStatuses)
    if (!m_channel->Write(InterimAnswer(status))) return Ending::kAbrupt;
  if (plan.raw) return SendRaw(plan);
  if (plan.response) return Send(request, plan, *plan.response);
  if (request.method == "CONNECT" && !IsControl()) return OpenTunnel(request);
  return Send(request, plan, AnswerOf(application, request, sink));
}

Session::Next Session::OpenTunnel(const Request& request) {
  if (m_isTls || !m_connectHost.empty())
    return Send(request, {}, ErrorPage(400, "A tunnel cannot be opened here."));
  if (!m_channel->Write("HTTP/1.1 200 Connection established\r\n\r\n")) return Ending::kAbrupt;
  m_connectHost = request.host;
  // The other end of the tunnel is this server: TLS if the client starts it, else plain HTTP.
  char first = 0;
  if (recv(m_socket, &first, 1, MSG_PEEK) != 1) return Ending::kOrderly;
  constexpr char kTlsHandshake = 0x16;
  if (first == kTlsHandshake && !StartTls(std::nullopt, m_connectHost)) return Ending::kAbrupt;
  return std::nullopt;
}

Session::Next Session::Send(const Request& request, const Plan& plan, const Response& response) {
  AnswerStream stream(*m_channel, m_services.stop);
  if (plan.drip) stream.SetDrip(*plan.drip);
  if (plan.cut) stream.SetCut(*plan.cut);
  if (!WriteResponse(stream, response, request.method == "HEAD"))
    return stream.IsCut() ? EndingOf(*plan.cut) : Ending::kAbrupt;
  if (response.close || response.framing == Framing::kClose || plan.isEarly ||
      IsLastRequest(request))
    return Ending::kOrderly;
  return std::nullopt;
}

Session::Next Session::SendRaw(const Plan& plan) {
  AnswerStream stream(*m_channel, m_services.stop);
  if (plan.drip) stream.SetDrip(*plan.drip);
  if (!stream.Send({}, plan.raw->bytes) || plan.raw->close) return Ending::kAbrupt;
  return std::nullopt;
}

}  // namespace velandoc::standin
