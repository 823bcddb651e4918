// The rest of a long plain body, read from its socket straight into the caller's buffer.
//
// libcurl reads into a buffer of its own, from which a caller's small reads must be copied twice;
// for bodies of many megabytes these copies are what is slower than the network. Once libcurl has
// handed over the head and what it read along with it, and is paused, the bytes that follow on the
// socket are the body's and nothing else. libcurl does not learn that they were taken, so the
// connection is closed afterwards: the price is one connection for each long body.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "platform/posix/wininet_types.h"

namespace velandoc::http {

class DirectBody {
 public:
  /// A shorter rest is not worth a connection.
  static constexpr std::uint64_t kShortest = 8 * 1024 * 1024;

  /// The next `length` bytes on `socket`, which stays its owner's and does not block.
  DirectBody(int socket, std::uint64_t length, std::chrono::milliseconds silence);

  /// Waits for the next bytes and counts those that are read ahead; 0 with ERROR_SUCCESS is the
  /// end.
  DWORD Available(std::size_t* count);
  /// Fills the buffer unless the body ends before; `*read` is what came. ERROR_SUCCESS or a
  /// number of error_map.h.
  DWORD Read(char* buffer, std::size_t size, std::size_t* read);

 private:
  /// At least one byte for `buffer`, and behind it as much as there is for m_ahead.
  DWORD Receive(char* buffer, std::size_t size, std::size_t* read);
  DWORD WaitForBytes() const;

  int m_socket;
  std::uint64_t m_left;  // on the socket
  std::chrono::milliseconds m_silence;
  std::vector<char> m_ahead;
  std::size_t m_aheadBegin = 0;
  std::size_t m_aheadEnd = 0;
};

}  // namespace velandoc::http
