#include "standin/input_buffer.h"

#include <algorithm>
#include <cstring>

namespace velandoc::standin {
namespace {

constexpr std::size_t kReadAhead = 16 * 1024;
constexpr std::size_t kLongestLine = 4096;

}  // namespace

void InputBuffer::Take(std::size_t count) {
  m_start += count;
  if (m_start == m_bytes.size()) {
    m_bytes.clear();
    m_start = 0;
  }
}

bool InputBuffer::Fill() {
  m_bytes.erase(0, m_start);
  m_start = 0;
  const std::size_t before = m_bytes.size();
  m_bytes.resize(before + kReadAhead);
  const std::size_t got = m_channel->Read(m_bytes.data() + before, kReadAhead);
  m_bytes.resize(before + got);
  return got > 0;
}

std::size_t InputBuffer::Read(char* buffer, std::size_t size) {
  const std::string_view waiting = Waiting();
  if (waiting.empty()) return m_channel->Read(buffer, size);
  const std::size_t count = std::min(size, waiting.size());
  std::memcpy(buffer, waiting.data(), count);
  Take(count);
  return count;
}

std::size_t InputBuffer::Discard(std::size_t size) {
  const std::size_t waiting = std::min(size, Waiting().size());
  if (waiting == 0) return m_channel->Discard(size);
  Take(waiting);
  return waiting;
}

bool InputBuffer::ReadLine(std::string& line) {
  for (;;) {
    const std::string_view waiting = Waiting();
    const std::size_t end = waiting.find('\n');
    if (end != std::string_view::npos) {
      line = waiting.substr(0, end);
      if (!line.empty() && line.back() == '\r') line.pop_back();
      Take(end + 1);
      return true;
    }
    if (waiting.size() > kLongestLine || !Fill()) return false;
  }
}

}  // namespace velandoc::standin
