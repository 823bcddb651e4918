#include "platform/thread_slot.h"

#include <windows.h>

#include <new>

namespace velandoc {

// Not thread_local: the compiler's emulation of it runs code of this library at each thread's end.
ThreadSlot::ThreadSlot() : m_slot(TlsAlloc()) {
  if (m_slot == TLS_OUT_OF_INDEXES) throw std::bad_alloc();
}
ThreadSlot::~ThreadSlot() { TlsFree(m_slot); }
void* ThreadSlot::Get() const {
  // TlsGetValue clears the last error, which callers read behind us.
  const DWORD error = GetLastError();
  void* value = TlsGetValue(m_slot);
  SetLastError(error);
  return value;
}
void ThreadSlot::Set(void* value) { TlsSetValue(m_slot, value); }

}  // namespace velandoc
