// How far a transfer is, shown in one line at the foot of a terminal, and all that is said while it
// is shown.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "hosts/command/hdfs_exchange.h"

namespace velandoc {

/// "1.5 MB": three digits or so, in units of 1000.
std::string SizeText(std::uint64_t bytes);

/// "  42%  1.5 MB of 3.6 MB  812 kB/s  0:03 left": the whole line. `seconds` have passed. Without a
/// total (0) there is neither a share nor a time. What goes beyond `columns` is cut off.
std::string ProgressText(std::uint64_t bytes, std::uint64_t total, double seconds,
                         std::string_view subject, std::size_t columns);

class TransferProgress {
 public:
  /// Shows nothing if `shown` is false.
  explicit TransferProgress(bool shown);
  ~TransferProgress();
  TransferProgress(const TransferProgress&) = delete;
  TransferProgress& operator=(const TransferProgress&) = delete;

  TransferCount& Count() { return m_count; }
  /// What is to be transferred in all, and its name: a file's, or "12 files". From here on the line
  /// is shown.
  void Begin(std::uint64_t total, std::string subject);

  /// Writes a line to the output or to the error stream, above the line. For any thread.
  void Print(std::string_view line);
  void Say(std::string_view line);

 private:
  void Run();
  void Draw();
  void Erase();

  const bool m_shown;
  TransferCount m_count;
  std::mutex m_mutex;
  std::condition_variable m_ended;
  bool m_ends = false;
  bool m_drawn = false;
  std::uint64_t m_total = 0;
  std::string m_subject;
  std::chrono::steady_clock::time_point m_begun;
  std::thread m_thread;
};

}  // namespace velandoc
