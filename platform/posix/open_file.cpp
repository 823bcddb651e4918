#include "platform/posix/open_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace velandoc {

OpenFile::OpenFile(FileDescriptor file) : m_file(std::move(file)) {}

bool OpenFile::Write(const char* bytes, std::size_t size) {
  if (m_used + size > kGathered && !Flush()) return false;
  if (size >= kGathered) return WriteThrough(bytes, size);
  if (m_buffer == nullptr) m_buffer.reset(new char[kGathered]);
  // The sink of an empty body has no bytes, and null may stand for them.
  if (size != 0) std::memcpy(m_buffer.get() + m_used, bytes, size);
  m_used += size;
  return true;
}

bool OpenFile::Close() {
  const bool isFlushed = Flush();
  const int error = errno;
  const bool isClosed = m_file.Close() == 0;
  if (!isFlushed) errno = error;
  return isFlushed && isClosed;
}

bool OpenFile::Flush() {
  const std::size_t size = m_used;
  m_used = 0;
  return WriteThrough(m_buffer.get(), size);
}

bool OpenFile::WriteThrough(const char* bytes, std::size_t size) {
  while (size != 0) {
    const ssize_t count = write(m_file.Get(), bytes, size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

}  // namespace velandoc
