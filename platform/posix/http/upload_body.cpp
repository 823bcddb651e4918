#include "platform/posix/http/upload_body.h"

#include <algorithm>
#include <cstring>

namespace velandoc::http {

UploadBody::UploadBody(std::optional<std::uint64_t> length) : m_unwritten(length) {
  m_gathered.reserve(std::min<std::uint64_t>(length.value_or(kGatheredBytes), kGatheredBytes));
}

void UploadBody::Gather(const char* data, std::size_t size) {
  m_gathered.insert(m_gathered.end(), data, data + size);
  if (m_unwritten) *m_unwritten -= size;
}

void UploadBody::Lend(const char* data, std::size_t size) {
  m_lent = data;
  m_lentSize = size;
  if (m_unwritten) *m_unwritten -= size;
}

void UploadBody::DropSent() {
  m_dropped = m_dropped || !m_gathered.empty();
  m_gathered.clear();
  m_sent = 0;
}

std::size_t UploadBody::Give(char* buffer, std::size_t size) {
  m_begun = true;
  if (!IsGatheredSent()) {
    const std::size_t count = std::min(size, m_gathered.size() - m_sent);
    std::memcpy(buffer, m_gathered.data() + m_sent, count);
    m_sent += count;
    return count;
  }
  const std::size_t count = std::min(size, m_lentSize);
  if (count != 0) {
    std::memcpy(buffer, m_lent, count);
    m_lent += count;
    m_lentSize -= count;
    m_dropped = true;
  }
  return count;
}

bool UploadBody::Rewind() {
  if (m_dropped) return false;
  m_sent = 0;
  return true;
}

}  // namespace velandoc::http
