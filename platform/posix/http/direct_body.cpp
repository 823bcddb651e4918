#include "platform/posix/http/direct_body.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace velandoc::http {
namespace {

// Few system calls, and still small enough to stay in the processor's cache between the system's
// copy and ours.
constexpr std::size_t kAheadBytes = 248 * 1024;

}  // namespace

DirectBody::DirectBody(int socket, std::uint64_t length, std::chrono::milliseconds silence)
    : m_socket(socket), m_left(length), m_silence(silence), m_ahead(kAheadBytes) {}

DWORD DirectBody::WaitForBytes() const {
  pollfd file = {m_socket, POLLIN, 0};
  int ready = 0;
  do {
    ready = poll(&file, 1, static_cast<int>(m_silence.count()));
  } while (ready < 0 && errno == EINTR);
  if (ready == 0) return ERROR_INTERNET_TIMEOUT;
  return ready > 0 ? ERROR_SUCCESS : ERROR_INTERNET_CONNECTION_ABORTED;
}

DWORD DirectBody::Receive(char* buffer, std::size_t size, std::size_t* read) {
  iovec parts[2];
  parts[0] = {buffer, static_cast<std::size_t>(std::min<std::uint64_t>(size, m_left))};
  const std::uint64_t behind = m_left - parts[0].iov_len;
  parts[1] = {m_ahead.data(),
              static_cast<std::size_t>(std::min<std::uint64_t>(m_ahead.size(), behind))};
  msghdr message = {};
  message.msg_iov = parts;
  message.msg_iovlen = 2;
  for (;;) {
    const ssize_t count = recvmsg(m_socket, &message, 0);
    if (count > 0) {
      const auto received = static_cast<std::size_t>(count);
      m_left -= received;
      *read = std::min(received, parts[0].iov_len);
      m_aheadBegin = 0;
      m_aheadEnd = received - *read;
      return ERROR_SUCCESS;
    }
    if (count == 0) return ERROR_INTERNET_CONNECTION_ABORTED;
    if (errno == EAGAIN) {
      if (const DWORD error = WaitForBytes(); error != ERROR_SUCCESS) return error;
    } else if (errno != EINTR) {
      return errno == ECONNRESET ? ERROR_INTERNET_CONNECTION_RESET
                                 : ERROR_INTERNET_CONNECTION_ABORTED;
    }
  }
}

DWORD DirectBody::Available(std::size_t* count) {
  *count = m_aheadEnd - m_aheadBegin;
  if (*count != 0 || m_left == 0) return ERROR_SUCCESS;
  std::size_t none = 0;
  const DWORD error = Receive(nullptr, 0, &none);
  *count = m_aheadEnd - m_aheadBegin;
  return error;
}

DWORD DirectBody::Read(char* buffer, std::size_t size, std::size_t* read) {
  *read = std::min(size, m_aheadEnd - m_aheadBegin);
  if (*read != 0) {
    std::memcpy(buffer, m_ahead.data() + m_aheadBegin, *read);
    m_aheadBegin += *read;
  }
  while (*read < size && m_left != 0) {
    std::size_t count = 0;
    const DWORD error = Receive(buffer + *read, size - *read, &count);
    if (error != ERROR_SUCCESS) return error;
    *read += count;
  }
  return ERROR_SUCCESS;
}

}  // namespace velandoc::http
