// Counts that tests ask for; connections to the control port are not among them.
#pragma once

#include <atomic>
#include <cstdint>

namespace velandoc::standin {

struct Statistics {
  std::atomic<std::uint64_t> connectionsAccepted{0};
  std::atomic<std::uint64_t> connectionsOpen{0};
  std::atomic<std::uint64_t> tlsHandshakes{0};
  std::atomic<std::uint64_t> requests{0};
};

}  // namespace velandoc::standin
