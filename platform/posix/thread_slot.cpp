#include "platform/thread_slot.h"

#include <pthread.h>

#include <new>

namespace velandoc {

ThreadSlot::ThreadSlot() {
  pthread_key_t key = 0;
  if (pthread_key_create(&key, nullptr) != 0) throw std::bad_alloc();
  m_slot = key;
}
ThreadSlot::~ThreadSlot() { pthread_key_delete(m_slot); }
void* ThreadSlot::Get() const { return pthread_getspecific(m_slot); }
void ThreadSlot::Set(void* value) {
  // The first Set of a thread may need memory.
  if (pthread_setspecific(m_slot, value) != 0) throw std::bad_alloc();
}

}  // namespace velandoc
