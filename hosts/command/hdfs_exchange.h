// What went over the wire for one operation of HDFS, as far as a user may have to be told of it.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/com.h"

namespace velandoc {

/// One request, with the redirects that the platform followed for it.
struct HdfsExchange {
  /// No more is kept of an answer: enough for the server's exception.
  static constexpr std::size_t kAnswerLimit = std::size_t{64} * 1024;

  std::string verb;
  std::string host;  // who was spoken to last
  unsigned port = 0;
  bool isDataNode = false;  // reached by a redirect, or at the address that an upload was sent to
  DWORD error = 0;          // the platform's, of what failed last; 0 for none
  int status = 0;           // of HTTP, 0 if no answer came
  std::string answer;       // of a refusal, and to anything but a GET
};

/// How many bytes of files have come and gone, for whoever shows it.
struct TransferCount {
  std::atomic<std::uint64_t> bytes{0};
};

/// What the calling thread's requests have been since `exchanges` was emptied.
struct HdfsExchangeLog {
  std::vector<HdfsExchange> exchanges;
  TransferCount* count = nullptr;  // counts the bodies of files if there is one
};
HdfsExchangeLog& ThreadExchangeLog();

}  // namespace velandoc
