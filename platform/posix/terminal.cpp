#include "platform/posix/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <mutex>

namespace velandoc {
namespace {

constexpr std::size_t kMaxLine = 4096;

class FileOwner {
 public:
  explicit FileOwner(int file) : m_file(file) {}
  ~FileOwner() {
    if (m_file >= 0) close(m_file);
  }
  FileOwner(const FileOwner&) = delete;
  FileOwner& operator=(const FileOwner&) = delete;
  int Get() const { return m_file; }

 private:
  int m_file;
};

int OpenTerminal() { return open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC); }

bool InputIsForbidden() {
  const char* value = std::getenv("VELANDOC_NO_INPUT");
  return value != nullptr && *value != '\0' && std::string_view(value) != "0";
}

// What would end or stop the process while the echo is off.
constexpr std::array kSignals = {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP, SIGTTIN, SIGTTOU};

std::atomic<int> g_arrived{0};
std::atomic<int> g_wakeUp{-1};

extern "C" void NoteSignal(int signal) {
  const int saved = errno;
  g_arrived.store(signal);
  // Any thread may get the signal; the pipe wakes the one that reads.
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = write(g_wakeUp.load(), &byte, 1);
  errno = saved;
}

/// Holds signals back for the time of a prompt; the caller raises what arrived afterwards.
class SignalGuard {
 public:
  SignalGuard() {
    g_arrived.store(0);
    if (pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0) m_pipe[0] = m_pipe[1] = -1;
    g_wakeUp.store(m_pipe[1]);
    struct sigaction action = {};
    action.sa_handler = &NoteSignal;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      sigaction(kSignals[i], nullptr, &m_previous[i]);
      // What the program ignores stays ignored.
      if (m_previous[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
    }
  }
  ~SignalGuard() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      sigaction(kSignals[i], &m_previous[i], nullptr);
    }
    g_wakeUp.store(-1);
    if (m_pipe[0] >= 0) close(m_pipe[0]);
    if (m_pipe[1] >= 0) close(m_pipe[1]);
  }
  SignalGuard(const SignalGuard&) = delete;
  SignalGuard& operator=(const SignalGuard&) = delete;

  int WakeUpFile() const { return m_pipe[0]; }
  int Arrived() const { return g_arrived.load(); }

 private:
  int m_pipe[2];
  std::array<struct sigaction, kSignals.size()> m_previous;
};

class EchoGuard {
 public:
  EchoGuard(int terminal, bool echo) : m_terminal(terminal) {
    if (tcgetattr(terminal, &m_previous) != 0) return;
    termios changed = m_previous;
    changed.c_lflag |= ICANON | ECHO | ECHONL;
    if (!echo) changed.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK);
    m_changed = tcsetattr(terminal, TCSANOW, &changed) == 0;
  }
  ~EchoGuard() {
    if (m_changed) tcsetattr(m_terminal, TCSANOW, &m_previous);
  }
  EchoGuard(const EchoGuard&) = delete;
  EchoGuard& operator=(const EchoGuard&) = delete;
  bool IsSet() const { return m_changed; }

 private:
  int m_terminal;
  termios m_previous = {};
  bool m_changed = false;
};

bool WriteAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(file, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

/// None also when a signal arrived.
std::optional<std::string> ReadLine(int terminal, const SignalGuard& signals) {
  std::string line;
  for (;;) {
    pollfd files[2] = {{terminal, POLLIN, 0}, {signals.WakeUpFile(), POLLIN, 0}};
    if (poll(files, 2, -1) < 0 && errno != EINTR) return std::nullopt;
    if (signals.Arrived() != 0) return std::nullopt;
    if (files[0].revents == 0) continue;
    char byte = 0;
    const ssize_t count = read(terminal, &byte, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return std::nullopt;
    if (byte == '\n') return line;
    if (line.size() == kMaxLine) return std::nullopt;
    line += byte;
  }
}

bool IsStop(int signal) { return signal == SIGTSTP || signal == SIGTTIN || signal == SIGTTOU; }

class ControllingTerminal final : public Terminal {
 public:
  bool IsAvailable() override {
    if (InputIsForbidden()) return false;
    const FileOwner terminal(OpenTerminal());
    return terminal.Get() >= 0 && tcgetpgrp(terminal.Get()) == getpgrp();
  }

  std::optional<std::string> Ask(std::string_view text) override { return Prompt(text, true); }
  std::optional<std::string> AskSecret(std::string_view text) override {
    return Prompt(text, false);
  }

 private:
  static std::optional<std::string> Prompt(std::string_view text, bool echo) {
    // One prompt at a time: a terminal has one user, and the signals are the whole process's.
    static std::mutex onePrompt;
    const std::lock_guard lock(onePrompt);
    for (;;) {
      int signal = 0;
      {
        const FileOwner terminal(OpenTerminal());
        if (terminal.Get() < 0) return std::nullopt;
        const SignalGuard signals;
        const EchoGuard settings(terminal.Get(), echo);
        // A secret is not asked for where it would show.
        if (!settings.IsSet() || !WriteAll(terminal.Get(), text)) return std::nullopt;
        std::optional<std::string> line = ReadLine(terminal.Get(), signals);
        signal = signals.Arrived();
        if (signal == 0) return line;
      }
      raise(signal);
      // Still here: the program has its own handler, or it was stopped and goes on now; then the
      // question is shown again.
      if (!IsStop(signal)) return std::nullopt;
    }
  }
};

}  // namespace

template <>
Terminal& SystemPort<Terminal>() {
  static ControllingTerminal terminal;
  return terminal;
}

}  // namespace velandoc
