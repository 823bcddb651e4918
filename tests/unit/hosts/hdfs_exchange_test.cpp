#include "hosts/command/hdfs_exchange.h"

#include <gtest/gtest.h>

#include <string>

namespace velandoc {
namespace {

void* Handle(std::uintptr_t number) { return reinterpret_cast<void*>(number); }

TEST(HdfsExchangeLog, KeepsWhoAnsweredWhat) {
  HdfsExchangeLog log;
  log.Connect("nn", 9870);
  log.Open(Handle(1), "GET", OLESTR("http://nn:9870/a"), 0);
  log.Answer(Handle(1), 404, 0, OLESTR("http://nn:9870/a"));
  log.Read(Handle(1), "gone", 4);
  ASSERT_EQ(log.Exchanges().size(), 1U);
  const HdfsExchange& exchange = log.Exchanges()[0];
  EXPECT_EQ(exchange.host, "nn");
  EXPECT_EQ(exchange.port, 9870U);
  EXPECT_EQ(exchange.status, 404);
  EXPECT_EQ(exchange.answer, "gone");
  EXPECT_FALSE(exchange.isDataNode);
}

TEST(HdfsExchangeLog, FollowsARedirectToTheDataNode) {
  struct Row {
    const OLECHAR* url;
    const char* host;
    unsigned port;
  };
  constexpr Row kRows[] = {
      {OLESTR("http://dn1:9864/webhdfs/v1/a?op=OPEN"), "dn1", 9864},
      {OLESTR("http://dn1/a"), "dn1", 80},
      {OLESTR("https://dn1/a"), "dn1", 443},
      {OLESTR("http://[::1]:1/a"), "[::1]", 1},
      {OLESTR("http://[::1]/a"), "[::1]", 80},
      {OLESTR("http://nn:9870/other"), "nn", 9870},
  };
  for (const Row& row : kRows) {
    HdfsExchangeLog log;
    log.Connect("nn", 9870);
    log.Open(Handle(1), "GET", OLESTR("http://nn:9870/a"), 0);
    log.Answer(Handle(1), 0, 12029, row.url);
    const HdfsExchange& exchange = log.Exchanges()[0];
    EXPECT_TRUE(exchange.isDataNode);
    EXPECT_EQ(exchange.host, row.host);
    EXPECT_EQ(exchange.port, row.port);
    EXPECT_EQ(exchange.error, 12029U);
  }
}

TEST(HdfsExchangeLog, TakesTheSecondRequestForTheDataNode) {
  HdfsExchangeLog log;
  log.Connect("nn", 9870);
  log.Open(Handle(1), "PUT", {}, 0);
  log.Answer(Handle(1), 307, 0, {});
  log.Close(Handle(1));
  log.Connect("dn", 9864);
  log.Open(nullptr, "PUT", {}, 12005);
  ASSERT_EQ(log.Exchanges().size(), 2U);
  EXPECT_FALSE(log.Exchanges()[0].isDataNode);
  EXPECT_TRUE(log.Exchanges()[1].isDataNode);
  EXPECT_EQ(log.Exchanges()[1].host, "dn");
  EXPECT_EQ(log.Exchanges()[1].error, 12005U);
}

TEST(HdfsExchangeLog, CountsFilesAndKeepsAnswers) {
  HdfsExchangeLog log;
  TransferCount count;
  log.CountInto(&count);
  log.Open(Handle(1), "GET", {}, 0);
  log.Answer(Handle(1), 200, 0, {});
  log.Read(Handle(1), "12345", 5);
  log.Write(3);
  EXPECT_EQ(count.bytes, 8U);
  EXPECT_EQ(log.Exchanges()[0].answer, "");
  log.Open(Handle(2), "DELETE", {}, 0);
  log.Answer(Handle(2), 200, 0, {});
  const std::string large(HdfsExchange::kAnswerLimit - 1, 'x');
  log.Read(Handle(2), large.data(), large.size());
  log.Read(Handle(2), "yz", 2);
  EXPECT_EQ(log.Exchanges()[1].answer, large + "y");
  log.Read(Handle(2), "more", 4);
  EXPECT_EQ(log.Exchanges()[1].answer.size(), HdfsExchange::kAnswerLimit);
  EXPECT_EQ(count.bytes, 8U);
}

TEST(HdfsExchangeLog, ForgetsWhatWasClearedOrClosed) {
  HdfsExchangeLog log;
  log.Open(Handle(1), "GET", {}, 0);
  log.Clear();
  log.Answer(Handle(1), 200, 0, {});
  log.Fail(Handle(1), 1);
  log.Read(Handle(1), "x", 1);
  EXPECT_TRUE(log.Exchanges().empty());
  log.Open(Handle(2), "GET", {}, 0);
  log.Close(Handle(2));
  log.Fail(Handle(2), 1);
  EXPECT_EQ(log.Exchanges()[0].error, 0U);
}

TEST(HdfsExchangeLog, ReadsAStatus) {
  EXPECT_EQ(StatusNumber(OLESTR("404")), 404);
  EXPECT_EQ(StatusNumber(OLESTR("")), 0);
  EXPECT_EQ(StatusNumber(OLESTR("x")), 0);
}

}  // namespace
}  // namespace velandoc
