// A two-way stream of bytes to one client: a plain socket or TLS over it.
//
// A channel borrows its socket; the connection owns it and closes it after the channel is gone. One
// thread uses a channel; Server::Stop shuts the socket down from another one, which ends every
// call.
#pragma once

#include <sys/socket.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace velandoc::standin {

class Channel {
 public:
  virtual ~Channel() = default;

  // Up to `size` bytes into `buffer`, at least one; 0 at the end of the stream, on failure, and
  // when the client was silent for too long.
  virtual std::size_t Read(char* buffer, std::size_t size) = 0;

  // Reads up to `size` bytes that nobody looks at. Returns as Read does.
  virtual std::size_t Discard(std::size_t size) = 0;

  // Sends all pieces in order; false once the client cannot be reached.
  virtual bool Write(std::span<const std::string_view> pieces) = 0;

  // Says that no more will be written; reading goes on.
  virtual void EndWriting() = 0;

  bool Write(std::string_view piece) { return Write(std::span(&piece, 1)); }
};

std::unique_ptr<Channel> MakeSocketChannel(int socket);

}  // namespace velandoc::standin
