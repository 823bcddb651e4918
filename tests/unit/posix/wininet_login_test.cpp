// Logins against the stand-in server, which verifies Basic, Digest and NTLM: where they come from,
// how long they serve, what the loop gets back.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include "platform/posix/http/connection_pool.h"
#include "platform/posix/wininet/credentials.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/posix/scripted_terminal.h"
#include "tests/support/standin_client.h"
#include "tests/support/wininet_exchange.h"

namespace velandoc::test {
namespace {

DWORD AskAboutAnswer(Exchange& exchange) {
  return CurrentPort<WinInet>().InternetErrorDlg(nullptr, exchange.Request(), 0, 7, nullptr);
}

class WinInetLogin : public testing::Test {
 protected:
  void SetUp() override {
    if (!StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN names no server";
    m_server.emplace();
    m_scope.emplace(*m_server);
    wininet::CredentialCache::ForgetAll();
    http::ConnectionPool::ForgetThread();
  }
  void TearDown() override {
    wininet::CredentialCache::ForgetAll();
    http::ConnectionPool::ForgetThread();
  }

  StandIn& Server() { return *m_server; }
  std::uint16_t Port() { return m_server->HttpPort(); }
  void Demand(const std::string& scheme, bool ofProxy = false) {
    std::string rule = R"([{"do":{"auth":{"scheme":)";
    rule += scheme;
    rule += R"(,"user":"anna","password":"secret","realm":"stand-in","proxy":)";
    rule += ofProxy ? "true" : "false";
    rule += "}}}]";
    Server().SetBehaviour(rule);
  }

 private:
  EnvironmentScope m_noFile{"NETRC", "/nonexistent"};
  EnvironmentScope m_noTicket{"KRB5CCNAME", "/nonexistent"};
  EnvironmentScope m_noProxy{"no_proxy", nullptr};
  EnvironmentScope m_noProxyUpper{"NO_PROXY", nullptr};
  std::optional<StandIn> m_server;
  std::optional<StandInScope> m_scope;
};

TEST_F(WinInetLogin, AnswersEachSchemeWithWhatTheUserTypes) {
  for (const char* scheme : {R"("basic")", R"("digest")", R"("ntlm")", R"(["negotiate","ntlm"])",
                             R"(["basic","digest"])", R"(["negotiate","basic"])"}) {
    SCOPED_TRACE(scheme);
    wininet::CredentialCache::ForgetAll();
    http::ConnectionPool::ForgetThread();
    Demand(scheme);
    ScriptedTerminal user({"anna", "secret"});
    const PortScope<Terminal> terminal(user);
    {
      Exchange exchange("localhost", Port(), OLESTR("POST"), OLESTR("/echo?q"));
      ASSERT_EQ(exchange.Send(OLESTR("X: 1"), "the body"), 0U);
      ASSERT_EQ(exchange.Status(), 401U);
      ASSERT_EQ(AskAboutAnswer(exchange), ERROR_INTERNET_FORCE_RETRY);
      ASSERT_EQ(exchange.Send(OLESTR("X: 1"), "the body"), 0U);
      EXPECT_EQ(exchange.Status(), 200U);
      EXPECT_EQ(AskAboutAnswer(exchange), DWORD{ERROR_SUCCESS});
      EXPECT_NE(exchange.ReadAll().find("the body"), std::string::npos);
    }
    EXPECT_EQ(user.wasSecret, (std::vector<bool>{false, true}));
    // A later request, from new handles, needs no asking.
    Exchange later("localhost", Port(), OLESTR("POST"), OLESTR("/echo"));
    ASSERT_EQ(later.Send(OLESTR(""), "again"), 0U);
    EXPECT_EQ(later.Status(), 200U);
    EXPECT_EQ(user.shown.size(), 2U);
    // Nor does a streamed body.
    Exchange stream("localhost", Port(), OLESTR("PUT"), OLESTR("/sink"));
    ASSERT_EQ(stream.Begin(200000), 0U);
    ASSERT_EQ(stream.Write(std::string(200000, 's')), 0U);
    ASSERT_EQ(stream.End(), 0U);
    EXPECT_EQ(stream.Status(), 200U);
    EXPECT_EQ(stream.ReadAll(), "{\"bytes\":200000}");
  }
}

TEST_F(WinInetLogin, ShowsServerAndRealm) {
  Demand(R"("basic")");
  ScriptedTerminal user({""});
  const PortScope<Terminal> terminal(user);
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/echo"));
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(AskAboutAnswer(exchange), DWORD{ERROR_CANCELLED});
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0],
            "The server localhost (stand-in) asks for a user name and a password.\n"
            "User name (none to give up): ");
}

TEST_F(WinInetLogin, ForgetsWhatWasRefusedAndAsksAgain) {
  Demand(R"("basic")");
  ScriptedTerminal user({"anna", "wrong", "anna", "secret"});
  const PortScope<Terminal> terminal(user);
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/echo"));
  for (int attempt = 0; attempt < 2; ++attempt) {
    ASSERT_EQ(exchange.Send(), 0U);
    ASSERT_EQ(exchange.Status(), 401U);
    ASSERT_EQ(AskAboutAnswer(exchange), ERROR_INTERNET_FORCE_RETRY);
  }
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Status(), 200U);
}

TEST_F(WinInetLogin, TakesTheNetrcBeforeItAsks) {
  char path[] = "/tmp/velandoc-netrc-XXXXXX";
  const int file = mkstemp(path);
  ASSERT_GE(file, 0);
  close(file);
  std::ofstream(path) << "machine localhost login anna password secret\n";
  const EnvironmentScope netrc("NETRC", path);
  Demand(R"("digest")");
  ScriptedTerminal user({});
  const PortScope<Terminal> terminal(user);
  {
    Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/echo"));
    ASSERT_EQ(exchange.Send(), 0U);
    ASSERT_EQ(AskAboutAnswer(exchange), ERROR_INTERNET_FORCE_RETRY);
    ASSERT_EQ(exchange.Send(), 0U);
    EXPECT_EQ(exchange.Status(), 200U);
  }
  wininet::CredentialCache::ForgetAll();
  // A file with the wrong password is tried once; then the user is asked.
  std::ofstream(path) << "machine localhost login anna password old\n";
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/echo"));
  ASSERT_EQ(exchange.Send(), 0U);
  ASSERT_EQ(AskAboutAnswer(exchange), ERROR_INTERNET_FORCE_RETRY);
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Status(), 401U);
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(AskAboutAnswer(exchange), DWORD{ERROR_CANCELLED});
  EXPECT_EQ(user.shown.size(), 1U);
  unlink(path);
}

TEST_F(WinInetLogin, NobodyToAskLeavesTheAnswerAsItIs) {
  const EnvironmentScope quiet("VELANDOC_NO_INPUT", "1");
  Demand(R"(["negotiate","ntlm","basic"])");
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/echo"));
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(AskAboutAnswer(exchange), DWORD{ERROR_SUCCESS});
  EXPECT_EQ(exchange.Status(), 401U);
}

TEST_F(WinInetLogin, ATicketIsTriedOnceAndNoLongerThanThat) {
  char path[] = "/tmp/velandoc-ticket-XXXXXX";
  const int file = mkstemp(path);
  ASSERT_GE(file, 0);
  close(file);
  const EnvironmentScope ticket("KRB5CCNAME", path);
  Demand(R"(["negotiate","basic"])");
  ScriptedTerminal user({"anna", "secret"});
  const PortScope<Terminal> terminal(user);
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/echo"));
  ASSERT_EQ(exchange.Send(), 0U);
  ASSERT_EQ(AskAboutAnswer(exchange), ERROR_INTERNET_FORCE_RETRY);
  EXPECT_TRUE(user.shown.empty());
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Status(), 401U);
  ASSERT_EQ(AskAboutAnswer(exchange), ERROR_INTERNET_FORCE_RETRY);
  ASSERT_EQ(exchange.Send(), 0U);
  EXPECT_EQ(exchange.Status(), 200U);
  unlink(path);
}

TEST_F(WinInetLogin, AnswersTheProxyToo) {
  const std::string proxy = "http://127.0.0.1:" + std::to_string(Port());
  const EnvironmentScope environment("http_proxy", proxy.c_str());
  const EnvironmentScope environmentSecure("https_proxy", proxy.c_str());
  for (const char* scheme : {R"("basic")", R"("digest")", R"("ntlm")"}) {
    for (const bool secure : {false, true}) {
      SCOPED_TRACE(std::string(scheme) + (secure ? " https" : " http"));
      const char* authority = std::getenv("SSL_CERT_FILE");
      if (secure && authority == nullptr) continue;
      const EnvironmentScope trusted("CURL_CA_BUNDLE", secure ? authority : nullptr);
      wininet::CredentialCache::ForgetAll();
      http::ConnectionPool::ForgetThread();
      Demand(scheme, true);
      ScriptedTerminal user({"anna", "secret"});
      const PortScope<Terminal> terminal(user);
      Exchange exchange("docs.example.test", secure ? 443 : 80, OLESTR("GET"), OLESTR("/bytes/5"),
                        secure ? kUsualFlags | INTERNET_FLAG_SECURE : kUsualFlags);
      ASSERT_EQ(exchange.Send(), 0U);
      ASSERT_EQ(exchange.Status(), 407U);
      ASSERT_EQ(AskAboutAnswer(exchange), ERROR_INTERNET_FORCE_RETRY);
      EXPECT_EQ(user.shown[0].substr(0, 19), "The proxy 127.0.0.1");
      ASSERT_EQ(exchange.Send(), 0U);
      EXPECT_EQ(exchange.Status(), 200U);
      EXPECT_EQ(exchange.ReadAll().size(), 5U);
    }
  }
}

TEST_F(WinInetLogin, GivesNoLoginToAnotherServer) {
  wininet::CredentialCache::Store(
      {false, {false, "localhost", Port()}, "stand-in", {1 /* Basic */, "anna", "secret"}});
  Server().SetBehaviour(R"([{"match":{"path":"/go"},"do":{"redirect":{"status":302,
      "location":"http://127.0.0.1:)" +
                        std::to_string(Port()) + R"(/echo"}}}])");
  Exchange exchange("localhost", Port(), OLESTR("GET"), OLESTR("/go"));
  ASSERT_EQ(exchange.Send(), 0U);
  const std::vector<StandInRequest> log = Server().Log();
  ASSERT_EQ(log.size(), 2U);
  EXPECT_NE(log[0].head.find("Authorization: Basic"), std::string::npos);
  EXPECT_EQ(log[1].head.find("Authorization"), std::string::npos);
}

}  // namespace
}  // namespace velandoc::test
