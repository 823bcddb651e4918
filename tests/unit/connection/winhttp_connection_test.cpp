#include "connection/winhttp_connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/fault_winhttp.h"
#include "tests/support/scripted_stream.h"
#include "tests/support/scripted_winhttp.h"

namespace velandoc {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using testing::FaultCodePage;
using testing::FaultWinHttp;
using testing::HttpAnswer;
using ::testing::IsEmpty;
using testing::ScriptedStream;
using testing::ScriptedWinHttp;

// Opens what derived classes see.
class Connection : public CWinHttpConnection {
 public:
  using CWinHttpConnection::CWinHttpConnection;
  using CWinHttpConnection::m_acceptTypePointers;
  using CWinHttpConnection::m_acceptTypes;
  using CWinHttpConnection::m_body;
  using CWinHttpConnection::m_hConnect;
  using CWinHttpConnection::m_headers;
  using CWinHttpConnection::m_hSession;
  using CWinHttpConnection::m_resourcePath;
  using CWinHttpConnection::m_sessionFlags;
  using CWinHttpConnection::m_streaming;
  using CWinHttpConnection::m_unused;
  using CWinHttpConnection::m_url;
};

class WinHttpConnection : public ::testing::Test {
 protected:
  ScriptedWinHttp m_platform;
  PortScope<WinHttp> m_scope{m_platform};
};

// Keeps each write apart.
class RecordingFile final : public CFile {
 public:
  void Write(const void* buffer, UINT count) override {
    if (fails) throw std::runtime_error("the disk is full");
    writes.emplace_back(static_cast<const char*>(buffer), count);
  }
  std::vector<std::string> writes;
  bool fails = false;
};

TEST_F(WinHttpConnection, StartsEmpty) {
  const Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.m_requestFlags, 0U);
  EXPECT_EQ(connection.m_hSession, nullptr);
  EXPECT_EQ(connection.m_hConnect, nullptr);
  EXPECT_EQ(connection.m_hRequest, nullptr);
  EXPECT_EQ(connection.m_sessionFlags, 0U);
  EXPECT_EQ(connection.m_lastError, 0U);
  EXPECT_EQ(connection.m_statusCode, 0U);
  EXPECT_EQ(connection.m_verb, OLESTR("GET"));
  EXPECT_EQ(connection.m_headers, OLESTR(""));
  EXPECT_EQ(connection.m_body, OLESTR(""));
  EXPECT_THAT(connection.m_acceptTypes, IsEmpty());
  EXPECT_THAT(connection.m_acceptTypePointers, IsEmpty());
  EXPECT_FALSE(connection.m_streaming);
  EXPECT_EQ(connection.m_responseText, "");
  EXPECT_EQ(connection.m_sink, nullptr);
  EXPECT_EQ(connection.m_unused, nullptr);
  EXPECT_EQ(connection.m_totalLength, 0U);
  EXPECT_FALSE(connection.m_noRedirect);
  EXPECT_FALSE(connection.m_keepBody);
  EXPECT_FALSE(connection.m_responseStarted);
  EXPECT_EQ(connection.m_autoLogonPolicy, 0xFFFFFFFFU);
  EXPECT_EQ(connection.m_authScheme, 0U);
  EXPECT_EQ(connection.m_userName, OLESTR(""));
  EXPECT_EQ(connection.m_password, OLESTR(""));
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(WinHttpConnection, TheUrlIsAlwaysEscaped) {
  const Connection connection(OLESTR("http://h:81/a b/\u00e9?c d"));
  EXPECT_EQ(connection.m_url.HostName(), OLESTR("h"));
  EXPECT_EQ(connection.m_url.port, 81);
  EXPECT_EQ(connection.m_url.UrlPath(), OLESTR("/a%20b/%c3%a9"));
  EXPECT_EQ(connection.m_url.ExtraInfo(), OLESTR("?c d"));
  EXPECT_EQ(connection.m_resourcePath.View(), OLESTR("/a%20b/%c3%a9?c d"));
}

TEST_F(WinHttpConnection, OnlyHttpsIsSecure) {
  EXPECT_EQ(Connection(OLESTR("https://h")).m_requestFlags, 0x00800000U);
  EXPECT_EQ(Connection(OLESTR("HTTPS://h")).m_requestFlags, 0x00800000U);
  EXPECT_EQ(Connection(OLESTR("http://h")).m_requestFlags, 0U);
  EXPECT_EQ(Connection(OLESTR("ftp://h")).m_requestFlags, 0U);
}

TEST_F(WinHttpConnection, BadUrlsEndWithoutAHost) {
  const Connection none(nullptr);
  EXPECT_EQ(none.m_url.schemeIndex, 2);
  EXPECT_EQ(none.m_url.port, 80);
  const Connection tooLong((OLESTR("http://h/") + WideString(2074, 'a')).c_str());
  EXPECT_EQ(tooLong.m_url.HostName(), OLESTR("")) << "does not escape: the new state";
  EXPECT_EQ(tooLong.m_url.port, 80);
  const Connection unparsed(OLESTR("h/a"));
  EXPECT_EQ(unparsed.m_url.schemeIndex, -1) << "does not parse: the cleared state";
  EXPECT_EQ(unparsed.m_url.port, 0);
  FaultCodePage fault(SystemPort<CodePage>(), 1);
  const PortScope<CodePage> scope(fault);
  const Connection unconverted(OLESTR("http://h/"));
  EXPECT_EQ(unconverted.m_url.port, 80);
  EXPECT_EQ(unconverted.m_url.HostName(), OLESTR(""));
}

TEST_F(WinHttpConnection, BadUrlsAreRefusedWhenSomethingIsSent) {
  for (LPCWSTR url : {LPCWSTR{nullptr}, LPCWSTR{OLESTR("h/a")}}) {
    Connection connection(url);
    EXPECT_EQ(connection.Execute(), E_FAIL);
    EXPECT_EQ(connection.m_statusCode, 0U);
    EXPECT_EQ(connection.m_lastError, 0U);
  }
  EXPECT_THAT(m_platform.CallsOf("WinHttpConnect"),
              ElementsAre("WinHttpConnect(1, , 80, 0)", "WinHttpConnect(2, , 0, 0)"));
  EXPECT_THAT(m_platform.CallsOf("WinHttpOpenRequest"), IsEmpty());
}

TEST_F(WinHttpConnection, ExecuteCallsThePlatformInOrder) {
  m_platform.answers = {HttpAnswer{.chunks = {"ab"}}};
  {
    Connection connection(OLESTR("https://h.test:8443/a/b?x=1"));
    connection.m_verb = OLESTR("DELETE");
    EXPECT_EQ(connection.Execute(), S_OK);
    EXPECT_EQ(connection.m_statusCode, 200U);
    EXPECT_EQ(connection.m_responseText, "ab");
    EXPECT_TRUE(connection.m_responseStarted);
  }
  EXPECT_THAT(
      m_platform.calls,
      ElementsAre("WinHttpOpen(CWinHttpConnection, 4, null, null, 0x0)",
                  "WinHttpConnect(1, h.test, 8443, 0)",
                  "WinHttpOpenRequest(2, DELETE, /a/b?x=1, null, null, text/*, 0x800000)",
                  "WinHttpSendRequest(3, null, 0, null, 0, 0, 0)", "WinHttpReceiveResponse(3)",
                  "WinHttpQueryHeaders(3, 19, 0)", "WinHttpQueryHeaders(3, 19, 8)",
                  "WinHttpQueryDataAvailable(3)", "WinHttpReadData(3, 8192)",
                  "WinHttpQueryDataAvailable(3)", "WinHttpCloseHandle(3)"))
      << "no retry, no dialog, no options";
}

TEST_F(WinHttpConnection, TheDestructorClosesTheRequestAndNothingElse) {
  m_platform.answers = {HttpAnswer{}};
  {
    Connection connection(OLESTR("http://h/"));
    EXPECT_EQ(connection.Execute(), S_OK);
    EXPECT_EQ(m_platform.OpenRequests(), 1);
  }
  EXPECT_EQ(m_platform.OpenRequests(), 0);
  EXPECT_EQ(m_platform.OpenConnections(), 1);
  EXPECT_EQ(m_platform.OpenSessions(), 1);
}

TEST_F(WinHttpConnection, A404IsASuccessWithItsStatus) {
  m_platform.answers = {HttpAnswer{.status = OLESTR("404"), .chunks = {"gone"}}};
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_EQ(connection.m_statusCode, 404U);
  EXPECT_EQ(connection.m_responseText, "gone");
}

TEST_F(WinHttpConnection, NoStatusIsAFailure) {
  for (const OLECHAR* status :
       {OLESTR("201"), OLESTR("307"), OLESTR("401"), OLESTR("407"), OLESTR("500"), OLESTR("599")}) {
    m_platform.answers = {HttpAnswer{.status = status}};
    Connection connection(OLESTR("http://h/a"));
    EXPECT_EQ(connection.Execute(), S_OK);
    EXPECT_EQ(std::to_string(connection.m_statusCode), std::string(status, status + 3));
  }
  EXPECT_EQ(m_platform.CallsOf("WinHttpSendRequest").size(), 6U) << "nothing is sent twice";
}

TEST_F(WinHttpConnection, A307IsLeftAloneAndItsLocationReadable) {
  const WideString location = OLESTR("http://data.test/") + WideString(5000, 'x');
  m_platform.answers = {
      HttpAnswer{.status = OLESTR("307"), .headers = {{WINHTTP_QUERY_LOCATION, location}}}};
  Connection connection(OLESTR("http://h/a"));
  connection.m_noRedirect = true;
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_EQ(connection.m_statusCode, 307U);
  WideString value = OLESTR("as it was");
  EXPECT_TRUE(connection.QueryHeader(WINHTTP_QUERY_LOCATION, value));
  EXPECT_EQ(value, location) << "of any length";
  EXPECT_THAT(m_platform.CallsOf("WinHttpSetOption"), ElementsAre("WinHttpSetOption(3, 88, 0)"));
}

TEST_F(WinHttpConnection, ACertificateErrorFailsTheSend) {
  for (const DWORD error : {DWORD{12037}, DWORD{12038}, DWORD{12045}, DWORD{12175}}) {
    m_platform.answers = {HttpAnswer{.sendError = error}};
    Connection connection(OLESTR("https://h/a"));
    EXPECT_EQ(connection.SendRequest(), E_FAIL);
    EXPECT_EQ(connection.m_statusCode, 0U);
    EXPECT_EQ(connection.m_lastError, 0U) << "no reason is kept";
    EXPECT_FALSE(connection.m_responseStarted);
  }
}

TEST_F(WinHttpConnection, AnEmptyStreamGoesStraightToTheResponse) {
  m_platform.answers = {HttpAnswer{.status = OLESTR("201")}};
  ScriptedStream stream("");
  Connection connection(OLESTR("http://h/a"));
  connection.m_verb = OLESTR("PUT");
  EXPECT_EQ(connection.SendStream(&stream), S_OK);
  EXPECT_EQ(connection.m_statusCode, 201U);
  EXPECT_EQ(stream.statFlag, DWORD{STATFLAG_NONAME});
  m_platform.calls.erase(m_platform.calls.begin(), m_platform.calls.begin() + 3);
  EXPECT_THAT(m_platform.calls,
              ElementsAre("WinHttpSendRequest(3, null, 0, null, 0, 0, 0)",
                          "WinHttpReceiveResponse(3)", "WinHttpQueryHeaders(3, 19, 0)",
                          "WinHttpQueryHeaders(3, 19, 8)", "WinHttpQueryDataAvailable(3)"));
}

TEST_F(WinHttpConnection, AnAnswerWithoutABodyEndsAtTheFirstAvailability) {
  m_platform.answers = {HttpAnswer{}};
  Connection connection(OLESTR("http://h/a"));
  connection.m_responseText = "of the answer before";
  ASSERT_EQ(connection.SendRequest(), S_OK);
  EXPECT_TRUE(connection.ReadResponse());
  EXPECT_EQ(connection.m_responseText, "");
  EXPECT_EQ(m_platform.CallsOf("WinHttpQueryDataAvailable").size(), 1U);
  EXPECT_THAT(m_platform.CallsOf("WinHttpReadData"), IsEmpty());
}

TEST_F(WinHttpConnection, AKeptBodyIsReadLaterWithoutReceivingAgain) {
  m_platform.answers = {HttpAnswer{.chunks = {"late"}}};
  Connection connection(OLESTR("http://h/a"));
  connection.m_keepBody = true;
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_TRUE(connection.m_responseStarted);
  EXPECT_EQ(connection.m_statusCode, 200U);
  EXPECT_THAT(m_platform.CallsOf("WinHttpQueryDataAvailable"), IsEmpty());
  EXPECT_TRUE(connection.ReadResponse());
  EXPECT_EQ(connection.m_responseText, "late");
  EXPECT_EQ(m_platform.CallsOf("WinHttpReceiveResponse").size(), 1U);
}

TEST_F(WinHttpConnection, AcceptTypesAreReplacedAndKept) {
  m_platform.answers = {HttpAnswer{}, HttpAnswer{}};
  m_platform.expectedLeaks = 1;
  Connection connection(OLESTR("http://h/a"));
  {
    // The texts need not outlive the call.
    const WideString first = OLESTR("application/json");
    const LPCWSTR types[] = {OLESTR("text/*"), first.c_str(), nullptr};
    const LPCWSTR earlier[] = {OLESTR("image/png"), nullptr};
    connection.SetAcceptTypes(earlier);
    connection.SetAcceptTypes(types);
  }
  EXPECT_EQ(connection.m_acceptTypePointers.size(), 3U);
  EXPECT_EQ(connection.m_acceptTypePointers.back(), nullptr);
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_EQ(connection.Execute(), S_OK);
  for (const std::string& call : m_platform.CallsOf("WinHttpOpenRequest")) {
    EXPECT_EQ(call, "WinHttpOpenRequest(2, GET, /a, null, null, text/* application/json, 0x0)");
  }
}

TEST_F(WinHttpConnection, AnEmptyListOfTypesIsFilledByTheSend) {
  m_platform.answers = {HttpAnswer{}};
  Connection connection(OLESTR("http://h/a"));
  const LPCWSTR none[] = {nullptr};
  connection.SetAcceptTypes(none);
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_EQ(m_platform.calls[2], "WinHttpOpenRequest(2, GET, /a, null, null, text/*, 0x0)");
}

TEST_F(WinHttpConnection, HeadersAndBodyAreEmptiedBeforeTheSend) {
  m_platform.answers = {HttpAnswer{}};
  Connection connection(OLESTR("http://h/a"));
  connection.m_headers = OLESTR("A: b");
  connection.m_body = OLESTR("body");
  EXPECT_EQ(connection.SendRequest(), S_OK);
  EXPECT_EQ(connection.m_headers, OLESTR(""));
  EXPECT_EQ(connection.m_body, OLESTR(""));
  EXPECT_EQ(m_platform.calls[3], "WinHttpSendRequest(3, null, 0, null, 0, 0, 0)");
}

TEST_F(WinHttpConnection, TheTotalLengthIsTheOwners) {
  m_platform.answers = {HttpAnswer{}};
  Connection connection(OLESTR("http://h/a"));
  connection.m_totalLength = 4294967295U;
  EXPECT_EQ(connection.SendRequest(), S_OK);
  EXPECT_EQ(m_platform.calls[3], "WinHttpSendRequest(3, null, 0, null, 0, 4294967295, 0)");
}

TEST_F(WinHttpConnection, ASendResetsTheStatusFirst) {
  m_platform.failing = {"WinHttpOpen"};
  Connection connection(OLESTR("http://h/a"));
  connection.m_statusCode = 500;
  connection.m_lastError = 12029;
  connection.m_headers = OLESTR("A: b");
  EXPECT_EQ(connection.SendRequest(), E_FAIL);
  EXPECT_EQ(connection.m_statusCode, 0U);
  EXPECT_EQ(connection.m_lastError, 12029U) << "set by the opening of a session only";
  EXPECT_EQ(connection.m_headers, OLESTR("A: b")) << "it had not come to that";
  EXPECT_EQ(m_platform.calls.size(), 1U);
}

TEST_F(WinHttpConnection, TheErrorIsZeroFromTheSessionOn) {
  m_platform.failing = {"WinHttpConnect"};
  Connection connection(OLESTR("http://h/a"));
  connection.m_lastError = 12029;
  EXPECT_EQ(connection.SendRequest(), E_FAIL);
  EXPECT_EQ(connection.m_lastError, 0U);
  EXPECT_EQ(connection.m_hConnect, nullptr);
}

TEST_F(WinHttpConnection, AFailedRequestIsEFail) {
  m_platform.failing = {"WinHttpOpenRequest"};
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.OpenRequest(), E_FAIL);
  EXPECT_EQ(connection.Execute(), E_FAIL);
  EXPECT_EQ(connection.m_hRequest, nullptr);
  EXPECT_FALSE(connection.m_responseStarted);
}

TEST_F(WinHttpConnection, AStreamingObjectSendsNothing) {
  Connection connection(OLESTR("http://h/a"));
  connection.m_streaming = true;
  EXPECT_EQ(connection.SendRequest(), E_FAIL);
  EXPECT_NE(connection.m_hRequest, nullptr) << "the request is open by then";
  EXPECT_THAT(m_platform.CallsOf("WinHttpSendRequest"), IsEmpty());
}

TEST_F(WinHttpConnection, ASecondSendKeepsTheConnectionAndLosesTheFirstRequest) {
  m_platform.expectedLeaks = 1;
  m_platform.answers = {HttpAnswer{}, HttpAnswer{}};
  {
    Connection connection(OLESTR("http://h/a"));
    EXPECT_EQ(connection.SendRequest(), S_OK);
    EXPECT_EQ(connection.SendRequest(), S_OK);
  }
  EXPECT_EQ(m_platform.CallsOf("WinHttpOpen").size(), 1U);
  EXPECT_EQ(m_platform.CallsOf("WinHttpConnect").size(), 1U);
  EXPECT_THAT(m_platform.CallsOf("WinHttpCloseHandle"), ElementsAre("WinHttpCloseHandle(4)"));
}

TEST_F(WinHttpConnection, ARewindLosesTheHandleOfItsOpenRequest) {
  m_platform.expectedLeaks = 1;
  m_platform.answers = {HttpAnswer{.chunks = {"ab"}}, HttpAnswer{.chunks = {"ab"}}};
  Connection connection(OLESTR("http://h/a"));
  connection.m_keepBody = true;
  ASSERT_EQ(connection.Execute(), S_OK);
  CurrentPort<WinHttp>().WinHttpCloseHandle(connection.m_hRequest);
  connection.m_hRequest = nullptr;
  EXPECT_EQ(connection.OpenRequest(), S_OK);
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_THAT(m_platform.CallsOf("WinHttpSendRequest"),
              ElementsAre("WinHttpSendRequest(3, null, 0, null, 0, 0, 0)",
                          "WinHttpSendRequest(5, null, 0, null, 0, 0, 0)"));
  EXPECT_TRUE(connection.ReadResponse());
  EXPECT_EQ(connection.m_responseText, "ab");
}

TEST_F(WinHttpConnection, OptionsAndCredentialsAreSetInOrder) {
  m_platform.answers = {HttpAnswer{}};
  // Their results are ignored.
  m_platform.failing = {"WinHttpSetOption", "WinHttpSetCredentials"};
  Connection connection(OLESTR("http://h/a"));
  connection.m_noRedirect = true;
  connection.m_autoLogonPolicy = WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH;
  connection.m_authScheme = WINHTTP_AUTH_SCHEME_NTLM;
  connection.m_userName = OLESTR("anna");
  connection.m_password = OLESTR("secret");
  EXPECT_EQ(connection.Execute(), S_OK);
  m_platform.calls.erase(m_platform.calls.begin(), m_platform.calls.begin() + 3);
  m_platform.calls.resize(4);
  EXPECT_THAT(m_platform.calls,
              ElementsAre("WinHttpSetOption(3, 88, 0)", "WinHttpSetOption(3, 77, 2)",
                          "WinHttpSetCredentials(3, 0, 2, anna, secret)",
                          "WinHttpSendRequest(3, null, 0, null, 0, 0, 0)"));
}

TEST_F(WinHttpConnection, EachOptionStandsAlone) {
  m_platform.answers = {HttpAnswer{}, HttpAnswer{}};
  Connection policy(OLESTR("http://h/a"));
  policy.m_autoLogonPolicy = 0;
  EXPECT_EQ(policy.Execute(), S_OK);
  Connection credentials(OLESTR("http://h/a"));
  credentials.m_authScheme = WINHTTP_AUTH_SCHEME_BASIC;
  EXPECT_EQ(credentials.Execute(), S_OK);
  EXPECT_THAT(m_platform.CallsOf("WinHttpSetOption"), ElementsAre("WinHttpSetOption(3, 77, 0)"));
  EXPECT_THAT(m_platform.CallsOf("WinHttpSetCredentials"),
              ElementsAre("WinHttpSetCredentials(6, 0, 1, , )"));
}

TEST_F(WinHttpConnection, AHeadThatDoesNotComeIsEFail) {
  m_platform.answers = {HttpAnswer{.receiveError = 12002}};
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.Execute(), E_FAIL);
  EXPECT_TRUE(connection.m_responseStarted);
  EXPECT_EQ(connection.m_statusCode, 0U);
  EXPECT_EQ(connection.m_lastError, 0U);
}

TEST_F(WinHttpConnection, AFailedReadIsEFailAndKeepsWhatCame) {
  for (const bool inAvailability : {false, true}) {
    m_platform.answers = {HttpAnswer{.chunks = {"ab", "cd"},
                                     .availableError = inAvailability ? 12030U : 0U,
                                     .readError = inAvailability ? 0U : 12030U}};
    Connection connection(OLESTR("http://h/a"));
    EXPECT_EQ(connection.Execute(), E_FAIL);
    EXPECT_EQ(connection.m_statusCode, 200U);
    EXPECT_EQ(connection.m_responseText, "abcd");
  }
}

TEST_F(WinHttpConnection, AReadOfNothingEndsTheBody) {
  m_platform.answers = {HttpAnswer{.chunks = {"ab"}, .endsInRead = true}};
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_EQ(connection.m_responseText, "ab");
  EXPECT_EQ(m_platform.CallsOf("WinHttpReadData").size(), 2U);
  EXPECT_EQ(m_platform.CallsOf("WinHttpQueryDataAvailable").size(), 2U);
}

TEST_F(WinHttpConnection, ANulDropsTheRestOfItsChunkOnly) {
  m_platform.answers = {HttpAnswer{.chunks = {"ab\0cd"s, "ef"s, "\0gh"s, std::string(8192, '\0'),
                                              "ij\0"s, std::string(8192, 'k')}}};
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_EQ(connection.m_responseText, "abefij" + std::string(8192, 'k'));
}

TEST_F(WinHttpConnection, ASinkTakesEveryByte) {
  m_platform.answers = {HttpAnswer{.chunks = {"ab\0cd"s, std::string(8192, '\0'), "e"s}}};
  RecordingFile file;
  Connection connection(OLESTR("http://h/a"));
  connection.m_responseText = "of the answer before";
  connection.m_sink = &file;
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_THAT(file.writes, ElementsAre("ab\0cd"s, std::string(8192, '\0'), "e"s));
  EXPECT_EQ(connection.m_responseText, "");
}

TEST_F(WinHttpConnection, WhatASinkRaisesPassesThrough) {
  m_platform.answers = {HttpAnswer{.chunks = {"ab"}}};
  RecordingFile file;
  file.fails = true;
  {
    Connection connection(OLESTR("http://h/a"));
    connection.m_sink = &file;
    EXPECT_THROW(connection.Execute(), std::runtime_error);
  }
  EXPECT_EQ(m_platform.OpenRequests(), 0);
}

// What a protocol reads of an answer.
class Protocol : public Connection {
 public:
  using Connection::Connection;
  void ProcessResponse() override { processed.push_back(m_responseText); }
  std::vector<std::string> processed;
};

TEST_F(WinHttpConnection, AProtocolProcessesCompleteBodiesOnly) {
  m_platform.answers = {HttpAnswer{.status = OLESTR("500"), .chunks = {"ab"}},
                        HttpAnswer{.chunks = {"cd"}, .readError = 12030},
                        HttpAnswer{.chunks = {"ef"}}, HttpAnswer{.chunks = {"gh"}}};
  Protocol whatever(OLESTR("http://h/a"));
  EXPECT_EQ(whatever.Execute(), S_OK);
  EXPECT_THAT(whatever.processed, ElementsAre("ab"));
  Protocol cut(OLESTR("http://h/a"));
  EXPECT_EQ(cut.Execute(), E_FAIL);
  EXPECT_THAT(cut.processed, IsEmpty());
  Protocol kept(OLESTR("http://h/a"));
  kept.m_keepBody = true;
  EXPECT_EQ(kept.Execute(), S_OK);
  EXPECT_TRUE(kept.ReadResponse());
  EXPECT_THAT(kept.processed, IsEmpty());
  Protocol upload(OLESTR("http://h/a"));
  ScriptedStream stream("x");
  EXPECT_EQ(upload.SendStream(&stream), S_OK);
  EXPECT_THAT(upload.processed, IsEmpty());
  EXPECT_EQ(upload.m_responseText, "gh");
}

TEST_F(WinHttpConnection, SendStreamWritesInSteps) {
  m_platform.answers = {HttpAnswer{.status = OLESTR("201"), .chunks = {"made"}}};
  const std::string bytes = std::string(8192, 'a') + std::string(8192, '\0') + "tail";
  ScriptedStream stream(bytes);
  Connection connection(OLESTR("http://h/a"));
  connection.m_verb = OLESTR("PUT");
  EXPECT_EQ(connection.SendStream(&stream), S_OK);
  EXPECT_EQ(connection.m_totalLength, 16388U);
  EXPECT_EQ(m_platform.written, bytes);
  EXPECT_EQ(stream.largestRead, 8192U);
  EXPECT_EQ(connection.m_statusCode, 201U);
  EXPECT_EQ(connection.m_responseText, "made");
  EXPECT_THAT(m_platform.CallsOf("WinHttpSendRequest"),
              ElementsAre("WinHttpSendRequest(3, null, 0, null, 0, 16388, 0)"));
  EXPECT_THAT(m_platform.CallsOf("WinHttpWriteData"),
              ElementsAre("WinHttpWriteData(3, 8192)", "WinHttpWriteData(3, 8192)",
                          "WinHttpWriteData(3, 4)"));
}

TEST_F(WinHttpConnection, AStreamOf4GiBSendsATruncatedLength) {
  m_platform.answers = {HttpAnswer{}};
  ScriptedStream stream("x");
  stream.toldSize = 0x1'0000'0005;
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.SendStream(&stream), S_OK);
  EXPECT_EQ(connection.m_totalLength, 5U);
}

TEST_F(WinHttpConnection, AStreamWithoutASizeSendsLengthZero) {
  m_platform.answers = {HttpAnswer{}};
  ScriptedStream stream("abc");
  stream.statResult = E_NOTIMPL;
  Connection connection(OLESTR("http://h/a"));
  connection.m_totalLength = 77;
  EXPECT_EQ(connection.SendStream(&stream), S_OK);
  EXPECT_EQ(connection.m_totalLength, 0U);
  EXPECT_EQ(m_platform.written, "abc") << "and what is there all the same";
}

TEST_F(WinHttpConnection, AFailedStreamReadEndsTheBody) {
  m_platform.answers = {HttpAnswer{.status = OLESTR("201")}};
  ScriptedStream stream(std::string(20000, 'a'));
  stream.failAfter = 8192;
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.SendStream(&stream), S_OK);
  EXPECT_EQ(m_platform.written.size(), 8192U);
  EXPECT_EQ(connection.m_statusCode, 201U);
}

TEST_F(WinHttpConnection, AFailedWriteIsEFail) {
  m_platform.answers = {HttpAnswer{}};
  m_platform.goodWrites = 1;
  ScriptedStream stream(std::string(20000, 'a'));
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.SendStream(&stream), E_FAIL);
  EXPECT_EQ(m_platform.CallsOf("WinHttpWriteData").size(), 2U);
  EXPECT_THAT(m_platform.CallsOf("WinHttpReceiveResponse"), IsEmpty());
  EXPECT_EQ(connection.m_statusCode, 0U);
}

TEST_F(WinHttpConnection, AStreamWhoseSendFailsIsNotRead) {
  m_platform.answers = {HttpAnswer{.sendError = 12029}};
  ScriptedStream stream("abc");
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.SendStream(&stream), E_FAIL);
  EXPECT_EQ(stream.reads, 0);
}

TEST_F(WinHttpConnection, HowAStreamsAnswerWasReadDoesNotCount) {
  m_platform.answers = {HttpAnswer{.receiveError = 12030},
                        HttpAnswer{.status = OLESTR("201"), .readError = 12030}};
  ScriptedStream stream("abc");
  Connection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.SendStream(&stream), S_OK);
  EXPECT_EQ(connection.m_statusCode, 0U);
  ScriptedStream again("abc");
  Connection cut(OLESTR("http://h/a"));
  EXPECT_EQ(cut.SendStream(&again), S_OK);
  EXPECT_EQ(cut.m_statusCode, 201U);
}

TEST_F(WinHttpConnection, AStartedResponseStaysStartedForTheNextRequest) {
  // Nothing resets it: whoever streams over an object that has executed before gets no answer.
  m_platform.answers = {HttpAnswer{}, HttpAnswer{}};
  m_platform.expectedLeaks = 1;
  Connection connection(OLESTR("http://h/a"));
  ASSERT_EQ(connection.Execute(), S_OK);
  ScriptedStream stream("abc");
  EXPECT_EQ(connection.SendStream(&stream), S_OK);
  EXPECT_EQ(connection.m_statusCode, 0U);
  EXPECT_EQ(m_platform.CallsOf("WinHttpReceiveResponse").size(), 1U);
}

TEST_F(WinHttpConnection, QueriesAskForTheSizeFirst) {
  m_platform.answers = {HttpAnswer{.status = OLESTR("204"),
                                   .headers = {{WINHTTP_QUERY_CONTENT_TYPE, OLESTR("text/xml")}}}};
  Connection connection(OLESTR("http://h/a"));
  ASSERT_EQ(connection.Execute(), S_OK);
  EXPECT_EQ(connection.QueryStatusCode(), 204U);
  m_platform.calls.clear();
  WideString value = OLESTR("as it was");
  EXPECT_FALSE(connection.QueryHeader(WINHTTP_QUERY_LOCATION, value));
  EXPECT_EQ(value, OLESTR("as it was"));
  EXPECT_TRUE(connection.QueryHeader(WINHTTP_QUERY_CONTENT_TYPE, value));
  EXPECT_EQ(value, OLESTR("text/xml"));
  EXPECT_THAT(m_platform.calls,
              ElementsAre("WinHttpQueryHeaders(3, 33, 0)", "WinHttpQueryHeaders(3, 33, 0)",
                          "WinHttpQueryHeaders(3, 1, 0)", "WinHttpQueryHeaders(3, 1, 18)"));
}

TEST_F(WinHttpConnection, AQueryThatFailsOrNeedsNoRoomTellsNothing) {
  m_platform.answers = {HttpAnswer{}};
  Connection connection(OLESTR("http://h/a"));
  ASSERT_EQ(connection.Execute(), S_OK);
  WideString value = OLESTR("as it was");
  for (const char* failure : {"WinHttpQueryHeaders", "WinHttpQueryHeaders succeeds at once"}) {
    m_platform.failing = {failure};
    EXPECT_EQ(connection.QueryStatusCode(), 0U);
    EXPECT_FALSE(connection.QueryHeader(WINHTTP_QUERY_STATUS_CODE, value));
    EXPECT_EQ(value, OLESTR("as it was"));
  }
}

TEST_F(WinHttpConnection, AStatusThatIsNoNumberIsZero) {
  m_platform.answers = {HttpAnswer{.status = OLESTR("x")}, HttpAnswer{.status = OLESTR("")}};
  for (int i = 0; i < 2; ++i) {
    Connection connection(OLESTR("http://h/a"));
    EXPECT_EQ(connection.Execute(), S_OK);
    EXPECT_EQ(connection.m_statusCode, 0U);
  }
}

// Every operation of one exchange fails once: E_FAIL each time, and no request left open.
TEST(WinHttpConnectionFaults, EachFailedOperationOfExecuteIsToldAndLeavesNoRequest) {
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE("operation " + std::to_string(failAt));
    ScriptedWinHttp platform;
    platform.answers = {HttpAnswer{.chunks = {"ab", "cd"}}};
    FaultWinHttp fault(platform, failAt, 12030);
    const PortScope<WinHttp> scope(fault);
    HRESULT result = E_UNEXPECTED;
    {
      Connection connection(OLESTR("http://h/a"));
      connection.m_noRedirect = true;
      connection.m_autoLogonPolicy = 1;
      connection.m_authScheme = 1;
      result = connection.Execute();
      if (SUCCEEDED(result)) {
        EXPECT_EQ(connection.m_responseText, "abcd");
      }
    }
    EXPECT_EQ(platform.OpenRequests(), 0);
    platform.answers.clear();
    if (failAt == 0) {
      operations = fault.Count();
      EXPECT_EQ(operations, 15);
      EXPECT_EQ(result, S_OK);
    } else {
      // What a request refuses of its options changes nothing, nor does a status that is not to be
      // had.
      const bool harmless = (failAt >= 4 && failAt <= 6) || failAt == 9 || failAt == 10;
      EXPECT_EQ(result, harmless ? S_OK : E_FAIL);
    }
  }
}

TEST(WinHttpConnectionFaults, EachFailedOperationOfSendStreamLeavesNoRequest) {
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE("operation " + std::to_string(failAt));
    ScriptedWinHttp platform;
    platform.answers = {HttpAnswer{.status = OLESTR("201"), .chunks = {"ab"}}};
    FaultWinHttp fault(platform, failAt, 12030);
    const PortScope<WinHttp> scope(fault);
    ScriptedStream stream(std::string(10000, 'a'));
    HRESULT result = E_UNEXPECTED;
    DWORD status = 0;
    {
      Connection connection(OLESTR("http://h/a"));
      result = connection.SendStream(&stream);
      status = connection.m_statusCode;
    }
    EXPECT_EQ(platform.OpenRequests(), 0);
    platform.answers.clear();
    if (failAt == 0) {
      operations = fault.Count();
      EXPECT_EQ(operations, 12);
      EXPECT_EQ(status, 201U);
    }
    // From the answer on nothing fails the call; the status tells.
    EXPECT_EQ(result, failAt >= 1 && failAt <= 6 ? E_FAIL : S_OK);
    EXPECT_EQ(status, failAt == 0 || failAt > 9 ? 201U : 0U);
  }
}

}  // namespace
}  // namespace velandoc
