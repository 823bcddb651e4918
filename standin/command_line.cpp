#include "standin/command_line.h"

#include <stdexcept>

#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr const char* kUsage =
    "usage: velandoc-standin --certs DIR --log FILE --ready FILE [--site FILE] [--hdfs DIR] "
    "[--max-seconds N]";

}  // namespace

CommandLine ParseCommandLine(int count, const char* const* arguments) {
  CommandLine line;
  for (int i = 1; i < count; i += 2) {
    const std::string_view name = arguments[i];
    if (i + 1 == count) throw std::invalid_argument(kUsage);
    const std::string value = arguments[i + 1];
    if (name == "--certs") {
      line.certificates = value;
    } else if (name == "--log") {
      line.log = value;
    } else if (name == "--ready") {
      line.ready = value;
    } else if (name == "--site") {
      line.site = value;
    } else if (name == "--hdfs") {
      line.hdfs = value;
    } else if (name == "--max-seconds") {
      const auto seconds = ParseNumber<unsigned>(value);
      if (!seconds || *seconds == 0) throw std::invalid_argument(kUsage);
      line.longestRun = std::chrono::seconds(*seconds);
    } else {
      throw std::invalid_argument(kUsage);
    }
  }
  if (line.certificates.empty() || line.log.empty() || line.ready.empty())
    throw std::invalid_argument(kUsage);
  return line;
}

}  // namespace velandoc::standin
