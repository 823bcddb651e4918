#include "standin/listener.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace velandoc::standin {

Listener::Listener() : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof(address);
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (!m_socket.IsOpen() || bind(m_socket.Get(), generic, size) != 0 ||
      listen(m_socket.Get(), SOMAXCONN) != 0 || getsockname(m_socket.Get(), generic, &size) != 0)
    throw std::system_error(errno, std::generic_category(), "cannot listen on 127.0.0.1");
  m_port = ntohs(address.sin_port);
}

UniqueFd Listener::Accept() {
  for (;;) {
    UniqueFd client(accept4(m_socket.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client.IsOpen()) {
      if (errno == EINTR || errno == ECONNABORTED) continue;
      return client;
    }
    const int on = 1;
    setsockopt(client.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    return client;
  }
}

void Listener::Stop() { shutdown(m_socket.Get(), SHUT_RDWR); }

}  // namespace velandoc::standin
