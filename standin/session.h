// One connection, from its acceptance to its end.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "standin/channel.h"
#include "standin/input_buffer.h"
#include "standin/plan.h"
#include "standin/request_body.h"
#include "standin/response.h"
#include "standin/services.h"

namespace velandoc::standin {

enum class Port { kHttp, kHttps, kControl };

// How a connection is to be ended.
enum class Ending {
  kOrderly,  // What was sent arrives; TLS says goodbye.
  kAbrupt,   // The stream ends without a goodbye.
  kReset,
};

// Runs on the thread of its connection. Borrows the socket.
class Session {
 public:
  Session(Services& services, int socket, Port port, std::uint64_t number);

  // Serves requests until one side ends the connection.
  Ending Run();

 private:
  // Nothing: go on with the next request.
  using Next = std::optional<Ending>;

  Next ServeOne();
  // What the rules make of the request. They may ask for an operation that stands in its body: then
  // that is read first, and `body` says how it ended.
  Plan PlanFor(Request& request, std::optional<BodyResult>& body);
  // The head is read and `plan` made: reads the body, records the request and answers.
  Next Handle(Request& request, const Plan& plan, std::optional<BodyResult> body);
  // Nothing: the client is gone. `sink` may be null.
  std::optional<BodyResult> ReadBodyOf(Request& request, const Application* application,
                                       BodySink* sink, std::optional<std::uint64_t> stopAfter);
  bool SendContinue(const Request& request, const BodySink* sink);
  // The client asked whether to send its body, and has not sent it without waiting.
  bool WaitsWithBody(const Request& request) const;
  // How the body ended, when the request cannot be answered as it should be.
  Next Refuse(const Request& request, BodyResult body);
  Next Answer(const Request& request, const Plan& plan, Application* application, BodySink* sink);
  Next OpenTunnel(const Request& request);
  Next Send(const Request& request, const Plan& plan, const Response& response);
  Next SendRaw(const Plan& plan);
  bool StartTls(std::optional<CertificateKind> forced, const std::string& host);
  Application* FindApplication(const Request& request) const;
  bool IsControl() const { return m_port == Port::kControl; }

  Services& m_services;
  int m_socket;
  Port m_port;
  std::uint64_t m_number;
  std::unique_ptr<Channel> m_channel;
  InputBuffer m_input;
  bool m_isTls = false;
  std::string m_connectHost;
  ConnectionAuth m_auth;
};

}  // namespace velandoc::standin
