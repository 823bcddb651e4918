// The three ports and the connections to them, a thread each.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "standin/listener.h"
#include "standin/services.h"
#include "standin/session.h"

namespace velandoc::standin {

class Server {
 public:
  // Listens at once; connections are taken from Start on.
  explicit Server(Services& services) : m_services(services) {}
  // Stops.
  ~Server();

  void Start();
  // Ends all connections and waits for their threads.
  void Stop();

  std::uint16_t PortNumber(Port port) const {
    return m_listeners[static_cast<std::size_t>(port)].PortNumber();
  }

 private:
  // Further clients wait in the backlog of the listening socket.
  static constexpr std::size_t kMostConnections = 512;

  void AcceptAll(Port port);
  void Serve(UniqueFd socket, Port port, std::uint64_t number);
  void Close(UniqueFd socket, Ending ending);

  Services& m_services;
  std::array<Listener, 3> m_listeners;
  std::vector<std::thread> m_acceptors;
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::map<int, Port> m_sockets;
  std::size_t m_connections = 0;
  std::uint64_t m_lastNumber = 0;
};

}  // namespace velandoc::standin
