#include "platform/standard_streams.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace velandoc {

void PrepareStandardStreams() { std::signal(SIGPIPE, SIG_IGN); }

bool WriteOutput(std::string_view text) {
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

bool FlushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

bool WriteBytes(std::string_view bytes) {
  if (!FlushOutput()) return false;
  while (!bytes.empty()) {
    const ssize_t written = write(STDOUT_FILENO, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::ptrdiff_t ReadBytes(char* buffer, std::size_t size) {
  ssize_t count = 0;
  do {
    count = read(STDIN_FILENO, buffer, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

void WriteTalk(std::string_view text) {
  std::fflush(stdout);
  if (std::fwrite(text.data(), 1, text.size(), stderr) == text.size()) std::fflush(stderr);
}

bool IsTalkTerminal() {
  const char* kind = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && kind != nullptr && std::string_view(kind) != "dumb";
}

std::size_t TalkColumns() {
  constexpr std::size_t kUsual = 80;
  winsize size{};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return known ? size.ws_col : kUsual;
}

std::optional<std::string> ReadInputLine() {
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

}  // namespace velandoc
