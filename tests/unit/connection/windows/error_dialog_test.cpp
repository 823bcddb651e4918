// The system's own credentials and certificate dialogs, driven by a watcher thread that types and
// presses as a user would. A dialog that no test expects is cancelled, so that every call ends.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "connection/wininet_connection.h"
#include "tests/support/standin_client.h"

namespace velandoc::test {
namespace {

// The controls of the system's credentials dialog.
constexpr int kUserEdit = 1027;
constexpr int kPasswordEdit = 1028;
constexpr int kDialogClass = 32770;

struct Answer {
  UINT button;
  std::wstring user;
  std::wstring password;
};

// Waits for dialogs of this process and gives each the next of the prepared answers.
class Watcher {
 public:
  explicit Watcher(std::vector<Answer> answers)
      : m_answers(std::move(answers)), m_thread([this] { Watch(); }) {}
  ~Watcher() { Stop(); }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

  /// Ends the watch; the number of dialogs that were answered.
  size_t Stop() {
    m_stop = true;
    if (m_thread.joinable()) m_thread.join();
    return m_answered;
  }

 private:
  static BOOL CALLBACK FindDialog(HWND window, LPARAM found) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || GetClassWord(window, GCW_ATOM) != kDialogClass ||
        !IsWindowVisible(window)) {
      return TRUE;
    }
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
  }

  void Watch() {
    HWND answered = nullptr;
    while (!m_stop) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      HWND dialog = nullptr;
      EnumWindows(FindDialog, reinterpret_cast<LPARAM>(&dialog));
      if (dialog == nullptr || dialog == answered) continue;
      const Answer answer =
          m_answered < m_answers.size() ? m_answers[m_answered] : Answer{IDCANCEL, L"", L""};
      if (HWND edit = GetDlgItem(dialog, kUserEdit)) {
        SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(answer.user.c_str()));
      }
      if (HWND edit = GetDlgItem(dialog, kPasswordEdit)) {
        SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(answer.password.c_str()));
      }
      answered = dialog;
      ++m_answered;
      PostMessageW(dialog, WM_COMMAND, answer.button, 0);
    }
  }

  std::vector<Answer> m_answers;
  std::atomic<bool> m_stop = false;
  std::atomic<size_t> m_answered = 0;
  std::thread m_thread;
};

// InternetErrorDlg shows nothing without an active window to stand over.
class ErrorDialogTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN is not set";
    m_standin.emplace();
    m_standin->Reset();
    m_window = CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200,
                               100, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(m_window, nullptr);
    SetActiveWindow(m_window);
    ASSERT_EQ(GetActiveWindow(), m_window);
  }

  void TearDown() override {
    if (m_window != nullptr) DestroyWindow(m_window);
    if (m_standin) m_standin->Reset();
  }

  static std::wstring Wide(const std::string& text) {
    return std::wstring(text.begin(), text.end());
  }

  HRESULT Get(const std::string& url, DWORD& status, DWORD& error) {
    CWinInetConnection connection(Wide(url).c_str(), L"GET", true);
    HRESULT result = connection.Open(nullptr, nullptr);
    if (result == S_OK) result = connection.SendWithRetry();
    status = connection.m_statusCode;
    error = connection.m_lastError;
    return result;
  }

  std::optional<StandIn> m_standin;
  HWND m_window = nullptr;
};

constexpr char kBasic[] =
    R"([{"match":{"path":"/guarded"},"do":{"auth":{"scheme":"basic","user":"demo","password":"secret"}}}])";

// The refusals come first: for the rest of the process WinINet remembers what a user typed or let
// pass for a server.

TEST_F(ErrorDialogTest, CancelLeavesTheChallengeAsTheAnswer) {
  // A realm of its own, here and below: WinINet keeps what another test typed for the other one.
  m_standin->SetBehaviour(
      R"([{"match":{"path":"/guarded"},"do":{"auth":{"scheme":"basic","user":"demo","password":"secret",
          "realm":"declined"}}}])");
  Watcher watcher({{IDCANCEL, L"", L""}});
  DWORD status = 0;
  DWORD error = 1;
  EXPECT_EQ(Get(m_standin->HttpUrl("/guarded/cancel"), status, error), E_FAIL);
  EXPECT_EQ(watcher.Stop(), 1u);
  EXPECT_EQ(status, 401u);
  EXPECT_EQ(error, 0u);
  EXPECT_EQ(m_standin->Log().size(), 1u);
}

TEST_F(ErrorDialogTest, ADeclinedCertificateProblemEndsTheCall) {
  m_standin->SetCertificate("expired");
  Watcher watcher({{IDCANCEL, L"", L""}});
  DWORD status = 1;
  DWORD error = 0;
  EXPECT_EQ(Get(m_standin->HttpsUrl("/bytes/10"), status, error), E_FAIL);
  EXPECT_EQ(watcher.Stop(), 1u);
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(error, ERROR_INTERNET_SEC_CERT_DATE_INVALID);
  EXPECT_TRUE(m_standin->Log().empty());
}

TEST_F(ErrorDialogTest, CredentialsTypedIntoTheDialogAreSent) {
  m_standin->SetBehaviour(kBasic);
  Watcher watcher({{IDOK, L"demo", L"secret"}});
  DWORD status = 0;
  DWORD error = 1;
  EXPECT_EQ(Get(m_standin->HttpUrl("/guarded/right"), status, error), E_FAIL);
  EXPECT_EQ(watcher.Stop(), 1u);
  // Behind the challenge the page is missing: that the answer is 404 shows that the credentials
  // were taken.
  EXPECT_EQ(status, 404u);
  EXPECT_EQ(error, 0u);
  const auto log = m_standin->Log();
  ASSERT_GE(log.size(), 2u);
  EXPECT_EQ(log.front().head.find("Authorization:"), std::string::npos);
  EXPECT_NE(log.back().head.find("Authorization: Basic ZGVtbzpzZWNyZXQ="), std::string::npos);
}

TEST_F(ErrorDialogTest, ThreeWrongPasswordsEndTheCall) {
  m_standin->SetBehaviour(
      R"([{"match":{"path":"/guarded"},"do":{"auth":{"scheme":"basic","user":"demo","password":"other",
          "realm":"three"}}}])");
  Watcher watcher({{IDOK, L"demo", L"one"}, {IDOK, L"demo", L"two"}, {IDOK, L"demo", L"three"}});
  DWORD status = 0;
  DWORD error = 1;
  EXPECT_EQ(Get(m_standin->HttpUrl("/guarded/three"), status, error), E_FAIL);
  EXPECT_EQ(watcher.Stop(), 3u);
  EXPECT_EQ(status, 401u);
}

TEST_F(ErrorDialogTest, AnAcceptedCertificateProblemSendsAgain) {
  m_standin->SetCertificate("expired");
  Watcher watcher({{IDOK, L"", L""}});
  DWORD status = 0;
  DWORD error = 1;
  EXPECT_EQ(Get(m_standin->HttpsUrl("/bytes/10"), status, error), S_OK);
  EXPECT_EQ(watcher.Stop(), 1u);
  EXPECT_EQ(status, 200u);
  EXPECT_EQ(error, 0u);
}

}  // namespace
}  // namespace velandoc::test
