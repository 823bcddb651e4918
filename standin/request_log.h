// The record of all requests: a file with one JSON object a line.
//
// The file is the only copy; the index of its lines is kept in memory. Any thread may call.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "standin/request.h"
#include "standin/request_body.h"
#include "standin/unique_fd.h"

namespace velandoc::standin {

class RequestLog {
 public:
  // Empties or creates the file. Throws std::system_error when that fails. What is no regular file,
  // /dev/null say, records nothing; requests are counted all the same.
  explicit RequestLog(const std::string& path);

  // Writes the request before it returns. Beyond 512 MiB of log, requests are counted only.
  void Add(const Request& request);

  // The requests numbered above `since`, as the text of a JSON array.
  std::string Read(std::uint64_t since) const;

  // Empties the file. Numbers go on.
  void Clear();

  // Off: requests are counted only, and their bodies need not be hashed. For measurements.
  void SetRecording(bool on, std::uint64_t largestHash = kLargestHashedBody);
  // The largest body to be hashed; 0 while nothing is recorded.
  std::uint64_t LargestHash() const;

  std::uint64_t Count() const;

 private:
  struct Line {
    std::uint64_t number;
    off_t start;
    std::size_t length;
  };

  mutable std::mutex m_mutex;
  UniqueFd m_file;
  std::vector<Line> m_lines;
  off_t m_size = 0;
  std::uint64_t m_count = 0;
  bool m_isRegularFile = true;
  bool m_isRecording = true;
  std::uint64_t m_largestHash = kLargestHashedBody;
};

}  // namespace velandoc::standin
