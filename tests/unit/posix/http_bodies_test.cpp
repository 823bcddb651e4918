// The two bodies of a transfer, without libcurl.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/posix/http/download_body.h"
#include "platform/posix/http/upload_body.h"

namespace velandoc::http {
namespace {

constexpr std::string_view kPiece = "0123456789";

std::string ReadNow(DownloadBody& body, std::size_t size) {
  std::string buffer(size, '-');
  body.BeginRead(buffer.data(), size);
  buffer.resize(body.EndRead());
  return buffer;
}

TEST(DownloadBody, HoldsWhatNobodyReadsYet) {
  DownloadBody body;
  EXPECT_EQ(ReadNow(body, 4), "");
  body.Take(kPiece.data(), kPiece.size());
  EXPECT_EQ(body.Held(), 10U);
  EXPECT_EQ(ReadNow(body, 4), "0123");
  body.Take("ab", 2);
  EXPECT_EQ(body.Held(), 8U);
  EXPECT_EQ(ReadNow(body, 100), "456789ab");
  EXPECT_EQ(body.Held(), 0U);
}

TEST(DownloadBody, FillsTheReadThatWaitsAndHoldsTheRest) {
  DownloadBody body;
  body.Take("ab", 2);
  std::string buffer(7, '-');
  body.BeginRead(buffer.data(), buffer.size());
  EXPECT_FALSE(body.IsServed());
  body.Take("cd", 2);
  EXPECT_FALSE(body.IsServed());
  EXPECT_EQ(body.Held(), 0U);
  body.Take(kPiece.data(), kPiece.size());
  EXPECT_TRUE(body.IsServed());
  EXPECT_EQ(body.EndRead(), 7U);
  EXPECT_EQ(buffer, "abcd012");
  EXPECT_EQ(ReadNow(body, 100), "3456789");
}

TEST(DownloadBody, ForgetsTheBufferOfAReadThatEndedShort) {
  DownloadBody body;
  std::string buffer(4, '-');
  body.BeginRead(buffer.data(), buffer.size());
  body.Take("a", 1);
  EXPECT_EQ(body.EndRead(), 1U);
  body.Take("b", 1);
  EXPECT_EQ(buffer, "a---");
  EXPECT_EQ(ReadNow(body, 4), "b");
}

TEST(DownloadBody, IsFullWithTheLastByteOfItsLimit) {
  DownloadBody body;
  const std::string piece(DownloadBody::kFullBytes - 1, 'x');
  body.Take(piece.data(), piece.size());
  EXPECT_FALSE(body.IsFull());
  body.Take("y", 1);
  EXPECT_TRUE(body.IsFull());
  EXPECT_EQ(ReadNow(body, 1), "x");
  EXPECT_FALSE(body.IsFull());
  body.Clear();
  EXPECT_EQ(body.Held(), 0U);
}

std::string GiveNow(UploadBody& body, std::size_t size) {
  std::string buffer(size, '-');
  buffer.resize(body.Give(buffer.data(), size));
  return buffer;
}

TEST(UploadBody, GivesWhatIsGatheredAndThenWhatIsLent) {
  UploadBody body(20);
  EXPECT_FALSE(body.HasBegun());
  EXPECT_EQ(GiveNow(body, 4), "");
  EXPECT_TRUE(body.HasBegun());
  body.Gather(kPiece.data(), kPiece.size());
  EXPECT_EQ(GiveNow(body, 4), "0123");
  EXPECT_FALSE(body.IsGatheredSent());
  EXPECT_EQ(GiveNow(body, 100), "456789");
  EXPECT_TRUE(body.IsGatheredSent());
  EXPECT_FALSE(body.IsWhole());
  body.DropSent();
  body.Lend(kPiece.data(), kPiece.size());
  EXPECT_TRUE(body.IsWhole());
  EXPECT_EQ(GiveNow(body, 3), "012");
  EXPECT_FALSE(body.IsLoanSent());
  EXPECT_EQ(GiveNow(body, 100), "3456789");
  EXPECT_TRUE(body.IsLoanSent());
}

TEST(UploadBody, TakesNoMoreThanWasAnnounced) {
  UploadBody body(3);
  EXPECT_FALSE(body.HasRoomFor(4));
  EXPECT_TRUE(body.HasRoomFor(3));
  body.Gather("ab", 2);
  EXPECT_FALSE(body.HasRoomFor(2));
  EXPECT_FALSE(body.IsWhole());
  body.Gather("c", 1);
  EXPECT_TRUE(body.HasRoomFor(0));
  EXPECT_TRUE(body.IsWhole());
  const UploadBody chunked(std::nullopt);
  EXPECT_TRUE(chunked.HasRoomFor(std::size_t{1} << 40));
  EXPECT_TRUE(chunked.IsWhole());
}

TEST(UploadBody, GathersUpToItsLimit) {
  UploadBody body(std::nullopt);
  const std::string piece(UploadBody::kGatheredBytes - 1, 'x');
  body.Gather(piece.data(), piece.size());
  EXPECT_TRUE(body.CanGather(1));
  EXPECT_FALSE(body.CanGather(2));
}

// A kept connection that turns out to be closed is replaced, and the body begins anew.
TEST(UploadBody, GoesBackToItsStartWhileAllOfItIsHeld) {
  UploadBody body(30);
  EXPECT_TRUE(body.Rewind());
  body.Gather(kPiece.data(), kPiece.size());
  EXPECT_EQ(GiveNow(body, 100), kPiece);
  EXPECT_TRUE(body.Rewind());
  EXPECT_EQ(GiveNow(body, 100), kPiece);
  body.DropSent();
  EXPECT_FALSE(body.Rewind());
}

TEST(UploadBody, CannotGoBackPastALoan) {
  UploadBody body(30);
  body.Lend(kPiece.data(), kPiece.size());
  EXPECT_TRUE(body.Rewind());
  EXPECT_EQ(GiveNow(body, 1), "0");
  EXPECT_FALSE(body.Rewind());
  body.EndLoan();
  EXPECT_EQ(GiveNow(body, 1), "");
}

}  // namespace
}  // namespace velandoc::http
