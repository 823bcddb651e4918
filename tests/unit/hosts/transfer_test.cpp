// How far a transfer is, in words, and several of them at once.
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

#include "hosts/command/hdfs_exchange.h"
#include "hosts/command/transfer_pool.h"
#include "hosts/command/transfer_progress.h"

namespace velandoc {
namespace {

TEST(TransferProgress, SizesHaveAFewDigits) {
  struct Row {
    std::uint64_t bytes;
    const char* text;
  };
  constexpr Row kRows[] = {
      {0, "0 B"},         {999, "999 B"},         {1000, "1.0 kB"},
      {9949, "9.9 kB"},   {9950, "10 kB"},        {999499, "999 kB"},
      {999500, "1.0 MB"}, {10737418240, "11 GB"}, {18446744073709551615U, "18 EB"}};
  for (const Row& row : kRows) EXPECT_EQ(SizeText(row.bytes), row.text);
}

TEST(TransferProgress, TheLineTellsShareRateAndTimeLeft) {
  EXPECT_EQ(ProgressText(500, 1000, 1, "/a", 80), " 50%  500 B of 1.0 kB  500 B/s  0:01 left  /a");
  EXPECT_EQ(ProgressText(1000, 1000, 2, "/a", 80), "100%  1.0 kB of 1.0 kB  500 B/s  /a");
  // More than was expected: the file grew.
  EXPECT_EQ(ProgressText(2000, 1000, 2, "/a", 80), "100%  2.0 kB of 1.0 kB  1.0 kB/s  /a");
  EXPECT_EQ(ProgressText(500, 0, 1, "/a", 80), "500 B  500 B/s  /a");
  EXPECT_EQ(ProgressText(0, 1000, 5, "/a", 80), "  0%  0 B of 1.0 kB  /a");
  EXPECT_EQ(ProgressText(500, 1000, 0.1, "/a", 80), " 50%  500 B of 1.0 kB  /a");
  EXPECT_EQ(ProgressText(1, 7202, 1, "/a", 80), "  0%  1 B of 7.2 kB  1 B/s  2:00:01 left  /a");
  EXPECT_EQ(ProgressText(1, 400000, 1, "/a", 80), "  0%  1 B of 400 kB  1 B/s  /a");
  EXPECT_EQ(ProgressText(500, 1000, 1, "/a\x1B[1m", 80),
            " 50%  500 B of 1.0 kB  500 B/s  0:01 left  /a\\x1B[1m");
  EXPECT_EQ(ProgressText(500, 1000, 1, "/a", 44), " 50%  500 B of 1.0 kB  500 B/s  0:01 left");
  EXPECT_EQ(ProgressText(500, 1000, 1, "/a", 10), " 50%  500 ");
}

TEST(TransferPool, DoesEachOnceOnAnyNumberOfThreads) {
  for (const unsigned threads : {0U, 1U, 3U, 64U}) {
    std::vector<std::atomic<int>> done(20);
    RunOnThreads(done.size(), threads, [&done](std::size_t i) { ++done[i]; });
    for (const auto& count : done) EXPECT_EQ(count, 1);
  }
  RunOnThreads(0, 4, [](std::size_t) { FAIL(); });
}

TEST(TransferPool, CountsWhereTheCallerCounts) {
  TransferCount count;
  HdfsExchangeLog::OfThread().CountInto(&count);
  RunOnThreads(10, 4, [](std::size_t) { HdfsExchangeLog::OfThread().Write(7); });
  HdfsExchangeLog::OfThread().CountInto(nullptr);
  EXPECT_EQ(count.bytes, 70U);
}

TEST(TransferPool, RaisesAgainAndBeginsNoMore) {
  std::atomic<int> begun{0};
  const auto work = [&begun](std::size_t i) {
    ++begun;
    if (i == 2) throw std::runtime_error("two");
  };
  EXPECT_THROW(RunOnThreads(1000, 1, work), std::runtime_error);
  EXPECT_EQ(begun, 3);
  begun = 0;
  EXPECT_THROW(RunOnThreads(100000, 2, work), std::runtime_error);
  EXPECT_LT(begun, 100000);
}

}  // namespace
}  // namespace velandoc
