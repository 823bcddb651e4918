// Reference counting by threading model, and the module's critical section.
#pragma once

#include <atomic>
#include <mutex>

#include "platform/com.h"

/// For what every thread may count: class factories, module locks.
struct CComMultiThreadModel {
  using Count = std::atomic<ULONG>;
  static ULONG Increment(Count& count) { return count.fetch_add(1) + 1; }
  static ULONG Decrement(Count& count) { return count.fetch_sub(1) - 1; }
};

/// For objects that only the thread of their apartment calls.
#ifdef _WIN32
struct CComSingleThreadModel {
  using Count = ULONG;
  static ULONG Increment(Count& count) { return ++count; }
  static ULONG Decrement(Count& count) { return --count; }
};
#else
// No proxies bring a foreign thread's calls home here: a host that lets a collector or a pool give
// back its references does so from any thread, and must not lose one.
using CComSingleThreadModel = CComMultiThreadModel;
#endif

/// A thread may enter it again, as a system critical section.
using CComCriticalSection = std::recursive_mutex;
