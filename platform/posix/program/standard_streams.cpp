#include "platform/standard_streams.h"

#include <csignal>
#include <cstdio>

namespace velandoc {

void PrepareStandardStreams() { std::signal(SIGPIPE, SIG_IGN); }

bool WriteOutput(std::string_view text) {
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

bool FlushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

void WriteTalk(std::string_view text) {
  std::fflush(stdout);
  if (std::fwrite(text.data(), 1, text.size(), stderr) == text.size()) std::fflush(stderr);
}

}  // namespace velandoc
