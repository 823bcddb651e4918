// The one owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace velandoc::standin {

class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : m_fd(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    if (this != &other) {
      Reset();
      m_fd = std::exchange(other.m_fd, -1);
    }
    return *this;
  }
  ~UniqueFd() { Reset(); }

  int Get() const { return m_fd; }
  // Another owner has taken it.
  void Release() { m_fd = -1; }
  bool IsOpen() const { return m_fd >= 0; }
  void Reset() {
    if (m_fd >= 0) close(std::exchange(m_fd, -1));
  }

 private:
  int m_fd = -1;
};

}  // namespace velandoc::standin
