#include "standin/server.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <system_error>

namespace velandoc::standin {
namespace {

constexpr timeval kLongestSilence{300, 0};
constexpr timeval kLongestGoodbye{1, 0};

void SetTimeouts(int socket, const timeval& time) {
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof(time));
  setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof(time));
}

}  // namespace

Server::~Server() { Stop(); }

void Server::Start() {
  for (const Port port : {Port::kHttp, Port::kHttps, Port::kControl})
    m_acceptors.emplace_back([this, port] { AcceptAll(port); });
}

void Server::Stop() {
  m_services.stop.Raise();
  for (Listener& listener : m_listeners) listener.Stop();
  m_changed.notify_all();
  for (std::thread& acceptor : m_acceptors) acceptor.join();
  m_acceptors.clear();
  std::unique_lock lock(m_mutex);
  // On the control port the answer to the command that stops the server may still be on its way.
  for (const auto& [socket, port] : m_sockets)
    shutdown(socket, port == Port::kControl ? SHUT_RD : SHUT_RDWR);
  m_changed.wait(lock, [this] { return m_connections == 0; });
}

void Server::AcceptAll(Port port) {
  Listener& listener = m_listeners[static_cast<std::size_t>(port)];
  for (;;) {
    {
      // The control port is always served: it is the way out of a jam on the others.
      std::unique_lock lock(m_mutex);
      m_changed.wait(lock, [this, port] {
        return port == Port::kControl || m_connections < kMostConnections ||
               m_services.stop.IsRaised();
      });
    }
    UniqueFd socket = listener.Accept();
    if (!socket.IsOpen() || m_services.stop.IsRaised()) return;
    SetTimeouts(socket.Get(), kLongestSilence);
    if (port != Port::kControl) {
      ++m_services.statistics.connectionsAccepted;
      ++m_services.statistics.connectionsOpen;
    }
    std::uint64_t number = 0;
    {
      const std::lock_guard lock(m_mutex);
      number = port == Port::kControl ? 0 : ++m_lastNumber;
      ++m_connections;
      m_sockets.emplace(socket.Get(), port);
    }
    std::thread([this, port, number, client = std::move(socket)]() mutable {
      Serve(std::move(client), port, number);
    }).detach();
  }
}

void Server::Serve(UniqueFd socket, Port port, std::uint64_t number) {
  const int descriptor = socket.Get();
  const Ending ending = Session(m_services, descriptor, port, number).Run();
  {
    // Before the number can belong to another connection.
    const std::lock_guard lock(m_mutex);
    m_sockets.erase(descriptor);
  }
  Close(std::move(socket), ending);
  if (port != Port::kControl) --m_services.statistics.connectionsOpen;
  const std::lock_guard lock(m_mutex);
  --m_connections;
  m_changed.notify_all();
}

void Server::Close(UniqueFd socket, Ending ending) {
  if (ending == Ending::kReset) {
    const linger now{1, 0};
    setsockopt(socket.Get(), SOL_SOCKET, SO_LINGER, &now, sizeof(now));
    return;
  }
  // Closing with unread bytes would turn into a reset and could destroy the answer on its way.
  shutdown(socket.Get(), SHUT_WR);
  SetTimeouts(socket.Get(), kLongestGoodbye);
  constexpr int kMostPieces = 256;
  for (int i = 0; i < kMostPieces; ++i)
    if (recv(socket.Get(), nullptr, 1 << 20, MSG_TRUNC) <= 0) return;
}

}  // namespace velandoc::standin
