// Lets threads sleep without keeping the program from ending.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace velandoc::standin {

class StopSignal {
 public:
  void Raise() {
    {
      const std::lock_guard lock(m_mutex);
      m_isRaised = true;
    }
    m_changed.notify_all();
  }
  bool IsRaised() const {
    const std::lock_guard lock(m_mutex);
    return m_isRaised;
  }
  // False if the program is to end, true once the time has passed.
  bool Sleep(std::chrono::milliseconds time) const {
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_for(lock, time, [this] { return m_isRaised; });
  }

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_changed;
  bool m_isRaised = false;
};

}  // namespace velandoc::standin
