// The real terminal port, driven through a pseudo-terminal by a child process of which it is the
// controlling terminal.
#include "platform/posix/terminal.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <system_error>

namespace velandoc::test {
namespace {

/// Throws std::system_error if the calling function's fork failed. The id -1 must not be used: kill
/// and waitpid take it for every process.
pid_t RequireFork(pid_t process) {
  if (process == -1) throw std::system_error(errno, std::generic_category(), "fork");
  return process;
}

/// A child whose controlling terminal is the other end of a pseudo-terminal.
class Child {
 public:
  explicit Child(const std::function<int(Terminal&)>& body)
      : m_process(RequireFork(forkpty(&m_terminal, nullptr, nullptr, nullptr))) {
    if (m_process == 0) {
      unsetenv("VELANDOC_NO_INPUT");
      // Who runs the tests in the background or with nohup has these ignored, and children inherit
      // that.
      for (const int ending : {SIGHUP, SIGINT, SIGTERM}) signal(ending, SIG_DFL);
      // The child must not run the rest of the test program.
      _exit(body(SystemPort<Terminal>()));
    }
  }
  ~Child() {
    if (!m_ended) {
      kill(m_process, SIGKILL);
      waitpid(m_process, nullptr, 0);
    }
    close(m_terminal);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// What came so far, once `text` is in it; all that came, if it does not come in time.
  const std::string& WaitFor(const std::string& text) {
    while (m_output.find(text, m_seen) == std::string::npos && ReadSome()) {
    }
    m_seen = m_output.size();
    return m_output;
  }
  void Type(const std::string& keys) {
    ASSERT_EQ(write(m_terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }
  bool EchoIsOn() const {
    termios settings = {};
    tcgetattr(m_terminal, &settings);
    return (settings.c_lflag & ECHO) != 0;
  }
  /// The wait status.
  int End() {
    while (ReadSome()) {
    }
    int status = -1;
    waitpid(m_process, &status, 0);
    m_ended = true;
    return status;
  }
  pid_t Process() const { return m_process; }
  const std::string& Output() const { return m_output; }

 private:
  bool ReadSome() {
    pollfd file = {m_terminal, POLLIN, 0};
    if (poll(&file, 1, 10000) <= 0) return false;
    char buffer[256];
    const ssize_t count = read(m_terminal, buffer, sizeof(buffer));
    if (count <= 0) return false;
    m_output.append(buffer, static_cast<std::size_t>(count));
    return true;
  }

  int m_terminal = -1;
  pid_t m_process = -1;
  bool m_ended = false;
  std::string m_output;
  std::size_t m_seen = 0;
};

int ExitWith(bool good) { return good ? 0 : 1; }

class ControllingTerminal : public ::testing::Test {
 protected:
  void SetUp() override {
    int ends[2] = {-1, -1};
    if (openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) != 0) {
      GTEST_SKIP() << "no pseudo-terminal can be opened: " << std::strerror(errno);
    }
    for (const int end : ends) close(end);
  }
};

TEST_F(ControllingTerminal, EchoesTheNameAndHidesThePassword) {
  Child child([](Terminal& terminal) {
    if (!terminal.IsAvailable()) return 2;
    const bool good =
        terminal.Ask("User: ") == "anna" && terminal.AskSecret("Password: ") == "s3cret";
    return ExitWith(good);
  });
  child.WaitFor("User: ");
  EXPECT_TRUE(child.EchoIsOn());
  child.Type("anna\n");
  child.WaitFor("Password: ");
  EXPECT_FALSE(child.EchoIsOn());
  child.Type("s3cret\n");
  EXPECT_EQ(child.End(), 0);
  EXPECT_NE(child.Output().find("anna"), std::string::npos);
  EXPECT_EQ(child.Output().find("s3cret"), std::string::npos);
}

TEST_F(ControllingTerminal, RestoresTheEchoBeforeASignalEndsTheProgram) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    Child child([](Terminal& terminal) {
      terminal.AskSecret("Password: ");
      return 3;
    });
    child.WaitFor("Password: ");
    EXPECT_FALSE(child.EchoIsOn());
    kill(child.Process(), signal);
    const int status = child.End();
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), signal);
  }
}

TEST_F(ControllingTerminal, TakesControlCForASignal) {
  Child child([](Terminal& terminal) {
    terminal.AskSecret("Password: ");
    return 3;
  });
  child.WaitFor("Password: ");
  child.Type("\x03");
  const int status = child.End();
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
}

extern "C" void Survive(int) {}

TEST_F(ControllingTerminal, GivesNoAnswerToAProgramThatHandlesTheSignal) {
  Child child([](Terminal& terminal) {
    signal(SIGINT, &Survive);
    const bool none = !terminal.AskSecret("Password: ").has_value();
    termios settings = {};
    tcgetattr(STDIN_FILENO, &settings);
    return ExitWith(none && (settings.c_lflag & ECHO) != 0);
  });
  child.WaitFor("Password: ");
  child.Type("half\x03");
  EXPECT_EQ(child.End(), 0);
}

TEST_F(ControllingTerminal, EndOfInputIsNoAnswer) {
  Child child([](Terminal& terminal) { return ExitWith(!terminal.Ask("User: ").has_value()); });
  child.WaitFor("User: ");
  child.Type("\x04");
  EXPECT_EQ(child.End(), 0);
}

TEST_F(ControllingTerminal, AsksAgainAfterAStop) {
  // The system never stops a process group that no parent of its session could wake, so the one who
  // asks is a child of the session's leader, in the foreground.
  Child child([](Terminal& terminal) {
    const pid_t asker = fork();
    if (asker == -1) return 5;
    if (asker == 0) {
      setpgid(0, 0);
      signal(SIGTTOU, SIG_IGN);
      tcsetpgrp(STDIN_FILENO, getpid());
      _exit(ExitWith(terminal.Ask("User: ") == "anna"));
    }
    int status = -1;
    waitpid(asker, &status, WUNTRACED);
    if (!WIFSTOPPED(status)) return 4;
    kill(asker, SIGCONT);
    waitpid(asker, &status, 0);
    return ExitWith(status == 0);
  });
  child.WaitFor("User: ");
  child.Type("\x1a");
  child.WaitFor("User: ");
  child.Type("anna\n");
  EXPECT_EQ(child.End(), 0);
}

TEST_F(ControllingTerminal, IsNotThereForThoseWhoForbidIt) {
  Child child([](Terminal& terminal) {
    setenv("VELANDOC_NO_INPUT", "1", 1);
    const bool forbidden = !terminal.IsAvailable();
    setenv("VELANDOC_NO_INPUT", "0", 1);
    return ExitWith(forbidden && terminal.IsAvailable());
  });
  EXPECT_EQ(child.End(), 0);
}

TEST_F(ControllingTerminal, IsNotThereForABackgroundProcess) {
  Child child([](Terminal& terminal) {
    const pid_t background = fork();
    if (background == -1) return 5;
    if (background == 0) {
      setpgid(0, 0);
      _exit(ExitWith(!terminal.IsAvailable()));
    }
    int status = -1;
    waitpid(background, &status, 0);
    return ExitWith(status == 0);
  });
  EXPECT_EQ(child.End(), 0);
}

TEST(TerminalWithoutASession, IsNotThere) {
  const pid_t child = RequireFork(fork());
  if (child == 0) {
    setsid();
    _exit(ExitWith(!SystemPort<Terminal>().IsAvailable() &&
                   !SystemPort<Terminal>().Ask("x").has_value()));
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace velandoc::test
