// The client of the stand-in server, against a running one.
#include "tests/support/standin_client.h"

#include <gtest/gtest.h>

#include <string>

namespace velandoc::test {
namespace {

class StandInClientTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN is not set";
  }
};

TEST_F(StandInClientTest, LogHoldsTheBytesOfTheRequest) {
  StandIn server;
  const StandInScope scope(server);
  std::string body;
  for (int i = 0; i < 256; ++i) body += static_cast<char>(i);
  const std::string head =
      "PUT /sink?\xe9 HTTP/1.1\r\nHost: Docs.Example.Test:80\r\nContent-Length: 256\r\n"
      "Connection: close\r\n\r\n";
  const std::string answer = server.Exchange(server.HttpPort(), head + body);
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 OK\r\n")) << answer;

  const auto log = server.Log();
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0].method, "PUT");
  EXPECT_EQ(log[0].target, "/sink?\xe9");
  EXPECT_EQ(log[0].host, "docs.example.test");
  EXPECT_EQ(log[0].head, head);
  EXPECT_EQ(log[0].body, body);
  EXPECT_EQ(log[0].bodyLength, 256u);
  EXPECT_EQ(log[0].bodySha256, "");
  EXPECT_FALSE(log[0].tls);
  EXPECT_FALSE(log[0].proxy);
  server.ClearLog();
  EXPECT_TRUE(server.Log().empty());
}

TEST_F(StandInClientTest, BehaviourIsSetAddedAndCleared) {
  StandIn server;
  const StandInScope scope(server);
  const std::string request = "GET /echo HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n";
  const auto status = [&] { return server.Exchange(server.HttpPort(), request).substr(9, 3); };
  server.SetBehaviour(R"([{"times": 1, "do": {"status": 501}}])");
  server.AddBehaviour(R"({"do": {"status": 502}})");
  EXPECT_EQ(status(), "501");
  EXPECT_EQ(status(), "502");
  server.ClearBehaviour();
  EXPECT_EQ(status(), "200");
}

TEST_F(StandInClientTest, SiteIsReplacedAndBroughtBack) {
  StandIn server;
  const StandInScope scope(server);
  const auto mentions = [&](std::string_view text) {
    return server.Site().find(text) != std::string::npos;
  };
  EXPECT_TRUE(mentions("Budget 2026.xlsx"));
  server.SetCaller("john");
  EXPECT_TRUE(mentions(R"("caller":"EXAMPLE\\john")"));
  server.SetSite(R"({"caller": "ann", "users": [{"id": 1, "login": "ann", "name": "Ann"}]})");
  EXPECT_TRUE(mentions(R"("caller":"ann")"));
  EXPECT_FALSE(mentions("Budget 2026.xlsx"));
  server.ResetSite();
  EXPECT_TRUE(mentions(R"("caller":"EXAMPLE\\jane")"));
}

TEST_F(StandInClientTest, LogNamesTheOperation) {
  StandIn server;
  const StandInScope scope(server);
  const auto call = [&](const std::string& headers, const std::string& body) {
    server.Exchange(server.HttpPort(),
                    "POST / HTTP/1.1\r\nHost: a\r\nConnection: close\r\n" + headers +
                        "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
  };
  call("SOAPAction: http://schemas.microsoft.com/sharepoint/soap/GetListItems", "");
  call("Content-Type: application/x-vermeer-urlencoded", "method=open+service");
  call("X: y", "method=open+service");
  const auto log = server.Log();
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0].operation, "GetListItems");
  EXPECT_EQ(log[1].operation, "open service");
  EXPECT_EQ(log[2].operation, "");
}

TEST_F(StandInClientTest, ARefusedCommandThrowsWithTheReason) {
  StandIn server;
  const StandInScope scope(server);
  try {
    server.SetBehaviour(R"([{"do": {"statsu": 501}}])");
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("statsu"), std::string::npos) << error.what();
  }
  EXPECT_THROW(server.SetCertificate("odd"), std::runtime_error);
}

TEST_F(StandInClientTest, StatsCountConnectionsAndRequests) {
  StandIn server;
  const StandInScope scope(server);
  const StandInStats before = server.Stats();
  server.SetRecording(false);
  server.Exchange(server.HttpPort(), "GET /bytes/1 HTTP/1.0\r\n\r\n");
  const StandInStats after = server.Stats();
  EXPECT_EQ(after.connections, before.connections + 1);
  EXPECT_EQ(after.requests, before.requests + 1);
  EXPECT_TRUE(server.Log().empty());
}

TEST_F(StandInClientTest, UrlsNameThePorts) {
  const StandIn server;
  EXPECT_EQ(server.HttpUrl("/a?b"),
            "http://localhost:" + std::to_string(server.HttpPort()) + "/a?b");
  EXPECT_EQ(server.HttpsUrl(""), "https://localhost:" + std::to_string(server.HttpsPort()));
}

}  // namespace
}  // namespace velandoc::test
