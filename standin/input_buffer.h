// Buffered reading from a channel: heads and chunk sizes by line, bodies in large pieces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "standin/channel.h"

namespace velandoc::standin {

class InputBuffer {
 public:
  explicit InputBuffer(Channel& channel) : m_channel(&channel) {}

  // Goes on reading from another channel, once a tunnel has turned to TLS.
  void Attach(Channel& channel) { m_channel = &channel; }

  // The bytes that were read ahead and not taken yet.
  std::string_view Waiting() const { return std::string_view(m_bytes).substr(m_start); }
  void Take(std::size_t count);

  // Reads more behind the waiting bytes; false at the end of the stream.
  bool Fill();

  // Up to `size` body bytes, at least one; 0 at the end of the stream.
  std::size_t Read(char* buffer, std::size_t size);
  // The same without looking at them.
  std::size_t Discard(std::size_t size);

  // One line up to its line feed, which is taken but not stored, nor a carriage return before it.
  // False at the end of the stream and for lines above 4096 bytes.
  bool ReadLine(std::string& line);

 private:
  Channel* m_channel;
  std::string m_bytes;
  std::size_t m_start = 0;
};

}  // namespace velandoc::standin
