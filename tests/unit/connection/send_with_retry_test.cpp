#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "connection/wininet_connection.h"
#include "tests/support/fault_wininet.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::Each;
using ::testing::ElementsAre;
using testing::FaultWinInet;
using ::testing::IsEmpty;
using testing::ScriptedWinInet;

constexpr DWORD kForceRetry = 12032;
constexpr DWORD kCancelled = 1223;

Answer Status(const OLECHAR* status) { return Answer{.status = status}; }
Answer Error(DWORD error) { return Answer{.error = error}; }

class SendWithRetry : public ::testing::Test {
 protected:
  HRESULT Run() {
    if (m_connection.m_hRequest == nullptr) {
      EXPECT_EQ(m_connection.Open(nullptr, nullptr), S_OK);
    }
    return m_connection.SendWithRetry();
  }
  std::size_t Sends() const { return m_platform.CallsOf("HttpSendRequestW").size(); }
  std::vector<std::string> Dialogs() const { return m_platform.CallsOf("InternetErrorDlg"); }

  ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
  CWinInetConnection m_connection{OLESTR("http://h/a"), OLESTR("GET"), true};
};

TEST_F(SendWithRetry, WithoutARequestHandleCallsNothing) {
  EXPECT_EQ(m_connection.SendWithRetry(), E_FAIL);
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(SendWithRetry, Status200PassesAndTheDialogIsAskedAllTheSame) {
  int window = 0;
  m_platform.activeWindow = reinterpret_cast<HWND>(&window);
  m_platform.answers = {Status(OLESTR("200"))};
  EXPECT_EQ(Run(), S_OK);
  EXPECT_EQ(m_connection.m_statusCode, 200U);
  EXPECT_EQ(m_connection.m_lastError, 0U);
  m_platform.calls.erase(m_platform.calls.begin(), m_platform.calls.begin() + 3);
  EXPECT_THAT(m_platform.calls,
              ElementsAre("HttpSendRequestW(3, , -1, 0)", "HttpQueryInfoW(3, 19, 4096)",
                          "GetActiveWindow()", "InternetErrorDlg(active, 3, 0, 7)",
                          "HttpQueryInfoW(3, 19, 4096)"));
}

TEST_F(SendWithRetry, NoOtherStatusPasses) {
  for (const OLECHAR* status :
       {OLESTR("100"), OLESTR("201"), OLESTR("204"), OLESTR("206"), OLESTR("301"), OLESTR("302"),
        OLESTR("307"), OLESTR("400"), OLESTR("403"), OLESTR("404"), OLESTR("500")}) {
    m_platform.answers = {Status(status)};
    EXPECT_EQ(Run(), E_FAIL) << testing::Printable(status);
    EXPECT_EQ(m_connection.m_statusCode, static_cast<DWORD>(std::stoi(testing::Printable(status))));
    EXPECT_EQ(m_connection.m_lastError, 0U);
  }
  EXPECT_EQ(Dialogs().size(), 11U);
}

TEST_F(SendWithRetry, AStatusThatCannotBeHadIsZeroAndFails) {
  m_platform.answers = {Status(OLESTR(""))};
  EXPECT_EQ(Run(), E_FAIL);
  EXPECT_EQ(m_connection.m_statusCode, 0U);
}

TEST_F(SendWithRetry, TheUsersWordIsTakenAfterAGoodAnswerToo) {
  m_platform.answers = {Status(OLESTR("200")), Status(OLESTR("404"))};
  m_platform.dialogResults = {kForceRetry};
  EXPECT_EQ(Run(), E_FAIL);
  EXPECT_EQ(m_connection.m_statusCode, 404U);
}

TEST_F(SendWithRetry, ADialogResultBesideForceRetryLeavesAnAnswerAsItIs) {
  m_platform.answers = {Status(OLESTR("200")), Status(OLESTR("401"))};
  m_platform.dialogResults = {kCancelled, kCancelled};
  EXPECT_EQ(Run(), S_OK);
  EXPECT_EQ(Run(), E_FAIL);
  EXPECT_EQ(m_connection.m_statusCode, 401U);
}

TEST_F(SendWithRetry, TheFourth401EndsWithoutADialog) {
  m_platform.answers = {Status(OLESTR("401")), Status(OLESTR("401")), Status(OLESTR("401")),
                        Status(OLESTR("401"))};
  m_platform.dialogResults = {kForceRetry, kForceRetry, kForceRetry};
  EXPECT_EQ(Run(), E_FAIL);
  EXPECT_EQ(m_connection.m_statusCode, 401U);
  EXPECT_EQ(m_connection.m_lastError, 0U);
  EXPECT_EQ(Sends(), 4U);
  EXPECT_EQ(Dialogs().size(), 3U);
}

TEST_F(SendWithRetry, TheFourth407EndsWithoutADialog) {
  m_platform.answers = {Status(OLESTR("407")), Status(OLESTR("407")), Status(OLESTR("407")),
                        Status(OLESTR("407"))};
  m_platform.dialogResults = {kForceRetry, kForceRetry, kForceRetry};
  EXPECT_EQ(Run(), E_FAIL);
  EXPECT_EQ(m_connection.m_statusCode, 407U);
  EXPECT_EQ(Sends(), 4U);
  EXPECT_EQ(Dialogs().size(), 3U);
}

// The last refusal ends the call before the error is written down: whoever reads it sees what an
// earlier exchange left.
TEST_F(SendWithRetry, TheFourthRefusalLeavesTheErrorAsItStood) {
  for (const OLECHAR* status : {OLESTR("401"), OLESTR("407")}) {
    m_connection.m_lastError = 12029;
    m_platform.answers.assign(4, Status(status));
    m_platform.dialogResults = {kForceRetry, kForceRetry, kForceRetry};
    EXPECT_EQ(Run(), E_FAIL);
    EXPECT_EQ(m_connection.m_lastError, 12029U);
  }
}

TEST_F(SendWithRetry, ProxyAndServerAreCountedApart) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    m_platform.answers.push_back(Status(OLESTR("407")));
    m_platform.answers.push_back(Status(OLESTR("401")));
  }
  m_platform.answers.push_back(Status(OLESTR("200")));
  m_platform.dialogResults.assign(6, kForceRetry);
  EXPECT_EQ(Run(), S_OK);
  EXPECT_EQ(Sends(), 7U);
}

TEST_F(SendWithRetry, TheThirdAttemptMaySucceed) {
  m_platform.answers = {Status(OLESTR("401")), Status(OLESTR("401")), Status(OLESTR("401")),
                        Status(OLESTR("200"))};
  m_platform.dialogResults = {kForceRetry, kForceRetry, kForceRetry};
  EXPECT_EQ(Run(), S_OK);
  EXPECT_EQ(m_connection.m_statusCode, 200U);
}

TEST_F(SendWithRetry, TheCountersLiveForOneCall) {
  for (int call = 0; call < 2; ++call) {
    m_platform.answers = {Status(OLESTR("401")), Status(OLESTR("401")), Status(OLESTR("401")),
                          Status(OLESTR("200"))};
    m_platform.dialogResults = {kForceRetry, kForceRetry, kForceRetry};
    EXPECT_EQ(Run(), S_OK);
  }
}

TEST_F(SendWithRetry, ForceRetryHasNoLimitForAnswers) {
  for (int count = 0; count < 50; ++count) m_platform.answers.push_back(Status(OLESTR("503")));
  m_platform.answers.push_back(Status(OLESTR("200")));
  m_platform.dialogResults.assign(50, kForceRetry);
  EXPECT_EQ(Run(), S_OK);
  EXPECT_EQ(Sends(), 51U);
}

TEST_F(SendWithRetry, ForceRetryHasNoLimitForErrors) {
  for (int count = 0; count < 50; ++count) m_platform.answers.push_back(Error(12002));
  m_platform.answers.push_back(Status(OLESTR("200")));
  m_platform.dialogResults.assign(50, kForceRetry);
  EXPECT_EQ(Run(), S_OK);
  EXPECT_EQ(m_connection.m_lastError, 0U);
  std::vector<std::string> dialogs = Dialogs();
  ASSERT_EQ(dialogs.size(), 51U);
  dialogs.pop_back();  // of the answer
  EXPECT_THAT(dialogs, Each("InternetErrorDlg(active, 3, 12002, 7)"));
}

class RepeatableError : public SendWithRetry, public ::testing::WithParamInterface<DWORD> {};

TEST_P(RepeatableError, IsRepeatedAsOftenAsTheDialogSaysZero) {
  for (int count = 0; count < 20; ++count) m_platform.answers.push_back(Error(GetParam()));
  m_platform.answers.push_back(Status(OLESTR("200")));
  EXPECT_EQ(Run(), S_OK);
  EXPECT_EQ(Sends(), 21U);
  EXPECT_EQ(m_connection.m_statusCode, 200U);
  EXPECT_EQ(m_connection.m_lastError, 0U);
}

TEST_P(RepeatableError, EndsWhenTheUserDeclines) {
  m_platform.answers = {Error(GetParam())};
  m_platform.dialogResults = {kCancelled};
  EXPECT_EQ(Run(), E_FAIL);
  EXPECT_EQ(m_connection.m_statusCode, 0U);
  EXPECT_EQ(m_connection.m_lastError, GetParam());
}

TEST_P(RepeatableError, IsRepeatedByForceRetryToo) {
  m_platform.answers = {Error(GetParam()), Status(OLESTR("200"))};
  m_platform.dialogResults = {kForceRetry};
  EXPECT_EQ(Run(), S_OK);
}

INSTANTIATE_TEST_SUITE_P(All, RepeatableError,
                         ::testing::Values(12014, 12037, 12038, 12039, 12043, 12045));

class FinalError : public SendWithRetry, public ::testing::WithParamInterface<DWORD> {};

TEST_P(FinalError, EndsWhateverTheDialogSays) {
  for (const DWORD result : {DWORD{0}, kCancelled, DWORD{6}}) {
    m_platform.answers = {Error(GetParam())};
    m_platform.dialogResults = {result};
    EXPECT_EQ(Run(), E_FAIL);
    EXPECT_EQ(m_connection.m_statusCode, 0U);
    EXPECT_EQ(m_connection.m_lastError, GetParam());
  }
  EXPECT_EQ(Sends(), 3U);
}

TEST_P(FinalError, IsRepeatedByForceRetry) {
  m_platform.answers = {Error(GetParam()), Status(OLESTR("200"))};
  m_platform.dialogResults = {kForceRetry};
  EXPECT_EQ(Run(), S_OK);
}

INSTANTIATE_TEST_SUITE_P(Some, FinalError,
                         ::testing::Values(1, 12002, 12007, 12029, 12030, 12040, 12044, 12152));

TEST_F(SendWithRetry, TheErrorIsReadBeforeAnythingElse) {
  m_platform.answers = {Error(12007)};
  EXPECT_EQ(Run(), E_FAIL);
  m_platform.calls.erase(m_platform.calls.begin(), m_platform.calls.begin() + 3);
  EXPECT_THAT(m_platform.calls,
              ElementsAre("HttpSendRequestW(3, , -1, 0)", "GetLastError()", "GetActiveWindow()",
                          "InternetErrorDlg(active, 3, 12007, 7)", "HttpQueryInfoW(3, 19, 4096)"));
}

TEST_F(SendWithRetry, AGoodSendClearsTheErrorOfTheOneBefore) {
  m_platform.answers = {Error(12029), Status(OLESTR("200"))};
  EXPECT_EQ(Run(), E_FAIL);
  EXPECT_EQ(m_connection.m_lastError, 12029U);
  EXPECT_EQ(Run(), S_OK);
  EXPECT_EQ(m_connection.m_lastError, 0U);
}

// Every operation of one exchange fails once: E_FAIL or a failed read each time, nothing left open.
TEST(SendWithRetryFaults, EachFailureIsToldAndNothingLeaks) {
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE("operation " + std::to_string(failAt));
    ScriptedWinInet platform;
    platform.answers = {Answer{.chunks = {"ab", "cd"}}};
    FaultWinInet fault(platform, failAt, 12030);
    PortScope<WinInet> scope(fault);
    HRESULT result = E_UNEXPECTED;
    bool read = false;
    {
      CWinInetConnection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
      result = connection.Open(nullptr, nullptr);
      if (SUCCEEDED(result)) result = connection.SendWithRetry();
      if (SUCCEEDED(result)) read = connection.ReadResponse();
      if (read) {
        EXPECT_EQ(connection.GetResponseText(), "abcd");
        EXPECT_EQ(connection.m_statusCode, 200U);
      }
    }
    EXPECT_EQ(platform.OpenHandles(), 0);
    platform.answers.clear();
    if (failAt == 0) {
      operations = fault.Count();
      EXPECT_EQ(operations, 10);
      EXPECT_TRUE(read);
    } else {
      // A dialog that fails after a 200 changes nothing, and neither does the first look at the
      // status.
      const bool harmless = failAt == 5 || failAt == 6;
      EXPECT_EQ(SUCCEEDED(result) && read, harmless);
    }
  }
}

}  // namespace
}  // namespace velandoc
