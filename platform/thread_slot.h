// A pointer of each thread. For values that need no destructor: the library may be unloaded while
// threads that used it live on, so nothing of it may run at their end.
#pragma once

#include <cstdint>

namespace velandoc {

class ThreadSlot {
 public:
  /// Raises std::bad_alloc if the system has no slot left.
  ThreadSlot();
  ~ThreadSlot();
  ThreadSlot(const ThreadSlot&) = delete;
  ThreadSlot& operator=(const ThreadSlot&) = delete;

  /// The calling thread's pointer; null before its first Set.
  void* Get() const;
  void Set(void* value);

 private:
  std::uint32_t m_slot;
};

}  // namespace velandoc
