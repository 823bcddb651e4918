// Logins against the stand-in server, which verifies Basic, Digest and NTLM: what an owner gives
// goes along from the first request on, and nobody is asked.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "connection/winhttp_connection.h"
#include "platform/posix/http/connection_pool.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/posix/scripted_terminal.h"
#include "tests/support/scripted_peer.h"
#include "tests/support/scripted_stream.h"
#include "tests/support/standin_client.h"
#include "tests/support/winhttp_exchange.h"

namespace velandoc::test {
namespace {

using velandoc::testing::ScriptedStream;

struct Scheme {
  const char* asked;
  DWORD given;
};

constexpr Scheme kSchemes[] = {
    {R"("basic")", WINHTTP_AUTH_SCHEME_BASIC},
    {R"("digest")", WINHTTP_AUTH_SCHEME_DIGEST},
    {R"("ntlm")", WINHTTP_AUTH_SCHEME_NTLM},
    {R"(["negotiate","ntlm"])", WINHTTP_AUTH_SCHEME_NEGOTIATE},
    {R"(["negotiate","basic"])", WINHTTP_AUTH_SCHEME_BASIC},
};

class WinHttpLogin : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN names no server";
    m_server.emplace();
    m_scope.emplace(*m_server);
    http::ConnectionPool::ForgetThread();
  }
  void TearDown() override { http::ConnectionPool::ForgetThread(); }

  StandIn& Server() { return *m_server; }
  std::uint16_t Port() { return m_server->HttpPort(); }
  WideString Url(const std::string& path) {
    const std::string url = Server().HttpUrl(path);
    return {url.begin(), url.end()};
  }
  void Demand(const std::string& scheme, bool ofProxy = false) {
    std::string rule = R"([{"do":{"auth":{"scheme":)";
    rule += scheme;
    rule += R"(,"user":"anna","password":"secret","realm":"stand-in","proxy":)";
    rule += ofProxy ? "true" : "false";
    rule += "}}}]";
    Server().SetBehaviour(rule);
    http::ConnectionPool::ForgetThread();
  }

 private:
  EnvironmentScope m_noTicket{"KRB5CCNAME", "/nonexistent"};
  EnvironmentScope m_noProxy{"no_proxy", nullptr};
  EnvironmentScope m_noProxyUpper{"NO_PROXY", nullptr};
  std::optional<StandIn> m_server;
  std::optional<StandInScope> m_scope;
};

TEST_F(WinHttpLogin, AConnectionGivesWhatItsOwnerSet) {
  for (const Scheme& scheme : kSchemes) {
    SCOPED_TRACE(scheme.asked);
    Demand(scheme.asked);
    CWinHttpConnection connection(Url("/bytes/5").c_str());
    connection.m_authScheme = scheme.given;
    connection.m_userName = OLESTR("anna");
    connection.m_password = OLESTR("secret");
    EXPECT_EQ(connection.Execute(), S_OK);
    EXPECT_EQ(connection.m_statusCode, 200U);
  }
}

TEST_F(WinHttpLogin, AStreamIsSentUnderEachScheme) {
  for (const Scheme& scheme : kSchemes) {
    for (const std::size_t size : {0U, 10U, 200000U}) {
      SCOPED_TRACE(scheme.asked);
      SCOPED_TRACE(size);
      Demand(scheme.asked);
      ScriptedStream stream(std::string(size, 's'));
      CWinHttpConnection connection(Url("/sink").c_str());
      connection.m_verb = OLESTR("PUT");
      connection.m_authScheme = scheme.given;
      connection.m_userName = OLESTR("anna");
      connection.m_password = OLESTR("secret");
      EXPECT_EQ(connection.SendStream(&stream), S_OK);
      EXPECT_EQ(connection.m_statusCode, 200U);
      EXPECT_EQ(connection.m_responseText, "{\"bytes\":" + std::to_string(size) + "}");
    }
  }
}

TEST_F(WinHttpLogin, WrongWordsAreA401) {
  for (const Scheme& scheme : kSchemes) {
    SCOPED_TRACE(scheme.asked);
    Demand(scheme.asked);
    CWinHttpConnection connection(Url("/echo").c_str());
    connection.m_authScheme = scheme.given;
    connection.m_userName = OLESTR("anna");
    connection.m_password = OLESTR("guess");
    EXPECT_EQ(connection.Execute(), S_OK);
    EXPECT_EQ(connection.m_statusCode, 401U);
  }
}

TEST_F(WinHttpLogin, WithoutCredentialsA401IsAnAnswerAndNobodyIsAsked) {
  ScriptedTerminal user({"anna", "secret"});
  const PortScope<Terminal> terminal(user);
  for (const Scheme& scheme : kSchemes) {
    SCOPED_TRACE(scheme.asked);
    Demand(scheme.asked);
    CWinHttpConnection connection(Url("/echo").c_str());
    EXPECT_EQ(connection.Execute(), S_OK);
    EXPECT_EQ(connection.m_statusCode, 401U);
  }
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(WinHttpLogin, CredentialsServeTheirRequestOnly) {
  Demand(R"("basic")");
  {
    HttpExchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/echo"));
    ASSERT_EQ(exchange.SetCredentials(WINHTTP_AUTH_SCHEME_BASIC, OLESTR("anna"), OLESTR("secret")),
              0U);
    ASSERT_EQ(exchange.Run(), 0U);
    EXPECT_EQ(exchange.Status(), 200U);
  }
  HttpExchange later("localhost", Port(), OLESTR("GET"), OLESTR("/echo"));
  ASSERT_EQ(later.Run(), 0U);
  EXPECT_EQ(later.Status(), 401U);
  // The usual way of WinHTTP: the same handle again, with what the server asks for.
  ASSERT_EQ(later.SetCredentials(WINHTTP_AUTH_SCHEME_BASIC, OLESTR("anna"), OLESTR("secret")), 0U);
  ASSERT_EQ(later.Run(), 0U);
  EXPECT_EQ(later.Status(), 200U);
}

TEST_F(WinHttpLogin, AnswersTheProxyToo) {
  const std::string proxy = "http://127.0.0.1:" + std::to_string(Port());
  const EnvironmentScope environment("http_proxy", proxy.c_str());
  const EnvironmentScope environmentSecure("https_proxy", proxy.c_str());
  for (const Scheme& scheme : kSchemes) {
    for (const bool secure : {false, true}) {
      SCOPED_TRACE(std::string(scheme.asked) + (secure ? " https" : " http"));
      const char* authority = std::getenv("SSL_CERT_FILE");
      if (secure && authority == nullptr) continue;
      const EnvironmentScope trusted("CURL_CA_BUNDLE", secure ? authority : nullptr);
      Demand(scheme.asked, true);
      HttpExchange exchange("docs.example.test", secure ? 443 : 80, OLESTR("GET"),
                            OLESTR("/bytes/5"), secure ? WINHTTP_FLAG_SECURE : 0);
      ASSERT_EQ(exchange.Run(), 0U);
      EXPECT_EQ(exchange.Status(), 407U);
      ASSERT_EQ(exchange.SetCredentials(scheme.given, OLESTR("anna"), OLESTR("secret"),
                                        WINHTTP_AUTH_TARGET_PROXY),
                0U);
      ASSERT_EQ(exchange.Run(), 0U);
      EXPECT_EQ(exchange.Status(), 200U);
      EXPECT_EQ(exchange.ReadAll().size(), 5U);
    }
  }
}

TEST_F(WinHttpLogin, GivesNoLoginToAnotherServer) {
  Server().SetBehaviour(R"([{"match":{"path":"/go"},"do":{"redirect":{"status":302,
      "location":"http://127.0.0.1:)" +
                        std::to_string(Port()) + R"(/echo"}}}])");
  HttpExchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/go"));
  ASSERT_EQ(exchange.SetCredentials(WINHTTP_AUTH_SCHEME_BASIC, OLESTR("anna"), OLESTR("secret")),
            0U);
  ASSERT_EQ(exchange.Run(), 0U);
  const std::vector<StandInRequest> log = Server().Log();
  ASSERT_EQ(log.size(), 2U);
  EXPECT_NE(log[0].head.find("Authorization: Basic"), std::string::npos);
  EXPECT_EQ(log[1].head.find("Authorization"), std::string::npos);
}

/// How many requests a server that offers Negotiate gets when the user may hold a ticket.
std::size_t RequestsWithTicket(const char* host, DWORD policy, bool streamed = false,
                               DWORD* error = nullptr) {
  char path[] = "/tmp/velandoc-ticket-XXXXXX";
  const int file = mkstemp(path);
  EXPECT_GE(file, 0);
  close(file);
  const EnvironmentScope ticket("KRB5CCNAME", path);
  ScriptedPeer peer(Answering(Answer("401 Who", "WWW-Authenticate: Negotiate\r\n", "")));
  HttpExchange exchange(host, peer.Port(), OLESTR("PUT"), OLESTR("/"));
  EXPECT_EQ(exchange.SetOption(WINHTTP_OPTION_AUTOLOGON_POLICY, policy), 0U);
  EXPECT_EQ(exchange.Send(streamed ? "a" : "", streamed ? 2 : 0), 0U);
  if (streamed) {
    EXPECT_EQ(exchange.Write("b"), 0U);
  }
  const DWORD received = exchange.Receive();
  if (error != nullptr) {
    *error = received;
  } else {
    EXPECT_EQ(received, 0U);
    EXPECT_EQ(exchange.Status(), 401U);
  }
  unlink(path);
  return peer.Requests().size();
}

TEST(WinHttpTicket, IsTriedAsFarAsThePolicyAllows) {
  // The file holds no ticket, so the second request is without an Authorization and refused again.
  EXPECT_EQ(RequestsWithTicket("127.0.0.1", WINHTTP_AUTOLOGON_SECURITY_LEVEL_LOW), 2U);
  EXPECT_EQ(RequestsWithTicket("127.0.0.1", WINHTTP_AUTOLOGON_SECURITY_LEVEL_MEDIUM), 1U);
  EXPECT_EQ(RequestsWithTicket("localhost", WINHTTP_AUTOLOGON_SECURITY_LEVEL_MEDIUM), 2U);
  EXPECT_EQ(RequestsWithTicket("localhost", WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH), 1U);
}

TEST(WinHttpTicket, NeedsAStreamedBodyAgain) {
  DWORD error = 0;
  EXPECT_EQ(RequestsWithTicket("localhost", WINHTTP_AUTOLOGON_SECURITY_LEVEL_LOW, true, &error),
            1U);
  EXPECT_EQ(error, ERROR_WINHTTP_RESEND_REQUEST);
}

}  // namespace
}  // namespace velandoc::test
