// The options of the program.
#pragma once

#include <chrono>
#include <string>

namespace velandoc::standin {

struct CommandLine {
  std::string certificates;
  std::string log;
  std::string ready;
  // A file; empty for the sample that is built in.
  std::string site;
  // A folder; empty for a fresh one that goes with the program.
  std::string hdfs;
  std::chrono::seconds longestRun{3600};
};

// Throws std::invalid_argument, with a message for the user, on anything but the known options.
CommandLine ParseCommandLine(int count, const char* const* arguments);

}  // namespace velandoc::standin
