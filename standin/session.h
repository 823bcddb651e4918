// One connection, from its acceptance to its end.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "standin/channel.h"
#include "standin/input_buffer.h"
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
  std::optional<Ending> ServeOne();
  std::optional<Ending> OpenTunnel(const Request& request);
  std::optional<Ending> Send(const Request& request, const Response& response);
  bool StartTls(std::optional<CertificateKind> forced, const std::string& host);
  Response Answer(const Request& request, Application* application);

  Services& m_services;
  int m_socket;
  Port m_port;
  std::uint64_t m_number;
  std::unique_ptr<Channel> m_channel;
  InputBuffer m_input;
  bool m_isTls = false;
  std::string m_connectHost;
};

}  // namespace velandoc::standin
