// The owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace velandoc {

/// Closes at the end of its scope; an error of that close is lost, so a writer closes with Close.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
  }
  ~FileDescriptor() { Close(); }

  explicit operator bool() const { return m_descriptor >= 0; }
  int Get() const { return m_descriptor; }
  /// 0, or -1 with errno set. Twice is once.
  int Close() { return m_descriptor >= 0 ? close(std::exchange(m_descriptor, -1)) : 0; }

 private:
  int m_descriptor = -1;
};

}  // namespace velandoc
