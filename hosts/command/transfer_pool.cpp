#include "hosts/command/transfer_pool.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "hosts/com_apartment.h"
#include "hosts/command/hdfs_exchange.h"

namespace velandoc {

void RunOnThreads(std::size_t count, unsigned threads,
                  const std::function<void(std::size_t)>& work) {
  if (threads <= 1 || count <= 1) {
    for (std::size_t i = 0; i < count; ++i) work(i);
    return;
  }
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::exception_ptr raised;
  TransferCount* const bytes = HdfsExchangeLog::OfThread().Count();
  const auto run = [&] {
    const ComApartment apartment;
    const ThreadExchangeLog log;
    HdfsExchangeLog::OfThread().CountInto(bytes);
    try {
      for (std::size_t i = next++; i < count; i = next++) work(i);
    } catch (...) {
      const std::lock_guard lock(mutex);
      if (!raised) raised = std::current_exception();
      next = count;
    }
  };
  std::vector<std::thread> workers;
  for (std::size_t i = 0; i < std::min<std::size_t>(threads, count); ++i) workers.emplace_back(run);
  for (std::thread& worker : workers) worker.join();
  if (raised) std::rethrow_exception(raised);
}

}  // namespace velandoc
