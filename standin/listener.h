// A listening socket of the loopback interface, on a port that the system picks.
#pragma once

#include <cstdint>

#include "standin/unique_fd.h"

namespace velandoc::standin {

class Listener {
 public:
  // Throws std::system_error when no socket is to be had.
  Listener();

  std::uint16_t PortNumber() const { return m_port; }
  // Waits for a client; not open once Stop was called.
  UniqueFd Accept();
  // Ends a waiting Accept, from another thread.
  void Stop();

 private:
  UniqueFd m_socket;
  std::uint16_t m_port = 0;
};

}  // namespace velandoc::standin
