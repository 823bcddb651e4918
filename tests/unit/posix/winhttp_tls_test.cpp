// Certificates against the stand-in server: each problem fails the send with its number, unless its
// own flag lets it pass; redirects between the schemes by their policy.
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "connection/winhttp_connection.h"
#include "platform/posix/http/connection_pool.h"
#include "platform/wininet_types.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/posix/scripted_terminal.h"
#include "tests/support/standin_client.h"
#include "tests/support/winhttp_exchange.h"

namespace velandoc::test {
namespace {

constexpr DWORD kDate = SECURITY_FLAG_IGNORE_CERT_DATE_INVALID;
constexpr DWORD kName = SECURITY_FLAG_IGNORE_CERT_CN_INVALID;
constexpr DWORD kAuthority = SECURITY_FLAG_IGNORE_UNKNOWN_CA;
constexpr DWORD kAll = kDate | kName | kAuthority;

class WinHttpTls : public testing::Test {
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

TEST_F(WinHttpTls, TrustsTheAuthorityOfTheEnvironment) {
  HttpExchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/3"),
                        WINHTTP_FLAG_SECURE);
  ASSERT_EQ(exchange.Run(), 0U);
  EXPECT_EQ(exchange.ReadAll(), std::string("\0\1\2", 3));
}

TEST_F(WinHttpTls, EachProblemFailsTheSendUnlessItsFlagLetsItPass) {
  struct Case {
    const char* kind;
    DWORD error;
    DWORD flag;
  };
  for (const Case& row : {Case{"expired", ERROR_WINHTTP_SECURE_CERT_DATE_INVALID, kDate},
                          Case{"notyet", ERROR_WINHTTP_SECURE_CERT_DATE_INVALID, kDate},
                          Case{"othername", ERROR_WINHTTP_SECURE_CERT_CN_INVALID, kName},
                          Case{"unknownca", ERROR_WINHTTP_SECURE_INVALID_CA, kAuthority},
                          Case{"selfsigned", ERROR_WINHTTP_SECURE_INVALID_CA, kAuthority}}) {
    SCOPED_TRACE(row.kind);
    Show(row.kind);
    {
      HttpExchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/1"),
                            WINHTTP_FLAG_SECURE);
      EXPECT_EQ(exchange.Send(), row.error);
      EXPECT_EQ(exchange.Status(), 0U);
      ASSERT_EQ(exchange.SetOption(WINHTTP_OPTION_SECURITY_FLAGS, kAll & ~row.flag), 0U);
      EXPECT_EQ(exchange.Send(), row.error);
      ASSERT_EQ(exchange.SetOption(WINHTTP_OPTION_SECURITY_FLAGS, row.flag), 0U);
      ASSERT_EQ(exchange.Run(), 0U);
      EXPECT_EQ(exchange.ReadAll().size(), 1U);
    }
    // The connection just made lies in the pool; a strict request does not take it.
    HttpExchange strict("localhost", Port(), OLESTR("GET"), OLESTR("/bytes/1"),
                        WINHTTP_FLAG_SECURE);
    EXPECT_EQ(strict.Send(), row.error);
  }
}

TEST_F(WinHttpTls, AConnectionFailsItsSendAndAsksNobody) {
  ScriptedTerminal user({"y", "y", "y"});
  const PortScope<Terminal> terminal(user);
  for (const char* kind :
       {"expired", "notyet", "othername", "unknownca", "selfsigned", "allwrong", "clientcert"}) {
    SCOPED_TRACE(kind);
    Show(kind);
    const std::string url = Server().HttpsUrl("/bytes/1");
    CWinHttpConnection connection(WideString(url.begin(), url.end()).c_str());
    // Whether a client certificate is wanted, the server tells after the handshake.
    const bool isTold = std::string(kind) != "clientcert";
    EXPECT_EQ(isTold ? connection.SendRequest() : connection.Execute(), E_FAIL);
    EXPECT_EQ(connection.m_statusCode, 0U);
    EXPECT_EQ(connection.m_lastError, 0U);
  }
  EXPECT_TRUE(user.shown.empty());
  Show("good");
  const std::string url = Server().HttpsUrl("/bytes/1");
  CWinHttpConnection connection(WideString(url.begin(), url.end()).c_str());
  EXPECT_EQ(connection.Execute(), S_OK);
  EXPECT_EQ(connection.m_statusCode, 200U);
}

TEST_F(WinHttpTls, SaysThatAClientCertificateIsWanted) {
  Show("clientcert");
  HttpExchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/"), WINHTTP_FLAG_SECURE);
  EXPECT_EQ(exchange.Run(), ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED);
}

TEST_F(WinHttpTls, PlainHttpOnASecurePortFailsTheSend) {
  HttpExchange exchange("localhost", Server().HttpPort(), OLESTR("GET"), OLESTR("/"),
                        WINHTTP_FLAG_SECURE);
  EXPECT_EQ(exchange.Send(), ERROR_WINHTTP_SECURE_CHANNEL_ERROR);
}

TEST_F(WinHttpTls, LeavesASecureServerForAPlainOneOnlyByItsPolicy) {
  Server().SetBehaviour(R"([{"match":{"tls":true,"path":"/go"},"do":{"redirect":{"status":302,
      "location":")" + Server().HttpUrl("/bytes/7") +
                        R"("}}}])");
  HttpExchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/go"), WINHTTP_FLAG_SECURE);
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Receive(), ERROR_WINHTTP_REDIRECT_FAILED);
  EXPECT_EQ(exchange.Status(), 0U);
  ASSERT_EQ(
      exchange.SetOption(WINHTTP_OPTION_REDIRECT_POLICY, WINHTTP_OPTION_REDIRECT_POLICY_NEVER), 0U);
  ASSERT_EQ(exchange.Run(), 0U);
  EXPECT_EQ(exchange.Status(), 302U);
  ASSERT_EQ(
      exchange.SetOption(WINHTTP_OPTION_REDIRECT_POLICY, WINHTTP_OPTION_REDIRECT_POLICY_ALWAYS),
      0U);
  ASSERT_EQ(exchange.Run(), 0U);
  EXPECT_EQ(exchange.ReadAll().size(), 7U);
}

TEST_F(WinHttpTls, GoesFromPlainToSecureQuietly) {
  Server().SetBehaviour(R"([{"match":{"tls":false,"path":"/go"},"do":{"redirect":{"status":302,
      "location":")" + Server().HttpsUrl("/bytes/7") +
                        R"("}}}])");
  HttpExchange exchange("localhost", Server().HttpPort(), OLESTR("GET"), OLESTR("/go"));
  ASSERT_EQ(exchange.Run(), 0U);
  EXPECT_EQ(exchange.ReadAll().size(), 7U);
  // There a bad certificate fails the answer, since the send is done.
  Show("expired");
  HttpExchange expired("localhost", Server().HttpPort(), OLESTR("GET"), OLESTR("/go"));
  ASSERT_EQ(expired.Send(), 0U);
  EXPECT_EQ(expired.Receive(), ERROR_WINHTTP_SECURE_CERT_DATE_INVALID);
}

TEST_F(WinHttpTls, ReachesSecureServersThroughATunnel) {
  const std::string proxy = "http://127.0.0.1:" + std::to_string(Server().HttpPort());
  const EnvironmentScope environment("https_proxy", proxy.c_str());
  const EnvironmentScope none("no_proxy", nullptr);
  const EnvironmentScope noneUpper("NO_PROXY", nullptr);
  HttpExchange exchange("docs.example.test", 443, OLESTR("PUT"), OLESTR("/sink"),
                        WINHTTP_FLAG_SECURE);
  ASSERT_EQ(exchange.Send("", 3), 0U);
  ASSERT_EQ(exchange.Write("abc"), 0U);
  ASSERT_EQ(exchange.Receive(), 0U);
  EXPECT_EQ(exchange.Status(), 200U);
  EXPECT_EQ(exchange.ReadAll(), "{\"bytes\":3}");
  const std::vector<StandInRequest> log = Server().Log();
  ASSERT_EQ(log.size(), 2U);
  EXPECT_EQ(log[0].method, "CONNECT");
  EXPECT_EQ(log[1].target, "/sink");

  HttpExchange expired("expired.example.test", 443, OLESTR("GET"), OLESTR("/"),
                       WINHTTP_FLAG_SECURE);
  EXPECT_EQ(expired.Send(), ERROR_WINHTTP_SECURE_CERT_DATE_INVALID);
}

}  // namespace
}  // namespace velandoc::test
