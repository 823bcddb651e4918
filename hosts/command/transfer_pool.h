// Several transfers at once.
#pragma once

#include <cstddef>
#include <functional>

namespace velandoc {

/// Calls `work` with 0 to `count` - 1, in this order, on up to `threads` threads, each in a COM
/// apartment of its own; with one thread on the caller's. The requests' bytes go where the calling
/// thread's do. What `work` raises first is raised again when all have ended; no new one is begun
/// then.
void RunOnThreads(std::size_t count, unsigned threads,
                  const std::function<void(std::size_t)>& work);

}  // namespace velandoc
