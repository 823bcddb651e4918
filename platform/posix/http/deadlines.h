// How long a peer may keep a request waiting.
#pragma once

#include <chrono>

namespace velandoc::http {

struct Deadlines {
  /// Name look-up, connection and TLS handshake together.
  std::chrono::milliseconds connect = std::chrono::seconds(60);
  /// Without a byte in either direction, from the request's last byte to the answer's too.
  std::chrono::milliseconds silence = std::chrono::minutes(5);
};

/// The limits above, or both as many seconds as the environment variable VELANDOC_TIMEOUT_SECONDS
/// says (fractions count; what is no positive number is passed over).
Deadlines CurrentDeadlines();

}  // namespace velandoc::http
