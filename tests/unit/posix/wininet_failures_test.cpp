// Peers that misbehave: each failure with its number, and no wait without an end.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/posix/environment_scope.h"
#include "tests/support/scripted_peer.h"
#include "tests/support/wininet_exchange.h"

namespace velandoc::test {
namespace {

constexpr char kHead10[] = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n";

struct SendFailure {
  const char* name;
  Script script;
  DWORD error;
};

TEST(WinInetFailures, TellsWhyASendFailed) {
  const SendFailure failures[] = {
      {"closed without a byte", {ReadRequest(), Close()}, ERROR_HTTP_INVALID_SERVER_RESPONSE},
      {"reset without a byte", {ReadRequest(), Reset()}, ERROR_INTERNET_CONNECTION_RESET},
      {"closed within the head",
       {ReadRequest(), Send("HTTP/1.1 200 OK\r\nContent-Le"), Close()},
       ERROR_HTTP_INVALID_SERVER_RESPONSE},
      {"no HTTP at all",
       {ReadRequest(), Send("SSH-2.0-x\r\n\r\n"), Close()},
       ERROR_HTTP_INVALID_SERVER_RESPONSE},
      {"a bad status",
       {ReadRequest(), Send("HTTP/1.1 abc Bad\r\n\r\n"), Close()},
       ERROR_HTTP_INVALID_SERVER_RESPONSE},
      {"a first line without a status, and a body",
       {ReadRequest(), Send("HTTP/Content-Length: 5\r\n\r\n12345"), Close()},
       ERROR_HTTP_INVALID_SERVER_RESPONSE},
      {"interim answers only",
       {ReadRequest(), Send("HTTP/1.1 100 Continue\r\n\r\n"), Close()},
       ERROR_HTTP_INVALID_SERVER_RESPONSE},
  };
  for (const SendFailure& failure : failures) {
    SCOPED_TRACE(failure.name);
    ScriptedPeer peer(failure.script);
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("POST"), OLESTR("/"));
    EXPECT_EQ(exchange.Send(OLESTR(""), "abc"), failure.error);
    EXPECT_EQ(exchange.Status(), 0U);
    DWORD readError = 0;
    EXPECT_EQ(exchange.ReadAll(8, &readError), "");
    EXPECT_EQ(readError, ERROR_INTERNET_INCORRECT_HANDLE_STATE);
  }
}

// libcurl 7.88 looked in freed memory for the line that such a one continues: in the answer before.
// Whether it takes or refuses the head is the release's own business.
TEST(WinInetFailures, AHeadThatBeginsWithAFoldedLineHarmsNobody) {
  const std::string good = Answer("200 OK", "A: b\r\n", "good");
  const std::string folded = "HTTP/1.1 200 OK\r\n c: d\r\nContent-Length: 2\r\n\r\nok";
  ScriptedPeer peer(std::vector<Script>{{ReadRequest(), Send(good), Close()},
                                        {ReadRequest(), Send(folded), Close()},
                                        {ReadRequest(), Send(good), Close()}});
  for (const bool isGood : {true, false, true}) {
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    const DWORD error = exchange.Send();
    if (isGood) {
      EXPECT_EQ(error, 0U);
      EXPECT_EQ(exchange.ReadAll(), "good");
    } else {
      EXPECT_EQ(exchange.ReadAll(), error == 0 ? "ok" : "");
    }
  }
  EXPECT_EQ(peer.Connections(), 3);
}

TEST(WinInetFailures, AHeaderMayHaveTheNameOfTheProtocol) {
  ScriptedPeer peer(Answering(Answer("200 OK", "HTTP/1.1 404: x\r\nA: b\r\n", "ok")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Status(), 200U);
  EXPECT_EQ(exchange.ReadAll(), "ok");
}

TEST(WinInetFailures, CountsNoShortBodyAsRead) {
  const SendFailure failures[] = {
      {"closed early",
       {ReadRequest(), Send(kHead10), Send("12345"), Close()},
       ERROR_INTERNET_CONNECTION_ABORTED},
      {"a chunked body cut",
       {ReadRequest(), Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n12345\r\n"),
        Close()},
       ERROR_INTERNET_CONNECTION_ABORTED},
  };
  for (const SendFailure& failure : failures) {
    SCOPED_TRACE(failure.name);
    ScriptedPeer peer(failure.script);
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    DWORD error = 0;
    EXPECT_EQ(exchange.ReadAll(4, &error), "12345");
    EXPECT_EQ(error, failure.error);
    // It stays failed.
    char buffer[4];
    DWORD count = 9;
    EXPECT_FALSE(CurrentPort<WinInet>().InternetReadFile(exchange.Request(), buffer, 4, &count));
    EXPECT_EQ(count, 0U);
  }
}

TEST(WinInetFailures, GivesUpOnASilentPeer) {
  const EnvironmentScope limit("VELANDOC_TIMEOUT_SECONDS", "0.3");
  const auto begin = std::chrono::steady_clock::now();
  {
    ScriptedPeer peer(Script{ReadRequest(), Sleep(10000)});
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    EXPECT_EQ(exchange.Send(), ERROR_INTERNET_TIMEOUT);
  }
  {
    ScriptedPeer peer(Script{ReadRequest(), Send(kHead10), Send("123"), Sleep(10000)});
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    DWORD error = 0;
    EXPECT_EQ(exchange.ReadAll(8, &error), "123");
    EXPECT_EQ(error, ERROR_INTERNET_TIMEOUT);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(8));
}

TEST(WinInetFailures, NamesThatCannotBeHostsAreNotResolved) {
  for (const char* host : {"no-such-host.invalid", "a b", "user@127.0.0.1", "127.0.0.1/x", "a#b",
                           "a?b", "[::1", "a:1"}) {
    SCOPED_TRACE(host);
    Exchange exchange(host, 1, OLESTR("GET"), OLESTR("/"));
    EXPECT_EQ(exchange.Send(), ERROR_INTERNET_NAME_NOT_RESOLVED);
  }
}

TEST(WinInetFailures, NoNameEndsTheRequestLine) {
  ScriptedPeer peer(Answering(Answer("200 OK", "", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/a\r\nX: 1?b\r\nY: 2\t#\x7f"));
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(peer.LastRequest().substr(0, 56),
            "GET /a%0d%0aX:%201?b%0d%0aY:%202%09#%7f HTTP/1.1\r\nAccept");
}

TEST(WinInetFailures, FollowsACircleOnlyForSoLong) {
  ScriptedPeer peer(Answering(Answer("302 Found", "Location: /again\r\n", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  EXPECT_EQ(exchange.Send(), ERROR_HTTP_REDIRECT_FAILED);
  EXPECT_EQ(peer.Requests().size(), 21U);
  EXPECT_EQ(peer.Connections(), 1);
}

TEST(WinInetFailures, KeepsARedirectThatLeadsNowhere) {
  for (const char* location : {"", "Location: hdfs://x/y\r\n", "Location: ftp://x/\r\n",
                               "Location: http://a b/\r\n", "Location:\r\n"}) {
    SCOPED_TRACE(location);
    ScriptedPeer peer(Answering(Answer("302 Found", location, "body")));
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    EXPECT_EQ(exchange.Status(), 302U);
    EXPECT_EQ(exchange.ReadAll(), "body");
  }
}

TEST(WinInetFailures, AnswersAStreamWithItsRedirect) {
  // The bytes are gone: a 307 cannot be followed with them, and without them it would make an empty
  // file.
  ScriptedPeer peer(Answering(Answer("307 There", "Location: /there\r\n", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
  ASSERT_EQ(exchange.Begin(2), 0U);
  ASSERT_EQ(exchange.Write("ab"), 0U);
  ASSERT_EQ(exchange.End(), 0U);
  EXPECT_EQ(exchange.Status(), 307U);
  EXPECT_EQ(peer.Requests().size(), 1U);
}

TEST(WinInetFailures, SaysWhatIsWrongWithAStream) {
  ScriptedPeer peer(Answering(Answer("201 Created", "", "")));
  {
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
    EXPECT_EQ(exchange.Write("a"), ERROR_INTERNET_INCORRECT_HANDLE_STATE);
    EXPECT_EQ(exchange.End(), ERROR_INTERNET_INCORRECT_HANDLE_STATE);
    ASSERT_EQ(exchange.Begin(3), 0U);
    EXPECT_EQ(exchange.Write("abcd"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(exchange.Write("ab"), 0U);
    EXPECT_EQ(exchange.End(), ERROR_INTERNET_CONNECTION_ABORTED);
    EXPECT_EQ(exchange.Status(), 0U);
  }
  {
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
    EXPECT_EQ(exchange.Begin(-1), 0U);
    EXPECT_EQ(exchange.Write("abc"), 0U);
    ASSERT_EQ(exchange.End(), 0U);
    EXPECT_EQ(exchange.Status(), 201U);
    EXPECT_NE(peer.LastRequest().find("Transfer-Encoding: chunked\r\n"), std::string::npos);
    EXPECT_NE(peer.LastRequest().find("\r\n3\r\nabc\r\n0\r\n\r\n"), std::string::npos);
  }
}

TEST(WinInetFailures, GivesARefusalOfAStreamAsItsAnswer) {
  // The server says no after the head and reads on no more: the rest of the body goes nowhere, the
  // answer counts.
  ScriptedPeer peer(Script{ReadHead(), Send(Answer("403 No", "", "why")), Sleep(3000)});
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
  const std::string piece(8192, 'x');
  ASSERT_EQ(exchange.Begin(64 * 1024 * 1024), 0U);
  for (int i = 0; i < 8192; ++i) ASSERT_EQ(exchange.Write(piece), 0U);
  ASSERT_EQ(exchange.End(), 0U);
  EXPECT_EQ(exchange.Status(), 403U);
  EXPECT_EQ(exchange.ReadAll(), "why");
}

TEST(WinInetFailures, FailsAWriteOnceThePeerIsGone) {
  ScriptedPeer peer(Script{ReadHead(), Reset()});
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("PUT"), OLESTR("/"));
  const std::string piece(8192, 'x');
  ASSERT_EQ(exchange.Begin(1 << 30), 0U);
  DWORD error = 0;
  for (int i = 0; i < 8192 && error == 0; ++i) error = exchange.Write(piece);
  EXPECT_TRUE(error == ERROR_INTERNET_CONNECTION_RESET ||
              error == ERROR_INTERNET_CONNECTION_ABORTED)
      << error;
  EXPECT_EQ(exchange.Write(piece), error);
}

TEST(WinInetFailures, WaitsForAClosedConnectionNoSecondTime) {
  // The peer answers once on each connection and then closes it without a word.
  ScriptedPeer peer(Script{ReadRequest(), Send(Answer("200 OK", "", "ok")), Close()});
  for (int i = 0; i < 5; ++i) {
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("POST"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(OLESTR(""), "abc"), 0U);
    EXPECT_EQ(exchange.ReadAll(), "ok");
  }
  EXPECT_EQ(peer.Connections(), 5);
}

TEST(WinInetFailures, ReusesOneConnectionForFreshHandles) {
  ScriptedPeer peer(Answering(Answer("404 Gone", "", std::string(3000, 'x'))));
  for (int i = 0; i < 20; ++i) {
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    // Every other answer is left unread.
    if (i % 2 == 0) {
      EXPECT_EQ(exchange.ReadAll().size(), 3000U);
    }
  }
  EXPECT_EQ(peer.Connections(), 1);
}

TEST(WinInetFailures, ReadsNoFartherAheadThanItHolds) {
  ScriptedPeer peer(Script{ReadRequest(),
                           Send("HTTP/1.1 200 OK\r\nContent-Length: 1000000000\r\n\r\n"),
                           SendFill(1000000000), ReadRequest()});
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  char buffer[8192];
  DWORD count = 0;
  ASSERT_TRUE(
      CurrentPort<WinInet>().InternetReadFile(exchange.Request(), buffer, sizeof(buffer), &count));
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  // What the peer could send lies in the kernel's buffers and one piece here.
  EXPECT_LT(peer.BytesSent(), 32U * 1024 * 1024);
}

// Long bodies leave libcurl behind; they must not be told from short ones but by their speed.

constexpr std::uint64_t kLong = 20000000;
constexpr char kLongHead[] = "HTTP/1.1 200 OK\r\nContent-Length: 20000000\r\n\r\n";

TEST(WinInetFailures, ReadsALongBodyToItsLastByte) {
  std::string body(kLong, '\0');
  for (std::size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>(i % 251);
  for (const DWORD step : {8192U, 1000U, 1000000U}) {
    SCOPED_TRACE(step);
    ScriptedPeer peer(Script{ReadRequest(), Send(kLongHead), Send(body), ReadRequest()});
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    DWORD error = 1;
    EXPECT_TRUE(exchange.ReadAll(step, &error) == body);
    EXPECT_EQ(error, 0U);
    EXPECT_EQ(exchange.ReadAll(step, &error), "");
    EXPECT_EQ(error, 0U);
    // The same handle again.
    EXPECT_EQ(exchange.Status(), 200U);
  }
}

TEST(WinInetFailures, CountsNoShortLongBodyAsRead) {
  const EnvironmentScope limit("VELANDOC_TIMEOUT_SECONDS", "0.5");
  const SendFailure failures[] = {
      {"closed",
       {ReadRequest(), Send(kLongHead), SendFill(kLong - 1), Close()},
       ERROR_INTERNET_CONNECTION_ABORTED},
      {"silent",
       {ReadRequest(), Send(kLongHead), SendFill(kLong - 1), Sleep(10000)},
       ERROR_INTERNET_TIMEOUT},
  };
  for (const SendFailure& failure : failures) {
    SCOPED_TRACE(failure.name);
    ScriptedPeer peer(failure.script);
    Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    ASSERT_EQ(exchange.Send(), 0U);
    DWORD error = 0;
    EXPECT_EQ(exchange.ReadAll(8192, &error).size(), kLong - 1);
    EXPECT_EQ(error, failure.error);
    EXPECT_EQ(exchange.ReadAll(8192, &error), "");
    EXPECT_EQ(error, failure.error);
  }
}

TEST(WinInetFailures, LeavesALongBodyUnread) {
  ScriptedPeer peer({Script{ReadRequest(), Send(kLongHead), SendFill(kLong)},
                     Answering(Answer("200 OK", "", "ok"))});
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  char buffer[8192];
  DWORD count = 0;
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(CurrentPort<WinInet>().InternetReadFile(exchange.Request(), buffer, sizeof(buffer),
                                                        &count));
    ASSERT_EQ(count, sizeof(buffer));
  }
  // Sending again drops the answer and its connection.
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.ReadAll(), "ok");
}

TEST(WinInetFailures, TwoRequestsOfOneThreadTakeTurns) {
  ScriptedPeer first(Answering(Answer("200 OK", "", std::string(20000000, 'a'))));
  ScriptedPeer second(Answering(Answer("200 OK", "", std::string(300000, 'b'))));
  Exchange a("127.0.0.1", first.Port(), OLESTR("GET"), OLESTR("/"));
  Exchange b("127.0.0.1", second.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(a.Send(), 0U);
  ASSERT_EQ(b.Send(), 0U);
  WinInet& port = CurrentPort<WinInet>();
  for (int i = 0; i < 30; ++i) {
    char buffer[10000];
    DWORD count = 0;
    ASSERT_TRUE(port.InternetReadFile(a.Request(), buffer, sizeof(buffer), &count));
    EXPECT_EQ(std::string(buffer, count), std::string(10000, 'a'));
    ASSERT_TRUE(port.InternetReadFile(b.Request(), buffer, sizeof(buffer), &count));
    EXPECT_EQ(std::string(buffer, count), std::string(10000, 'b'));
  }
}

TEST(WinInetFailures, ThreadsKeepTheirConnectionsApart) {
  ScriptedPeer peer(Answering(Answer("200 OK", "", "ok")));
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&peer] {
      for (int call = 0; call < 20; ++call) {
        Exchange exchange("127.0.0.1", peer.Port(), OLESTR("POST"), OLESTR("/"));
        EXPECT_EQ(exchange.Send(OLESTR(""), "x"), 0U);
        EXPECT_EQ(exchange.ReadAll(), "ok");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(peer.Connections(), 4);
}

TEST(WinInetFailures, AHandleOutlivesTheThreadThatMadeIt) {
  ScriptedPeer peer(Answering(Answer("200 OK", "", std::string(200000, 'z'))));
  std::unique_ptr<Exchange> exchange;
  std::thread([&] {
    exchange = std::make_unique<Exchange>("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
    EXPECT_EQ(exchange->Send(), 0U);
  }).join();
  EXPECT_EQ(exchange->ReadAll().size(), 200000U);
}

TEST(WinInetFailures, HeadersOfOneMegabyteAreNoHeaders) {
  ScriptedPeer peer(Script{ReadRequest(), Send("HTTP/1.1 200 OK\r\nX: "), SendFill(1 << 20),
                           Send("\r\n\r\n"), Close()});
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  EXPECT_NE(exchange.Send(), 0U);
}

TEST(WinInetFailures, AnOverlongLocationIsThereForWhoHasRoom) {
  const std::string location(5000, 'l');
  ScriptedPeer peer(Answering(Answer("201 Created", "Location: /" + location + "\r\n", "")));
  Exchange exchange("127.0.0.1", peer.Port(), OLESTR("GET"), OLESTR("/"));
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Header(HTTP_QUERY_LOCATION), "(none)");
  DWORD size = 0;
  EXPECT_FALSE(CurrentPort<WinInet>().HttpQueryInfoW(exchange.Request(), HTTP_QUERY_LOCATION,
                                                     nullptr, &size, nullptr));
  EXPECT_EQ(size, 2 * (location.size() + 2));
}

}  // namespace
}  // namespace velandoc::test
