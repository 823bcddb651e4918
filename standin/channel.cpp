#include "standin/channel.h"

#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace velandoc::standin {
namespace {

class SocketChannel final : public Channel {
 public:
  explicit SocketChannel(int socket) : m_socket(socket) {}

  std::size_t Read(char* buffer, std::size_t size) override { return Receive(buffer, size, 0); }

  // MSG_TRUNC drops TCP data in the kernel, without a copy: uploads are then limited by the client.
  std::size_t Discard(std::size_t size) override {
    return Receive(nullptr, std::min<std::size_t>(size, 16u << 20), MSG_TRUNC);
  }

  bool Write(std::span<const std::string_view> pieces) override {
    while (!pieces.empty()) {
      std::array<iovec, kMostPieces> vectors{};
      const std::size_t count = std::min(pieces.size(), kMostPieces);
      for (std::size_t i = 0; i < count; ++i)
        vectors[i] = {const_cast<char*>(pieces[i].data()), pieces[i].size()};
      if (!SendAll(vectors.data(), count)) return false;
      pieces = pieces.subspan(count);
    }
    return true;
  }

  void EndWriting() override { shutdown(m_socket, SHUT_WR); }

 private:
  static constexpr std::size_t kMostPieces = 16;

  std::size_t Receive(char* buffer, std::size_t size, int flags) {
    for (;;) {
      const ssize_t got = recv(m_socket, buffer, size, flags);
      if (got >= 0) return static_cast<std::size_t>(got);
      if (errno != EINTR) return 0;
    }
  }

  bool SendAll(iovec* vectors, std::size_t count) {
    while (count > 0) {
      msghdr message{};
      message.msg_iov = vectors;
      message.msg_iovlen = count;
      ssize_t sent = sendmsg(m_socket, &message, MSG_NOSIGNAL);
      if (sent < 0) {
        if (errno == EINTR) continue;
        return false;
      }
      auto left = static_cast<std::size_t>(sent);
      while (count > 0 && left >= vectors->iov_len) {
        left -= vectors->iov_len;
        ++vectors;
        --count;
      }
      if (count > 0) {
        vectors->iov_base = static_cast<char*>(vectors->iov_base) + left;
        vectors->iov_len -= left;
      }
    }
    return true;
  }

  int m_socket;
};

}  // namespace

std::unique_ptr<Channel> MakeSocketChannel(int socket) {
  return std::make_unique<SocketChannel>(socket);
}

}  // namespace velandoc::standin
