#include "platform/posix/http/download_body.h"

#include <algorithm>
#include <cstring>

namespace velandoc::http {

void DownloadBody::Take(const char* data, std::size_t size) {
  const std::size_t direct = std::min(size, m_room);
  Give(data, direct);
  m_held.insert(m_held.end(), data + direct, data + size);
}

void DownloadBody::Clear() {
  m_held.clear();
  m_begin = 0;
}

void DownloadBody::BeginRead(char* buffer, std::size_t size) {
  m_target = buffer;
  m_room = size;
  m_served = 0;
  const std::size_t count = std::min(size, Held());
  Give(m_held.data() + m_begin, count);
  m_begin += count;
  if (m_begin == m_held.size()) Clear();
}

std::size_t DownloadBody::EndRead() {
  m_target = nullptr;
  m_room = 0;
  return m_served;
}

void DownloadBody::Give(const char* data, std::size_t size) {
  if (size == 0) return;
  std::memcpy(m_target, data, size);
  m_target += size;
  m_room -= size;
  m_served += size;
}

}  // namespace velandoc::http
