// Peers that misbehave: each failure with its number, and no wait without an end.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "connection/winhttp_connection.h"
#include "platform/posix/http/connection_pool.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/scripted_peer.h"
#include "tests/support/winhttp_exchange.h"
#include "tests/support/wininet_exchange.h"

namespace velandoc::test {
namespace {

constexpr char kHead10[] = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n";

struct Failure {
  const char* name;
  Script script;
  DWORD error;
};

TEST(WinHttpFailures, TellsWhyAnAnswerDidNotCome) {
  const Failure failures[] = {
      {"closed without a byte", {ReadRequest(), Close()}, ERROR_WINHTTP_INVALID_SERVER_RESPONSE},
      // WinHTTP has no number of its own for a reset.
      {"reset without a byte", {ReadRequest(), Reset()}, ERROR_WINHTTP_CONNECTION_ERROR},
      {"closed within the head",
       {ReadRequest(), Send("HTTP/1.1 200 OK\r\nContent-Le"), Close()},
       ERROR_WINHTTP_INVALID_SERVER_RESPONSE},
      {"interim answers only",
       {ReadRequest(), Send("HTTP/1.1 100 Continue\r\n\r\n"), Close()},
       ERROR_WINHTTP_INVALID_SERVER_RESPONSE},
  };
  for (const Failure& failure : failures) {
    SCOPED_TRACE(failure.name);
    ScriptedPeer peer(failure.script);
    HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U) << "the request went out";
    EXPECT_EQ(exchange.Receive(), failure.error);
    EXPECT_EQ(exchange.Status(), 0U);
    DWORD error = 0;
    EXPECT_EQ(exchange.ReadAll(8, &error), "");
    EXPECT_EQ(error, ERROR_WINHTTP_INCORRECT_HANDLE_STATE);
    EXPECT_EQ(exchange.Receive(), ERROR_WINHTTP_INCORRECT_HANDLE_STATE) << "once for each send";
  }
}

TEST(WinHttpFailures, CountsNoShortBodyAsRead) {
  const Script scripts[] = {
      {ReadRequest(), Send(kHead10), Send("12345"), Close()},
      {ReadRequest(), Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n12345\r\n"),
       Close()},
  };
  for (const Script& script : scripts) {
    ScriptedPeer peer(script);
    HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Run(), 0U);
    DWORD error = 0;
    EXPECT_EQ(exchange.ReadAll(4, &error), "12345");
    EXPECT_EQ(error, ERROR_WINHTTP_CONNECTION_ERROR);
    DWORD count = 9;
    EXPECT_FALSE(CurrentPort<WinHttp>().WinHttpQueryDataAvailable(exchange.Request(), &count));
    EXPECT_EQ(count, 0U) << "it stays failed";
  }
}

TEST(WinHttpFailures, AConnectionTellsAShortBody) {
  ScriptedPeer peer(Script{ReadRequest(), Send(kHead10), Send("12345"), Close()});
  const std::string url = "http://127.0.0.1:" + std::to_string(peer.Port()) + "/";
  CWinHttpConnection connection(WideString(url.begin(), url.end()).c_str());
  EXPECT_EQ(connection.Execute(), E_FAIL);
  EXPECT_EQ(connection.m_statusCode, 200U);
  EXPECT_EQ(connection.m_responseText, "12345");
}

TEST(WinHttpFailures, GivesUpOnASilentPeer) {
  const EnvironmentScope limit("VELANDOC_TIMEOUT_SECONDS", "0.3");
  const auto begin = std::chrono::steady_clock::now();
  {
    ScriptedPeer peer(Script{ReadRequest(), Sleep(10000)});
    HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    EXPECT_EQ(exchange.Receive(), ERROR_WINHTTP_TIMEOUT);
  }
  {
    ScriptedPeer peer(Script{ReadRequest(), Send(kHead10), Send("123"), Sleep(10000)});
    HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Run(), 0U);
    DWORD error = 0;
    EXPECT_EQ(exchange.ReadAll(8, &error), "123");
    EXPECT_EQ(error, ERROR_WINHTTP_TIMEOUT);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(8));
}

TEST(WinHttpFailures, TellsOfBytesAsTheyCome) {
  ScriptedPeer peer(Script{ReadRequest(), Send(kHead10), Send("123"), Sleep(400), Send("4567890"),
                           ReadRequest()});
  HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Run(), 0U);
  DWORD count = 0;
  ASSERT_TRUE(CurrentPort<WinHttp>().WinHttpQueryDataAvailable(exchange.Request(), &count));
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(exchange.ReadAll(), "1234567890");
}

TEST(WinHttpFailures, RefusesWhatItDoesNotHave) {
  WinHttp& port = CurrentPort<WinHttp>();
  for (const DWORD accessType : {DWORD{3}, DWORD{2}, DWORD{99}}) {
    EXPECT_EQ(port.WinHttpOpen(OLESTR("a"), accessType, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  }
  constexpr DWORD kAsynchronous = 0x10000000;
  EXPECT_EQ(port.WinHttpOpen(OLESTR("a"), 4, nullptr, nullptr, kAsynchronous), nullptr);
  HINTERNET session = port.WinHttpOpen(nullptr, 1, nullptr, nullptr, 0);
  ASSERT_NE(session, nullptr);
  for (LPCWSTR host : {LPCWSTR{OLESTR("")}, LPCWSTR{nullptr}}) {
    EXPECT_EQ(port.WinHttpConnect(session, host, 80, 0), nullptr);
    EXPECT_EQ(port.GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  }
  HINTERNET connect = port.WinHttpConnect(session, OLESTR("h"), 0, 0);
  EXPECT_EQ(port.WinHttpOpenRequest(connect, OLESTR("A B"), nullptr, nullptr, nullptr, nullptr, 0),
            nullptr);
  EXPECT_EQ(
      port.WinHttpOpenRequest(connect, nullptr, nullptr, OLESTR("HTTP/1.0"), nullptr, nullptr, 0),
      nullptr);
  EXPECT_TRUE(port.WinHttpCloseHandle(session));
  EXPECT_FALSE(port.WinHttpCloseHandle(connect)) << "closed with its session";

  HttpExchange exchange("127.0.0.1", 1, OLESTR("GET"), OLESTR("/"));
  EXPECT_EQ(exchange.SetOption(WINHTTP_OPTION_REDIRECT_POLICY, 3), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(exchange.SetOption(WINHTTP_OPTION_AUTOLOGON_POLICY, 3), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(exchange.SetOption(WINHTTP_OPTION_SECURITY_FLAGS, 1), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(exchange.SetOption(4711, 0), ERROR_WINHTTP_INVALID_OPTION);
  constexpr DWORD kPassport = 4;
  EXPECT_EQ(exchange.SetCredentials(kPassport, OLESTR("a"), OLESTR("b")),
            DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(exchange.SetCredentials(WINHTTP_AUTH_SCHEME_BASIC, OLESTR("a"), OLESTR("b"), 2),
            DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(exchange.SetCredentials(WINHTTP_AUTH_SCHEME_BASIC, OLESTR(""), OLESTR("b")),
            DWORD{ERROR_INVALID_PARAMETER})
      << "nobody is logged on by a password here";
  EXPECT_EQ(exchange.SetCredentials(WINHTTP_AUTH_SCHEME_NEGOTIATE, OLESTR(""), OLESTR("")), 0U);
}

TEST(WinHttpFailures, NamesThatCannotBeHostsAreNotResolved) {
  for (const char* host : {"no-such-host.invalid", "a b", "user@127.0.0.1", "127.0.0.1/x"}) {
    SCOPED_TRACE(host);
    HttpExchange exchange(host, 1, OLESTR("GET"), OLESTR("/"));
    EXPECT_EQ(exchange.Send(), ERROR_WINHTTP_NAME_NOT_RESOLVED);
  }
}

TEST(WinHttpFailures, KeepsARedirectThatLeadsNowhere) {
  for (const char* location : {"", "Location: hdfs://x/y\r\n", "Location: ftp://x/\r\n",
                               "Location: http://a b/\r\n", "Location:\r\n"}) {
    SCOPED_TRACE(location);
    ScriptedPeer peer(Answering(Answer("302 Found", location, "body")));
    HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Run(), 0U);
    EXPECT_EQ(exchange.Status(), 302U);
    EXPECT_EQ(exchange.ReadAll(), "body");
  }
}

TEST(WinHttpFailures, SaysWhatIsWrongWithAStream) {
  ScriptedPeer peer(Answering(Answer("201 Created", "", "")));
  HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
  EXPECT_EQ(exchange.Write("a"), ERROR_WINHTTP_INCORRECT_HANDLE_STATE);
  ASSERT_EQ(exchange.Send("", 3), 0U);
  EXPECT_EQ(exchange.Write("abcd"), DWORD{ERROR_INVALID_PARAMETER}) << "more than was announced";
  EXPECT_EQ(exchange.Write("ab"), 0U);
  EXPECT_EQ(exchange.Receive(), ERROR_WINHTTP_CONNECTION_ERROR) << "less than was announced";
  HttpExchange empty("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
  ASSERT_EQ(empty.Send(), 0U);
  EXPECT_EQ(empty.Write("a"), ERROR_WINHTTP_INCORRECT_HANDLE_STATE);
}

TEST(WinHttpFailures, GivesARefusalOfAStreamAsItsAnswer) {
  ScriptedPeer peer(Script{ReadHead(), Send(Answer("403 No", "", "why")), Sleep(3000)});
  HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
  const std::string piece(8192, 'x');
  ASSERT_EQ(exchange.Send("", 64 * 1024 * 1024), 0U);
  for (int i = 0; i < 8192; ++i) ASSERT_EQ(exchange.Write(piece), 0U);
  ASSERT_EQ(exchange.Receive(), 0U);
  EXPECT_EQ(exchange.Status(), 403U);
  EXPECT_EQ(exchange.ReadAll(), "why");
}

TEST(WinHttpFailures, FailsAWriteOnceThePeerIsGone) {
  ScriptedPeer peer(Script{ReadHead(), Reset()});
  HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
  const std::string piece(8192, 'x');
  ASSERT_EQ(exchange.Send("", 1 << 30), 0U);
  DWORD error = 0;
  for (int i = 0; i < 8192 && error == 0; ++i) error = exchange.Write(piece);
  EXPECT_EQ(error, ERROR_WINHTTP_CONNECTION_ERROR);
  EXPECT_EQ(exchange.Write(piece), error);
}

TEST(WinHttpFailures, ReplacesAConnectionThatTheServerClosed) {
  ScriptedPeer peer(Script{ReadRequest(), Send(Answer("200 OK", "", "ok")), Close()});
  for (int i = 0; i < 5; ++i) {
    HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
    ASSERT_EQ(exchange.Send("", 3), 0U);
    ASSERT_EQ(exchange.Write("abc"), 0U);
    ASSERT_EQ(exchange.Receive(), 0U);
    EXPECT_EQ(exchange.ReadAll(), "ok");
  }
  EXPECT_EQ(peer.Connections(), 5);
}

TEST(WinHttpFailures, SharesConnectionsWithTheOtherService) {
  ScriptedPeer peer(Answering(Answer("200 OK", "", std::string(3000, 'x'))));
  for (int i = 0; i < 10; ++i) {
    HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Run(), 0U);
    // Every other answer is left unread.
    if (i % 2 == 0) {
      EXPECT_EQ(exchange.ReadAll().size(), 3000U);
    }
    Exchange other("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(other.Send(), 0U);
    EXPECT_EQ(other.ReadAll().size(), 3000U);
  }
  EXPECT_EQ(peer.Connections(), 1);
  // Their requests are not to be mistaken for each other.
  Exchange other("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  DWORD count = 0;
  EXPECT_FALSE(CurrentPort<WinHttp>().WinHttpQueryDataAvailable(other.Request(), &count));
  EXPECT_EQ(CurrentPort<WinHttp>().GetLastError(), ERROR_WINHTTP_INCORRECT_HANDLE_TYPE);
}

TEST(WinHttpFailures, ReadsNoFartherAheadThanItHolds) {
  ScriptedPeer peer(Script{ReadRequest(),
                           Send("HTTP/1.1 200 OK\r\nContent-Length: 1000000000\r\n\r\n"),
                           SendFill(1000000000), ReadRequest()});
  HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Run(), 0U);
  DWORD count = 0;
  ASSERT_TRUE(CurrentPort<WinHttp>().WinHttpQueryDataAvailable(exchange.Request(), &count));
  EXPECT_GT(count, 0U);
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  EXPECT_LT(peer.BytesSent(), 32U * 1024 * 1024);
}

// Long bodies leave libcurl behind; they must not be told from short ones but by their speed.
TEST(WinHttpFailures, ReadsALongBodyToItsLastByte) {
  constexpr std::size_t kLong = 20000000;
  std::string body(kLong, '\0');
  for (std::size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>(i % 251);
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 20000000\r\n\r\n";
  for (const DWORD step : {8192U, 1000U, 1000000U}) {
    SCOPED_TRACE(step);
    ScriptedPeer peer(Script{ReadRequest(), Send(head), Send(body), ReadRequest()});
    HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Run(), 0U);
    DWORD error = 1;
    EXPECT_TRUE(exchange.ReadAll(step, &error) == body);
    EXPECT_EQ(error, 0U);
    EXPECT_EQ(exchange.ReadAll(step, &error), "");
    EXPECT_EQ(error, 0U);
  }
  ScriptedPeer peer(Script{ReadRequest(), Send(head), SendFill(kLong - 1), Close()});
  HttpExchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Run(), 0U);
  DWORD error = 0;
  EXPECT_EQ(exchange.ReadAll(8192, &error).size(), kLong - 1);
  EXPECT_EQ(error, ERROR_WINHTTP_CONNECTION_ERROR);
}

TEST(WinHttpFailures, TakesTheProxyOfTheEnvironment) {
  ScriptedPeer proxy(Answering(Answer("200 OK", "", "through")));
  const EnvironmentScope environment("http_proxy",
                                     ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str());
  const EnvironmentScope none("no_proxy", nullptr);
  const EnvironmentScope noneUpper("NO_PROXY", nullptr);
  HttpExchange exchange("name.node.test", 80, OLESTR("PUT"), OLESTR("/up?a b"));
  ASSERT_EQ(exchange.Send("", 3), 0U);
  ASSERT_EQ(exchange.Write("abc"), 0U);
  ASSERT_EQ(exchange.Receive(), 0U);
  EXPECT_EQ(exchange.ReadAll(), "through");
  EXPECT_EQ(proxy.LastRequest(),
            "PUT http://name.node.test:80/up?a%20b HTTP/1.1\r\n"
            "Accept: text/*, application/json\r\nUser-Agent: CWinHttpConnection\r\n"
            "Host: name.node.test\r\nContent-Length: 3\r\nConnection: Keep-Alive\r\n\r\nabc");
  const EnvironmentScope excluded("no_proxy", "node.test");
  HttpExchange direct("name.node.test", 80, OLESTR("GET"), OLESTR("/"));
  EXPECT_EQ(direct.Send(), ERROR_WINHTTP_NAME_NOT_RESOLVED);
}

TEST(WinHttpFailures, ASessionMayDoWithoutProxies) {
  ScriptedPeer proxy(Answering(Answer("200 OK", "", "through")));
  const EnvironmentScope environment("http_proxy",
                                     ("http://127.0.0.1:" + std::to_string(proxy.Port())).c_str());
  const EnvironmentScope none("no_proxy", nullptr);
  const EnvironmentScope noneUpper("NO_PROXY", nullptr);
  HttpExchange exchange("name.node.test", 80, OLESTR("GET"), OLESTR("/"), 0,
                        WINHTTP_ACCESS_TYPE_NO_PROXY);
  EXPECT_EQ(exchange.Send(), ERROR_WINHTTP_NAME_NOT_RESOLVED);
  EXPECT_EQ(proxy.Connections(), 0);
}

TEST(WinHttpFailures, ThreadsSendSideBySide) {
  ScriptedPeer peer(Answering(Answer("200 OK", "", "ok")));
  const std::string url = "http://127.0.0.1:" + std::to_string(peer.Port()) + "/a";
  const WideString wide(url.begin(), url.end());
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&wide] {
      for (int call = 0; call < 20; ++call) {
        CWinHttpConnection connection(wide.c_str());
        EXPECT_EQ(connection.Execute(), S_OK);
        EXPECT_EQ(connection.m_responseText, "ok");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(peer.Connections(), 4);
}

}  // namespace
}  // namespace velandoc::test
