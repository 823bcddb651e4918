#include "connection/wininet_connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using testing::FaultCodePage;
using ::testing::IsEmpty;
using testing::Printable;
using testing::ScriptedWinInet;

// Opens what derived classes see.
class Connection : public CWinInetConnection {
 public:
  using CWinInetConnection::CWinInetConnection;
  using CWinInetConnection::m_acceptTypePointers;
  using CWinInetConnection::m_hConnect;
  using CWinInetConnection::m_hSession;
  using CWinInetConnection::m_resourcePath;
  using CWinInetConnection::m_response;
  using CWinInetConnection::m_streaming;
  using CWinInetConnection::m_url;
  using CWinInetConnection::m_usePost;
};

class WinInetConnection : public ::testing::Test {
 protected:
  ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
};

TEST_F(WinInetConnection, StartsEmpty) {
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  EXPECT_EQ(connection.m_hSession, nullptr);
  EXPECT_EQ(connection.m_hConnect, nullptr);
  EXPECT_EQ(connection.m_hRequest, nullptr);
  EXPECT_EQ(connection.m_statusCode, 0U);
  EXPECT_EQ(connection.m_lastError, 0U);
  EXPECT_EQ(connection.m_requestFlags, 0x00400200U);
  EXPECT_FALSE(connection.m_streaming);
  EXPECT_FALSE(connection.m_usePost);
  EXPECT_EQ(connection.GetVerb(), OLESTR("GET"));
  EXPECT_EQ(connection.GetHeaders(), OLESTR(""));
  EXPECT_EQ(connection.GetBody(), OLESTR(""));
  EXPECT_EQ(connection.GetResponseText(), "");
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(WinInetConnection, OnlyHttpsIsSecure) {
  EXPECT_EQ(Connection(OLESTR("https://h"), OLESTR("GET"), true).m_requestFlags, 0x00C00200U);
  EXPECT_EQ(Connection(OLESTR("ftp://h"), OLESTR("GET"), true).m_requestFlags, 0x00400200U);
  EXPECT_EQ(Connection(OLESTR("x-dav://h"), OLESTR("GET"), true).m_requestFlags, 0x00400200U);
  const Connection capitals(OLESTR("HTTPS://h"), OLESTR("GET"), true);
  EXPECT_EQ(capitals.m_requestFlags, 0x00C00200U);
  EXPECT_EQ(capitals.m_url.SchemeName(), OLESTR("HTTPS"));
}

TEST_F(WinInetConnection, SetUrlCracksWhatItEscaped) {
  Connection connection(OLESTR("http://h:81/a b/\u00e9?c d"), OLESTR("GET"), true);
  EXPECT_EQ(connection.GetHostName(), OLESTR("h"));
  EXPECT_EQ(connection.GetPort(), 81);
  EXPECT_EQ(connection.GetUrlPath(), OLESTR("/a%20b/%c3%a9"));
  EXPECT_EQ(connection.GetExtraInfo(), OLESTR("?c d"));
  EXPECT_EQ(connection.m_resourcePath.View(), OLESTR("/a%20b/%c3%a9?c d"));
}

TEST_F(WinInetConnection, SetUrlWithoutEscapingTakesTheTextAsItIs) {
  Connection connection(OLESTR("http://h/a b[]?c"), OLESTR("GET"), false);
  EXPECT_EQ(connection.GetUrlPath(), OLESTR("/a b[]"));
}

TEST_F(WinInetConnection, ANullUrlLeavesTheNewState) {
  Connection connection(nullptr, OLESTR("GET"), true);
  EXPECT_EQ(connection.m_url.SchemeName(), OLESTR("http"));
  EXPECT_EQ(connection.GetPort(), 80);
  EXPECT_EQ(connection.GetHostName(), OLESTR(""));
}

TEST_F(WinInetConnection, AUrlOf2083EscapedCharactersLeavesTheNewState) {
  const WideString host = OLESTR("http://h/");
  const WideString fits = host + WideString(1000, 'a') + OLESTR("?") + WideString(1072, 'b');
  ASSERT_EQ(fits.size(), 2082U);
  Connection accepted(fits.c_str(), OLESTR("GET"), true);
  EXPECT_EQ(accepted.GetHostName(), OLESTR("h"));

  Connection refused((fits + OLESTR("b")).c_str(), OLESTR("GET"), true);
  EXPECT_EQ(refused.m_url.SchemeName(), OLESTR("http"));
  EXPECT_EQ(refused.m_url.schemeIndex, 2);
  EXPECT_EQ(refused.GetPort(), 80);
  EXPECT_EQ(refused.GetHostName(), OLESTR(""));
}

TEST_F(WinInetConnection, AUrlThatFailsToConvertLeavesTheNewState) {
  FaultCodePage fault(SystemPort<CodePage>(), 1);
  PortScope<CodePage> scope(fault);
  Connection connection(OLESTR("http://h/"), OLESTR("GET"), true);
  EXPECT_EQ(connection.GetPort(), 80);
  EXPECT_EQ(connection.GetHostName(), OLESTR(""));
}

TEST_F(WinInetConnection, AUrlThatDoesNotParseLeavesTheClearedState) {
  Connection connection(OLESTR("h.test/a"), OLESTR("GET"), true);
  EXPECT_EQ(connection.m_url.schemeIndex, -1);
  EXPECT_EQ(connection.GetPort(), 0);
  EXPECT_EQ(connection.GetHostName(), OLESTR(""));
}

TEST_F(WinInetConnection, ALaterUrlThatFailsKeepsOrClears) {
  Connection connection(OLESTR("http://h:81/a?x"), OLESTR("GET"), true);
  connection.SetUrl(nullptr, true);
  EXPECT_EQ(connection.GetHostName(), OLESTR("h"));
  connection.SetUrl(WideString(2083, 'a').c_str(), true);
  EXPECT_EQ(connection.GetHostName(), OLESTR("h")) << "does not escape: left as it is";
  connection.SetUrl(OLESTR("x"), true);
  EXPECT_EQ(connection.GetHostName(), OLESTR("")) << "does not parse: cleared";
  EXPECT_EQ(connection.GetPort(), 0);
  EXPECT_EQ(connection.m_resourcePath.View(), OLESTR("/a?x")) << "written by success only";
}

TEST_F(WinInetConnection, TheResourcePathSpillsBeyondItsRoom) {
  const WideString path = OLESTR("/") + WideString(2047, 'p');
  const WideString extra = OLESTR("?") + WideString(2047, 'q');
  Connection connection((OLESTR("http://h") + path + extra).c_str(), OLESTR("GET"), false);
  EXPECT_EQ(connection.m_resourcePath.View(), path + extra);
  EXPECT_FALSE(connection.m_resourcePath.IsInline());
  connection.SetUrl(OLESTR("http://h/a?b"), false);
  EXPECT_EQ(connection.m_resourcePath.View(), OLESTR("/a?b"));
}

TEST_F(WinInetConnection, OpenCallsThePlatformInOrder) {
  {
    Connection connection(OLESTR("https://h.test:8443/a/b?x=1"), OLESTR("POST"), true);
    EXPECT_EQ(connection.Open(OLESTR("A: b"), OLESTR("body")), S_OK);
    EXPECT_EQ(connection.GetHeaders(), OLESTR("A: b"));
    EXPECT_EQ(connection.GetBody(), OLESTR("body"));
    EXPECT_EQ(connection.m_acceptTypePointers.size(), 2U);
    EXPECT_EQ(connection.m_acceptTypePointers.back(), nullptr);
  }
  EXPECT_THAT(
      m_platform.calls,
      ElementsAre("InternetOpenW(CWinInetConnection, 0, null, null, 0x0)",
                  "InternetConnectW(1, h.test, 8443, null, null, 3, 0x200, 0)",
                  "HttpOpenRequestW(2, POST, /a/b?x=1, null, null, text/*, 0xc00200, 0)",
                  "InternetCloseHandle(3)", "InternetCloseHandle(2)", "InternetCloseHandle(1)"));
}

TEST_F(WinInetConnection, ACredentialInTheUrlIsNotUsed) {
  Connection connection(OLESTR("http://me:pw@h/"), OLESTR("GET"), false);
  EXPECT_EQ(connection.Open(nullptr, nullptr), S_OK);
  EXPECT_EQ(m_platform.calls[1], "InternetConnectW(1, h, 80, null, null, 3, 0x200, 0)");
}

TEST_F(WinInetConnection, NoPathGivesAnObjectNameOfTheExtraInfoAlone) {
  Connection connection(OLESTR("http://h?x=1"), OLESTR("GET"), true);
  EXPECT_EQ(connection.Open(nullptr, nullptr), S_OK);
  EXPECT_EQ(m_platform.calls[2], "HttpOpenRequestW(2, GET, ?x=1, null, null, text/*, 0x400200, 0)");
}

TEST_F(WinInetConnection, VerbAndFlagsMayBeSetAfterConstruction) {
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.m_verb = OLESTR("DELETE");
  connection.m_requestFlags |= INTERNET_FLAG_NO_AUTO_REDIRECT;
  EXPECT_EQ(connection.Open(nullptr, nullptr), S_OK);
  EXPECT_EQ(m_platform.calls[2],
            "HttpOpenRequestW(2, DELETE, /a, null, null, text/*, 0x600200, 0)");
}

TEST_F(WinInetConnection, NullHeadersAndBodyAreEmptied) {
  m_platform.expectedLeaks = 1;
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.Open(OLESTR("A: b"), OLESTR("body"));
  connection.Open(nullptr, nullptr);
  EXPECT_EQ(connection.GetHeaders(), OLESTR(""));
  EXPECT_EQ(connection.GetBody(), OLESTR(""));
}

TEST_F(WinInetConnection, ASecondOpenKeepsTheConnectionAndLosesTheFirstRequest) {
  m_platform.expectedLeaks = 1;
  {
    Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
    EXPECT_EQ(connection.Open(nullptr, nullptr), S_OK);
    EXPECT_EQ(connection.Open(nullptr, nullptr), S_OK);
  }
  EXPECT_THAT(
      m_platform.calls,
      ElementsAre("InternetOpenW(CWinInetConnection, 0, null, null, 0x0)",
                  "InternetConnectW(1, h, 80, null, null, 3, 0x200, 0)",
                  "HttpOpenRequestW(2, GET, /a, null, null, text/*, 0x400200, 0)",
                  "HttpOpenRequestW(2, GET, /a, null, null, text/*, 0x400200, 0)",
                  "InternetCloseHandle(4)", "InternetCloseHandle(2)", "InternetCloseHandle(1)"))
      << "the destructor closes the newest request only";
}

TEST_F(WinInetConnection, AnOwnerThatClosesTheRequestLeaksNothing) {
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  for (int request = 0; request < 3; ++request) {
    EXPECT_EQ(connection.Open(nullptr, nullptr), S_OK);
    CurrentPort<WinInet>().InternetCloseHandle(connection.m_hRequest);
    connection.m_hRequest = nullptr;
  }
  EXPECT_EQ(m_platform.CallsOf("InternetOpenW").size(), 1U);
  EXPECT_EQ(m_platform.CallsOf("InternetConnectW").size(), 1U);
}

TEST_F(WinInetConnection, OpenResetsTheStatusAndNotTheError) {
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.m_statusCode = 500;
  connection.m_lastError = 12029;
  m_platform.failing = {"InternetOpenW"};
  EXPECT_EQ(connection.Open(OLESTR("A: b"), OLESTR("body")), E_FAIL);
  EXPECT_EQ(connection.m_statusCode, 0U);
  EXPECT_EQ(connection.m_lastError, 12029U);
  EXPECT_EQ(connection.GetHeaders(), OLESTR("")) << "it had not come to that";
  EXPECT_EQ(m_platform.calls.size(), 1U);
}

TEST_F(WinInetConnection, AFailedConnectIsNoticedAtTheRequest) {
  Connection connection(OLESTR("h"), OLESTR("GET"), true);  // does not parse: no host
  EXPECT_EQ(connection.Open(nullptr, nullptr), E_FAIL);
  EXPECT_THAT(m_platform.calls,
              ElementsAre("InternetOpenW(CWinInetConnection, 0, null, null, 0x0)",
                          "InternetConnectW(1, , 0, null, null, 3, 0x200, 0)",
                          "HttpOpenRequestW(0, GET, , null, null, text/*, 0x400200, 0)"));
}

TEST_F(WinInetConnection, AFailedRequestIsEFail) {
  m_platform.failing = {"HttpOpenRequestW"};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  EXPECT_EQ(connection.Open(nullptr, nullptr), E_FAIL);
  EXPECT_EQ(connection.m_hRequest, nullptr);
}

TEST_F(WinInetConnection, SendRequestSendsHeadersAndUtf8) {
  m_platform.answers = {Answer{}};
  Connection connection(OLESTR("http://h/a"), OLESTR("POST"), true);
  connection.Open(OLESTR("A: b\nC: d"), OLESTR("\u00e9\u4e2d"));
  EXPECT_TRUE(connection.SendRequest());
  EXPECT_EQ(m_platform.calls[3], "HttpSendRequestW(3, A: b\\u000aC: d, -1, 5)");
  EXPECT_EQ(m_platform.bodies[0], "\xC3\xA9\xE4\xB8\xAD");
}

TEST_F(WinInetConnection, AnEmptyBodyIsAnEmptyBuffer) {
  m_platform.answers = {Answer{}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.Open(nullptr, nullptr);
  EXPECT_TRUE(connection.SendRequest());  // the port checks that the buffer is there
  EXPECT_EQ(m_platform.calls[3], "HttpSendRequestW(3, , -1, 0)");
}

TEST_F(WinInetConnection, ReadResponseReadsInStepsToTheEnd) {
  const std::string large(8192, 'x');
  m_platform.answers = {Answer{.chunks = {"ab", large, "c"}}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.Open(nullptr, nullptr);
  connection.SendRequest();
  EXPECT_TRUE(connection.ReadResponse());
  EXPECT_EQ(connection.GetResponseText(), "ab" + large + "c");
  EXPECT_THAT(m_platform.CallsOf("InternetReadFile"),
              ElementsAre("InternetReadFile(3, 8192)", "InternetReadFile(3, 8192)",
                          "InternetReadFile(3, 8192)", "InternetReadFile(3, 8192)"));
}

TEST_F(WinInetConnection, ANulDropsTheRestOfItsChunkOnly) {
  using namespace std::string_literals;
  m_platform.answers = {
      Answer{.chunks = {"ab\0cd"s, "ef"s, "\0gh"s, std::string(8192, '\0'), "ij\0"s}}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.Open(nullptr, nullptr);
  connection.SendRequest();
  EXPECT_TRUE(connection.ReadResponse());
  EXPECT_EQ(connection.GetResponseText(), "abefij");
}

TEST_F(WinInetConnection, AFailedReadKeepsWhatCame) {
  m_platform.answers = {Answer{.chunks = {"ab", "cd"}, .readError = 12031}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.m_response = "of the answer before";
  connection.Open(nullptr, nullptr);
  connection.SendRequest();
  EXPECT_FALSE(connection.ReadResponse());
  EXPECT_EQ(connection.GetResponseText(), "abcd");
}

TEST_F(WinInetConnection, ReadResponseStartsAfresh) {
  m_platform.answers = {Answer{}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.m_response = "of the answer before";
  connection.Open(nullptr, nullptr);
  connection.SendRequest();
  EXPECT_TRUE(connection.ReadResponse());
  EXPECT_EQ(connection.GetResponseText(), "");
}

TEST_F(WinInetConnection, QueryStatusCodeReadsText) {
  const struct {
    const OLECHAR* text;
    DWORD status;
  } cases[] = {{OLESTR("200"), 200}, {OLESTR("404"), 404}, {OLESTR("x"), 0}, {OLESTR(""), 0}};
  for (const auto& test : cases) {
    ScriptedWinInet platform;
    PortScope<WinInet> scope(platform);
    platform.answers = {Answer{.status = test.text}};
    Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
    connection.Open(nullptr, nullptr);
    connection.SendRequest();
    EXPECT_EQ(connection.QueryStatusCode(), test.status);
    EXPECT_EQ(platform.CallsOf("HttpQueryInfoW").back(), "HttpQueryInfoW(3, 19, 4096)");
  }
}

TEST_F(WinInetConnection, QueryHeaderReadsUpTo2047Characters) {
  const WideString longest(2047, 'x');
  m_platform.answers = {Answer{
      .headers = {{HTTP_QUERY_LOCATION, longest}, {HTTP_QUERY_SERVER, longest + OLESTR("x")}}}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  connection.Open(nullptr, nullptr);
  connection.SendRequest();
  WideString value = OLESTR("as it was");
  EXPECT_FALSE(connection.QueryHeader(HTTP_QUERY_CONTENT_TYPE, value));
  EXPECT_EQ(value, OLESTR("as it was"));
  EXPECT_FALSE(connection.QueryHeader(HTTP_QUERY_SERVER, value)) << "too long is like missing";
  EXPECT_EQ(value, OLESTR("as it was"));
  EXPECT_TRUE(connection.QueryHeader(HTTP_QUERY_LOCATION, value));
  EXPECT_EQ(value, longest);
  EXPECT_EQ(m_platform.CallsOf("HttpQueryInfoW").back(), "HttpQueryInfoW(3, 33, 4096)");
}

TEST_F(WinInetConnection, BeginWriteSendsTheHeadOfAPut) {
  m_platform.answers = {Answer{.status = OLESTR("201")}};
  {
    Connection connection(OLESTR("http://h/a?op=CREATE"), OLESTR("GET"), false);
    EXPECT_TRUE(connection.BeginWrite(4294967295U));
    EXPECT_TRUE(connection.m_streaming);
    EXPECT_EQ(connection.m_verb, OLESTR("PUT"));
    EXPECT_EQ(connection.m_requestFlags, 0x04400200U);
    DWORD written = 0;
    CurrentPort<WinInet>().InternetWriteFile(connection.m_hRequest, "abc", 3, &written);
    CurrentPort<WinInet>().HttpEndRequestW(connection.m_hRequest, nullptr, 0, 0);
    EXPECT_EQ(connection.QueryStatusCode(), 201U);
  }
  EXPECT_THAT(
      m_platform.calls,
      ElementsAre("InternetOpenW(CWinInetConnection, 0, null, null, 0x0)",
                  "InternetConnectW(1, h, 80, null, null, 3, 0x200, 0)",
                  "HttpOpenRequestW(2, PUT, /a?op=CREATE, null, null, text/*, 0x4400200, 0)",
                  "HttpSendRequestExW(3, {Content-Length: 4294967295 26}, null, 0, 0)",
                  "InternetWriteFile(3, 3)", "HttpEndRequestW(3)", "HttpQueryInfoW(3, 19, 4096)",
                  "InternetCloseHandle(3)", "InternetCloseHandle(2)", "InternetCloseHandle(1)"));
}

TEST_F(WinInetConnection, BeginWriteCanBeMadeAPost) {
  m_platform.answers = {Answer{}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), false);
  connection.m_usePost = TRUE;
  EXPECT_TRUE(connection.BeginWrite(0));
  EXPECT_EQ(connection.m_verb, OLESTR("POST"));
  EXPECT_EQ(m_platform.calls.back(), "HttpSendRequestExW(3, {Content-Length: 0 17}, null, 0, 0)");
}

TEST_F(WinInetConnection, BeginWriteTellsAFailedOpenAndAFailedSend) {
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), false);
  m_platform.failing = {"InternetOpenW"};
  EXPECT_FALSE(connection.BeginWrite(1));
  m_platform.failing.clear();
  m_platform.answers = {Answer{.error = 12029}};
  EXPECT_FALSE(connection.BeginWrite(1));
  EXPECT_FALSE(connection.m_streaming);
}

TEST_F(WinInetConnection, AStreamedHeadIsSentAgainAsAHead) {
  m_platform.answers = {Answer{}, Answer{}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), false);
  ASSERT_TRUE(connection.BeginWrite(3));
  EXPECT_EQ(connection.SendWithRetry(), S_OK);
  EXPECT_THAT(m_platform.CallsOf("HttpSendRequestExW"),
              ElementsAre("HttpSendRequestExW(3, {Content-Length: 3 17}, null, 0, 0)",
                          "HttpSendRequestExW(3, null, {null 0}, 0, 0)"));
}

TEST_F(WinInetConnection, ResendClosesOpensAndSends) {
  m_platform.answers = {Answer{}, Answer{}};
  {
    Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
    ASSERT_EQ(connection.Open(OLESTR("A: b"), nullptr), S_OK);
    ASSERT_EQ(connection.SendWithRetry(), S_OK);
    m_platform.calls.clear();
    EXPECT_EQ(connection.Resend(), S_OK);
  }
  EXPECT_THAT(m_platform.calls,
              ElementsAre("InternetCloseHandle(3)",
                          "HttpOpenRequestW(2, GET, /a, null, null, text/*, 0x400200, 0)",
                          "HttpSendRequestW(4, A: b, -1, 0)", "HttpQueryInfoW(4, 19, 4096)",
                          "GetActiveWindow()", "InternetErrorDlg(active, 4, 0, 7)",
                          "HttpQueryInfoW(4, 19, 4096)", "InternetCloseHandle(4)",
                          "InternetCloseHandle(2)", "InternetCloseHandle(1)"));
}

TEST_F(WinInetConnection, ResendReturnsTheFirstFailure) {
  m_platform.answers = {Answer{}, Answer{.status = OLESTR("404")}};
  Connection connection(OLESTR("http://h/a"), OLESTR("GET"), true);
  ASSERT_EQ(connection.Open(nullptr, nullptr), S_OK);
  ASSERT_EQ(connection.SendWithRetry(), S_OK);
  EXPECT_EQ(connection.Resend(), E_FAIL);
  EXPECT_EQ(connection.m_statusCode, 404U);
  m_platform.failing = {"HttpOpenRequestW"};
  EXPECT_EQ(connection.Resend(), E_FAIL);
  EXPECT_EQ(connection.m_hRequest, nullptr);
}

// What a protocol overrides is what goes out.
class Protocol : public Connection {
 public:
  Protocol() : Connection(OLESTR("http://h/own?x"), OLESTR("GET"), true) {}
  WideString GetVerb() override { return OLESTR("VERB"); }
  WideString GetHostName() override { return OLESTR("other"); }
  INTERNET_PORT GetPort() override { return 7; }
  WideString GetUrlPath() override { return OLESTR("path"); }
  WideString GetExtraInfo() override { return OLESTR("#extra"); }
  WideString GetHeaders() override { return OLESTR("H: i"); }
  WideString GetBody() override { return OLESTR("from the protocol"); }
  const LPCWSTR* GetAcceptTypes() override {
    static const LPCWSTR types[] = {OLESTR("text/*"), OLESTR("application/json"), nullptr};
    return types;
  }
};

TEST_F(WinInetConnection, AsksItsVirtualOperations) {
  m_platform.answers = {Answer{}};
  Protocol connection;
  EXPECT_EQ(connection.Open(nullptr, nullptr), S_OK);
  EXPECT_TRUE(connection.SendRequest());
  EXPECT_EQ(m_platform.calls[1], "InternetConnectW(1, other, 7, null, null, 3, 0x200, 0)");
  EXPECT_EQ(m_platform.calls[2],
            "HttpOpenRequestW(2, VERB, path#extra, null, null, text/* application/json, 0x400200, "
            "0)");
  EXPECT_EQ(m_platform.calls[3], "HttpSendRequestW(3, H: i, -1, 17)");
  EXPECT_EQ(m_platform.bodies[0], "from the protocol");
}

// What sends the request again asks the protocol's own loop, and the base's loop the protocol's own
// send.
class SendingProtocol : public Connection {
 public:
  SendingProtocol() : Connection(OLESTR("http://h/a"), OLESTR("GET"), true) {}
  BOOL SendRequest() override {
    ++sends;
    return Connection::SendRequest();
  }
  HRESULT SendWithRetry() override {
    ++loops;
    return Connection::SendWithRetry();
  }
  int sends = 0;
  int loops = 0;
};

TEST_F(WinInetConnection, SendsByItsVirtualOperations) {
  m_platform.answers = {Answer{}};
  SendingProtocol connection;
  ASSERT_EQ(connection.Open(nullptr, nullptr), S_OK);
  m_platform.failing = {"HttpOpenRequestW"};
  EXPECT_EQ(connection.Resend(), E_FAIL);
  EXPECT_EQ(connection.loops, 0) << "nothing to send";
  m_platform.failing.clear();
  EXPECT_EQ(connection.Resend(), S_OK);
  EXPECT_EQ(connection.loops, 1);
  EXPECT_EQ(connection.sends, 1);
}

TEST(InlineWideString, HoldsAUsualTextInside) {
  InlineWideString text;
  EXPECT_EQ(text.View(), OLESTR(""));
  text.Assign(WideString(2085, 'a'));
  EXPECT_TRUE(text.IsInline());
  EXPECT_EQ(text.View(), WideString(2085, 'a'));
  text.Append(OLESTR("b"));
  EXPECT_FALSE(text.IsInline());
  EXPECT_EQ(text.View(), WideString(2085, 'a') + OLESTR("b"));
  text.Append(WideString(10000, 'c'));
  EXPECT_EQ(text.View(), WideString(2085, 'a') + OLESTR("b") + WideString(10000, 'c'));
  EXPECT_EQ(WideView(text.Text()), text.View()) << "null-ended";
  text.Assign(OLESTR("x"));
  EXPECT_EQ(WideView(text.Text()), OLESTR("x"));
}

}  // namespace
}  // namespace velandoc
