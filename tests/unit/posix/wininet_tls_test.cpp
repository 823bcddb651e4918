// Certificates against the stand-in server: each problem with its number, each flag for its own
// problem only, and no connection made under loose rules serving strict ones.
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/http/connection_pool.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/posix/scripted_terminal.h"
#include "tests/support/standin_client.h"
#include "tests/support/wininet_exchange.h"

namespace velandoc::test {
namespace {

constexpr DWORD kSecureFlags = kUsualFlags | INTERNET_FLAG_SECURE;
constexpr DWORD kDate = SECURITY_FLAG_IGNORE_CERT_DATE_INVALID;
constexpr DWORD kName = SECURITY_FLAG_IGNORE_CERT_CN_INVALID;
constexpr DWORD kAuthority = SECURITY_FLAG_IGNORE_UNKNOWN_CA;

DWORD AskAbout(Exchange& exchange, DWORD error) {
  return CurrentPort<WinInet>().InternetErrorDlg(nullptr, exchange.Request(), error, 7, nullptr);
}

void AddFlags(Exchange& exchange, DWORD flags) {
  WinInet& port = CurrentPort<WinInet>();
  DWORD old = 0;
  DWORD size = sizeof(old);
  ASSERT_TRUE(
      port.InternetQueryOptionW(exchange.Request(), INTERNET_OPTION_SECURITY_FLAGS, &old, &size));
  flags |= old;
  ASSERT_TRUE(
      port.InternetSetOptionW(exchange.Request(), INTERNET_OPTION_SECURITY_FLAGS, &flags, size));
}

class WinInetTls : public testing::Test {
 protected:
  void SetUp() override {
    if (!StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN names no server";
    const char* authority = std::getenv("SSL_CERT_FILE");
    if (authority == nullptr) GTEST_SKIP() << "SSL_CERT_FILE names no certificate file";
    m_server.emplace();
    m_scope.emplace(*m_server);
    http::ConnectionPool::ForgetThread();
    m_authority.emplace("CURL_CA_BUNDLE", authority);
  }

  void TearDown() override { http::ConnectionPool::ForgetThread(); }

  StandIn& Server() { return *m_server; }
  /// What the server shows from the next handshake on; no kept connection remembers the former
  /// certificate.
  void Show(const char* certificate) {
    Server().SetCertificate(certificate);
    http::ConnectionPool::ForgetThread();
  }
  std::uint16_t Port() { return m_server->HttpsPort(); }

 private:
  std::optional<StandIn> m_server;
  std::optional<StandInScope> m_scope;
  std::optional<EnvironmentScope> m_authority;
};

TEST_F(WinInetTls, TrustsTheAuthorityOfTheEnvironment) {
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/3"), kSecureFlags);
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.ReadAll(), std::string("\0\1\2", 3));
  Exchange address("127.0.0.1", Port(), OLESTR("GET"), OLESTR("/bytes/3"), kSecureFlags);
  EXPECT_EQ(address.Send(), 0U);
}

TEST_F(WinInetTls, TellsEachProblemAndPassesItsOwn) {
  struct Case {
    const char* kind;
    DWORD error;
    DWORD flag;
  };
  for (const Case& row : {Case{"expired", ERROR_INTERNET_SEC_CERT_DATE_INVALID, kDate},
                          Case{"notyet", ERROR_INTERNET_SEC_CERT_DATE_INVALID, kDate},
                          Case{"othername", ERROR_INTERNET_SEC_CERT_CN_INVALID, kName},
                          Case{"unknownca", ERROR_INTERNET_INVALID_CA, kAuthority},
                          Case{"selfsigned", ERROR_INTERNET_INVALID_CA, kAuthority}}) {
    SCOPED_TRACE(row.kind);
    Show(row.kind);
    constexpr DWORD kAll = kDate | kName | kAuthority;
    {
      Exchange strict("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/1"), kSecureFlags);
      EXPECT_EQ(strict.Send(), row.error);
      AddFlags(strict, kAll & ~row.flag);
      EXPECT_EQ(strict.Send(), row.error);
      AddFlags(strict, row.flag);
      EXPECT_EQ(strict.Send(), 0U);
      EXPECT_EQ(strict.Status(), 200U);
    }
    {
      Exchange exact("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/1"), kSecureFlags);
      AddFlags(exact, row.flag);
      EXPECT_EQ(exact.Send(), 0U);
      EXPECT_EQ(exact.ReadAll().size(), 1U);
    }
    // The connection just made lies in the pool; a strict request does not take it.
    Exchange again("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/1"), kSecureFlags);
    EXPECT_EQ(again.Send(), row.error);
  }
}

TEST_F(WinInetTls, AsksForSeveralProblemsOneByOne) {
  Show("allwrong");
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/1"), kSecureFlags);
  ScriptedTerminal user({"y", " YES ", "y"});
  const PortScope<Terminal> scope(user);
  for (const DWORD error : {ERROR_INTERNET_SEC_CERT_DATE_INVALID,
                            ERROR_INTERNET_SEC_CERT_CN_INVALID, ERROR_INTERNET_INVALID_CA}) {
    EXPECT_EQ(exchange.Send(), error);
    EXPECT_EQ(AskAbout(exchange, error), DWORD{ERROR_SUCCESS});
  }
  EXPECT_EQ(exchange.Send(), 0U);
  ASSERT_EQ(user.shown.size(), 3U);
  EXPECT_NE(user.shown[0].find("it has expired or is not valid yet"), std::string::npos);
  EXPECT_NE(user.shown[1].find("it was issued for another name"), std::string::npos);
  EXPECT_NE(user.shown[2].find("authority that is not trusted"), std::string::npos);
  for (const char* part : {"Subject:", "Issuer:", "Valid from:", "Valid until:", "SHA-256:"}) {
    EXPECT_NE(user.shown[0].find(part), std::string::npos) << part;
  }
  // 32 bytes in hexadecimal with colons between them.
  const std::size_t digest = user.shown[0].find("SHA-256:     ") + 13;
  EXPECT_EQ(user.shown[0].find('\n', digest) - digest, 95U);
}

TEST_F(WinInetTls, DeclinesUnlessTheUserSaysYes) {
  Show("expired");
  for (const std::vector<std::string>& answers :
       {std::vector<std::string>{""}, {"n"}, {"yesterday"}, {}}) {
    Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/"), kSecureFlags);
    const DWORD error = exchange.Send();
    ScriptedTerminal user(answers);
    const PortScope<Terminal> scope(user);
    EXPECT_EQ(AskAbout(exchange, error), DWORD{ERROR_CANCELLED});
    EXPECT_EQ(exchange.Send(), ERROR_INTERNET_SEC_CERT_DATE_INVALID);
  }
}

TEST_F(WinInetTls, AsksNobodyWhereInputIsForbidden) {
  const EnvironmentScope quiet("VELANDOC_NO_INPUT", "1");
  Show("expired");
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/"), kSecureFlags);
  const DWORD error = exchange.Send();
  EXPECT_EQ(AskAbout(exchange, error), DWORD{ERROR_CANCELLED});
}

TEST_F(WinInetTls, SaysThatAClientCertificateIsWanted) {
  Show("clientcert");
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/"), kSecureFlags);
  EXPECT_EQ(exchange.Send(), ERROR_INTERNET_CLIENT_AUTH_CERT_NEEDED);
  EXPECT_EQ(AskAbout(exchange, ERROR_INTERNET_CLIENT_AUTH_CERT_NEEDED),
            ERROR_INTERNET_CLIENT_AUTH_CERT_NEEDED);
}

TEST_F(WinInetTls, SharesOneHandshake) {
  const std::uint64_t before = Server().Stats().tls;
  for (int i = 0; i < 10; ++i) {
    Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/5"), kSecureFlags);
    ASSERT_EQ(exchange.Send(), 0U);
    EXPECT_EQ(exchange.ReadAll().size(), 5U);
  }
  EXPECT_LE(Server().Stats().tls - before, 1U);
}

// libcurl closes a TLS connection with a handle of its own, which it may name to callbacks.
TEST_F(WinInetTls, AThreadsEndClosesItsConnections) {
  constexpr int kThreads = 40;
  for (int i = 0; i < kThreads; ++i) {
    std::thread([this] {
      Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/3"), kSecureFlags);
      EXPECT_EQ(exchange.Send(), 0U);
      EXPECT_EQ(exchange.ReadAll().size(), 3U);
    }).join();
  }
}

TEST_F(WinInetTls, PlainHttpOnASecurePortFails) {
  Exchange exchange("localhost", Server().HttpPort(), OLESTR("GET"), OLESTR("/"), kSecureFlags);
  EXPECT_EQ(exchange.Send(), ERROR_INTERNET_SECURITY_CHANNEL_ERROR);
}

TEST_F(WinInetTls, LeavesASecureServerForAPlainOneOnlyWhenTold) {
  Server().SetBehaviour(R"([{"match":{"tls":true,"path":"/go"},"do":{"redirect":{"status":302,
      "location":")" + Server().HttpUrl("/bytes/7") +
                        R"("}}}])");
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/go"), kSecureFlags);
  EXPECT_EQ(exchange.Send(), ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR);
  EXPECT_EQ(AskAbout(exchange, ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR),
            ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR);
  AddFlags(exchange, SECURITY_FLAG_IGNORE_REDIRECT_TO_HTTP);
  EXPECT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.ReadAll().size(), 7U);
}

TEST_F(WinInetTls, GoesFromPlainToSecureQuietly) {
  Server().SetBehaviour(R"([{"match":{"tls":false,"path":"/go"},"do":{"redirect":{"status":302,
      "location":")" + Server().HttpsUrl("/bytes/7") +
                        R"("}}}])");
  Exchange exchange("localhost", Server().HttpPort(), OLESTR("GET"), OLESTR("/go"));
  EXPECT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.ReadAll().size(), 7U);
}

TEST_F(WinInetTls, ReachesSecureServersThroughATunnel) {
  const std::string proxy = "http://127.0.0.1:" + std::to_string(Server().HttpPort());
  const EnvironmentScope environment("https_proxy", proxy.c_str());
  const EnvironmentScope none("no_proxy", nullptr);
  const EnvironmentScope noneUpper("NO_PROXY", nullptr);
  Exchange exchange("docs.example.test", 443, OLESTR("GET"), OLESTR("/bytes/9"), kSecureFlags);
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Status(), 200U);
  EXPECT_EQ(exchange.ReadAll().size(), 9U);
  const std::vector<StandInRequest> log = Server().Log();
  ASSERT_EQ(log.size(), 2U);
  EXPECT_EQ(log[0].method, "CONNECT");
  // The proxy hears nothing of what is meant for the server.
  EXPECT_EQ(log[0].head.find("Accept"), std::string::npos);
  EXPECT_EQ(log[1].target, "/bytes/9");

  Exchange expired("expired.example.test", 443, OLESTR("GET"), OLESTR("/"), kSecureFlags);
  EXPECT_EQ(expired.Send(), ERROR_INTERNET_SEC_CERT_DATE_INVALID);
}

TEST_F(WinInetTls, GivesPlainRequestsToTheProxyWhole) {
  const std::string proxy = "http://127.0.0.1:" + std::to_string(Server().HttpPort());
  const EnvironmentScope environment("http_proxy", proxy.c_str());
  const EnvironmentScope none("no_proxy", nullptr);
  const EnvironmentScope noneUpper("NO_PROXY", nullptr);
  Exchange exchange("docs.example.test", 80, OLESTR("POST"), OLESTR("/echo?a b"));
  ASSERT_EQ(exchange.Send(OLESTR("X-T: 1"), "abc"), 0U);
  EXPECT_EQ(exchange.Status(), 200U);
  const std::vector<StandInRequest> log = Server().Log();
  ASSERT_EQ(log.size(), 1U);
  EXPECT_EQ(log[0].head,
            "POST http://docs.example.test:80/echo?a%20b HTTP/1.1\r\nAccept: text/*\r\n"
            "Host: docs.example.test\r\nContent-Length: 3\r\nUser-Agent: CWinInetConnection\r\n"
            "X-T: 1\r\nConnection: Keep-Alive\r\n\r\n");
}

}  // namespace
}  // namespace velandoc::test
