#include "hdfs/error_reports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "connection/wininet_connection.h"
#include "hdfs/error_texts.h"
#include "host/velandoc_module.h"
#include "tests/support/scripted_error_services.h"
#include "tests/support/scripted_wininet.h"
#include "tests/support/thread_error.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeText;
using ::testing::ElementsAre;
using testing::ScriptedErrorServices;
using testing::ScriptedWinInet;
using testing::TakeThreadError;
using testing::ThreadError;

constexpr CLSID kClient = {0x4A45908C, 0xEF4C, 0x4D12, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr ErrorOrigin kOrigin{&kClient, OLESTR("wininet.dll"), &LastErrorOf<WinInet>};

/// The part of a client that the reports are.
class Client final : public ErrorReports {
 public:
  Client() : ErrorReports(kOrigin) {}
  using ErrorReports::GetConnectionError;
  using ErrorReports::m_connectionError;
  using ErrorReports::RenewConnectionError;
  using ErrorReports::ReportHresultError;
  using ErrorReports::ReportLastError;
  using ErrorReports::ReportRequestFailure;
  using ErrorReports::ReportTextError;
};

class ErrorReportsTest : public ::testing::Test {
 protected:
  ErrorReportsTest() {
    EXPECT_EQ(Module().GetLockCount(), 0);
    SetErrorInfo(0, nullptr);
    m_services.modules["wininet.dll"] = 0;
  }
  void TearDown() override { SetErrorInfo(0, nullptr); }

  /// "HttpCode Message" of the current object.
  std::string Current() {
    ComPtr<IConnectionError> error;
    EXPECT_EQ(m_client.GetConnectionError(error.Receive()), S_OK);
    return Of(error.Get());
  }
  static std::string Of(IConnectionError* error) {
    LONG code = -1;
    Bstr message;
    EXPECT_EQ(error->get_HttpCode(&code), S_OK);
    EXPECT_EQ(error->get_Message(message.Receive()), S_OK);
    return std::to_string(code) + " " + DescribeText(message.View());
  }
  /// "Source: description" of the thread's error object, which names the client's class.
  static std::string OnTheThread() {
    const ThreadError error = TakeThreadError();
    if (!error.isThere) return "none";
    EXPECT_TRUE(IsEqualGUID(error.guid, kClient));
    return error.source + ": " + error.description;
  }

  ScriptedErrorServices m_services;
  PortScope<ErrorServices> m_servicesScope{m_services};
  ScriptedWinInet m_platform;
  PortScope<WinInet> m_platformScope{m_platform};
  Client m_client;
};

TEST_F(ErrorReportsTest, BeforeAnyRequestThereIsNoObjectAndThatIsNoFailure) {
  ComPtr<IConnectionError> error;
  EXPECT_EQ(m_client.GetConnectionError(error.Receive()), S_OK);
  EXPECT_FALSE(error);
  EXPECT_EQ(m_client.GetConnectionError(nullptr), E_POINTER);
}

TEST_F(ErrorReportsTest, ARequestBeginsWithAnEmptyObject) {
  m_client.RenewConnectionError();
  EXPECT_EQ(Current(), "0 ");
  EXPECT_EQ(OnTheThread(), "none");
}

TEST_F(ErrorReportsTest, AfterASuccessTheObjectHasTheStatusAndNoMessage) {
  m_client.RenewConnectionError();
  m_client.m_connectionError->m_httpCode = 200;
  EXPECT_EQ(Current(), "200 ");
  EXPECT_EQ(OnTheThread(), "none");
}

TEST_F(ErrorReportsTest, AnAnswerWithAnotherStatusSpeaksInTheServersWords) {
  m_client.RenewConnectionError();
  m_client.m_connectionError->m_httpCode = 404;
  m_client.ReportRequestFailure(404, 0, R"({"RemoteException":{"message":"no such file"}})");
  EXPECT_EQ(Current(), R"(404 {"RemoteException":{"message":"no such file"}})");
  EXPECT_EQ(OnTheThread(),
            R"(HDFS Client Connect: {"RemoteException":{"message":"no such file"}})");
}

TEST_F(ErrorReportsTest, AnAnswersStatusCountsMoreThanALastError) {
  m_services.texts[12029] = OLESTR("cannot connect\r\n");
  m_client.RenewConnectionError();
  m_client.ReportRequestFailure(403, 12029, "denied");
  EXPECT_EQ(Current(), "0 denied");
}

// The ANSI code page, of which both homes' have these: the bytes are not taken for UTF-8.
TEST_F(ErrorReportsTest, TheServersWordsAreReadAsAnsiText) {
  m_client.RenewConnectionError();
  m_client.ReportRequestFailure(500, 0, "caf\xE9 \x80 \xC3\xA9");
  EXPECT_EQ(Current(), "0 caf\\u00E9 \\u20AC \\u00C3\\u00A9");
}

TEST_F(ErrorReportsTest, TheServersWordsAreCountedAndTheErrorObjectEndsAtANul) {
  m_client.RenewConnectionError();
  m_client.ReportRequestFailure(500, 0, std::string("a\0b", 3));
  EXPECT_EQ(Current(), "0 a\\u0000b");
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: a");
}

TEST_F(ErrorReportsTest, AnAnswerWithoutABodyHasNoWords) {
  m_client.RenewConnectionError();
  m_client.ReportRequestFailure(503, 0, "");
  EXPECT_EQ(Current(), "0 ");
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: ");
}

TEST_F(ErrorReportsTest, WithoutAnAnswerTheLibrarysOwnTextTellsWhy) {
  m_services.texts[12029] = OLESTR("cannot connect\r\n");
  m_client.RenewConnectionError();
  m_client.ReportRequestFailure(0, 12029, "");
  EXPECT_EQ(Current(), "0 cannot connect\\u000D\\u000A") << "with the line end that it has there";
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: cannot connect\\u000D\\u000A");
  EXPECT_THAT(m_services.calls, ElementsAre("GetModuleHandleW(wininet.dll)",
                                            "FormatMessageW(0xb00, wininet.dll, 0x2efd, 0x400)"));
}

TEST_F(ErrorReportsTest, AReadThatFailedBehindA200IsToldByItsErrorToo) {
  m_services.texts[12030] = OLESTR("broke off\r\n");
  m_client.RenewConnectionError();
  m_client.m_connectionError->m_httpCode = 200;
  m_client.ReportRequestFailure(200, 12030, "not to be shown");
  EXPECT_EQ(Current(), "200 broke off\\u000D\\u000A");
}

TEST_F(ErrorReportsTest, WithNothingKnownATextOfOurOwnStands) {
  for (const DWORD status : {0U, 200U}) {
    m_client.RenewConnectionError();
    m_client.ReportRequestFailure(status, 0, "not to be shown");
    EXPECT_EQ(Current(), "0 Unknown connection error with server.");
    EXPECT_EQ(OnTheThread(), "HDFS Client Connect: Unknown connection error with server.");
  }
}

TEST_F(ErrorReportsTest, AnErrorWithoutATextLeavesTheMessageEmpty) {
  m_services.texts[12345] = std::nullopt;
  m_client.RenewConnectionError();
  m_client.ReportRequestFailure(0, 12345, "");
  EXPECT_EQ(Current(), "0 ");
}

TEST_F(ErrorReportsTest, AResultIsReportedInTheSystemsWords) {
  const std::string words = DescribeText(ErrorMessage(E_INVALIDARG));
  m_client.ReportHresultError(E_INVALIDARG, kUploadSource);
  EXPECT_EQ(Current(), "0 " + words);
  EXPECT_EQ(OnTheThread(), "HDFS Client Upload: " + words);
  m_client.ReportHresultError(E_INVALIDARG, kCreateFolderSource);
  EXPECT_EQ(OnTheThread(), "HDFS CreateFolder: " + words);
}

TEST_F(ErrorReportsTest, ATextIsReportedAsItIsInANewObjectWithoutAStatus) {
  m_client.RenewConnectionError();
  m_client.m_connectionError->m_httpCode = 307;
  m_client.ReportTextError(OLESTR("the second step was refused"), kUploadSource);
  EXPECT_EQ(Current(), "0 the second step was refused");
  EXPECT_EQ(OnTheThread(), "HDFS Client Upload: the second step was refused");
}

TEST_F(ErrorReportsTest, TheLastErrorIsTakenFirstOfAll) {
  m_services.texts[ScriptedWinInet::kScriptedError] = OLESTR("cannot connect\r\n");
  m_platform.failing = {"InternetOpenW"};
  EXPECT_EQ(m_platform.InternetOpenW(OLESTR("a"), 0, nullptr, nullptr, 0), nullptr);
  m_client.ReportLastError();
  EXPECT_EQ(m_platform.calls.back(), "GetLastError()");
  EXPECT_EQ(Current(), "0 cannot connect\\u000D\\u000A");
  EXPECT_EQ(OnTheThread(), "HDFS Client Upload: cannot connect\\u000D\\u000A");
}

TEST_F(ErrorReportsTest, AHostsObjectKeepsItsCallsValues) {
  m_client.RenewConnectionError();
  m_client.m_connectionError->m_httpCode = 404;
  m_client.ReportRequestFailure(404, 0, "first");
  ComPtr<IConnectionError> kept;
  ASSERT_EQ(m_client.GetConnectionError(kept.Receive()), S_OK);
  m_client.RenewConnectionError();
  m_client.ReportTextError(OLESTR("second"), kUploadSource);
  EXPECT_EQ(Of(kept.Get()), "404 first");
  EXPECT_EQ(Current(), "0 second");
}

TEST_F(ErrorReportsTest, TheObjectOutlivesItsClient) {
  ComPtr<IConnectionError> kept;
  {
    Client client;
    client.ReportTextError(OLESTR("last words"), kUploadSource);
    ASSERT_EQ(client.GetConnectionError(kept.Receive()), S_OK);
  }
  EXPECT_EQ(Of(kept.Get()), "0 last words");
  EXPECT_EQ(Module().GetLockCount(), 1);
  kept.Reset();
  EXPECT_EQ(Module().GetLockCount(), 0);
}

TEST_F(ErrorReportsTest, WhereNoErrorObjectCanBeMadeTheConnectionErrorIsRight) {
  m_services.createResult = E_OUTOFMEMORY;
  m_client.ReportTextError(OLESTR("refused"), kUploadSource);
  EXPECT_EQ(Current(), "0 refused");
  EXPECT_EQ(OnTheThread(), "none");
}

TEST_F(ErrorReportsTest, NoMemoryForATextIsTheOneFailure) {
  m_services.lacksMemoryForTexts = true;
  HRESULT raised = S_OK;
  try {
    m_client.ReportHresultError(E_FAIL, kUploadSource);
  } catch (const _com_error& error) {
    raised = error.Error();
  }
  EXPECT_EQ(raised, E_OUTOFMEMORY);
  EXPECT_EQ(OnTheThread(), "none");
}

TEST(ErrorReportsWireTest, ARefusedConnectionIsToldInTheLibrarysOwnWords) {
  Client client;
  {
    // No server has this port.
    CWinInetConnection connection(OLESTR("http://localhost:1/"), OLESTR("GET"), false);
    client.RenewConnectionError();
    ASSERT_EQ(connection.Open(nullptr, nullptr), S_OK);
    ASSERT_EQ(connection.SendWithRetry(), E_FAIL);
    EXPECT_EQ(connection.m_lastError, ERROR_INTERNET_CANNOT_CONNECT);
    client.ReportRequestFailure(connection.m_statusCode, connection.m_lastError, "");
  }
  const std::string message = DescribeText(client.m_connectionError->m_message);
  EXPECT_THAT(message, ::testing::EndsWith("\\u000D\\u000A"));
  EXPECT_EQ(client.m_connectionError->m_httpCode, 0);
  EXPECT_EQ(TakeThreadError().description, message);
}

}  // namespace
}  // namespace velandoc
