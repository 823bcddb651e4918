// The stream over WinHTTP: where it differs from the one over WinINet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "hdfs/response_stream.h"
#include "host/velandoc_module.h"
#include "tests/support/scripted_winhttp.h"
#include "tests/support/standin_client.h"

namespace velandoc {
namespace {

using ::testing::ElementsAre;
using testing::HttpAnswer;
using testing::ScriptedWinHttp;

/// A client's class. Final: it is deleted as what it is, its destructor is not virtual.
class Connection final : public CWinHttpConnection {
  using CWinHttpConnection::CWinHttpConnection;
};

/// A connection whose request has been sent, as a client hands it to a stream.
std::unique_ptr<Connection> Sent(LPCWSTR url) {
  auto connection = std::make_unique<Connection>(url);
  connection->m_keepBody = true;
  EXPECT_EQ(connection->Execute(), S_OK);
  return connection;
}

ComPtr<IStream> StreamOver(std::unique_ptr<Connection> connection) {
  ComPtr<IStream> stream;
  EXPECT_EQ(CreateResponseStream(std::move(connection), stream.Receive()), S_OK);
  return stream;
}

/// "result count bytes" of one read.
std::string Read(IStream& stream, ULONG size) {
  std::string buffer(size, '-');
  ULONG read = 0xAAAAAAAA;
  const HRESULT result = stream.Read(buffer.data(), size, &read);
  if (read > size) return "no count";
  const char* name = result == S_OK      ? "S_OK "
                     : result == S_FALSE ? "S_FALSE "
                     : result == E_FAIL  ? "E_FAIL "
                                         : "other ";
  return name + std::to_string(read) + " " + buffer.substr(0, read);
}

HRESULT SeekToStart(IStream& stream) {
  return stream.Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
}

class WinHttpResponseStreamTest : public ::testing::Test {
 protected:
  WinHttpResponseStreamTest() { EXPECT_EQ(Module().GetLockCount(), 0); }
  void TearDown() override { EXPECT_EQ(Module().GetLockCount(), 0); }
  ComPtr<IStream> Open(const HttpAnswer& answer) {
    m_platform.answers.push_back(answer);
    return StreamOver(Sent(OLESTR("http://h/webhdfs/v1/f?op=OPEN")));
  }

  ScriptedWinHttp m_platform;
  PortScope<WinHttp> m_scope{m_platform};
};

TEST_F(WinHttpResponseStreamTest, AShortFileIsReadWithSFalseAndThenNothing) {
  const std::string content(100, 'x');
  const ComPtr<IStream> stream = Open({.chunks = {content}});
  m_platform.calls.clear();
  EXPECT_EQ(Read(*stream, 4096), "S_FALSE 100 " + content);
  EXPECT_EQ(Read(*stream, 4096), "S_FALSE 0 ");
  EXPECT_EQ(m_platform.CallsOf("WinHttpQueryDataAvailable").size(), 2U);
  EXPECT_EQ(m_platform.CallsOf("WinHttpReadData").size(), 1U) << "nothing is read behind the end";
}

TEST_F(WinHttpResponseStreamTest, AReadThatIsFilledIsSOk) {
  const ComPtr<IStream> stream = Open({.chunks = {"1234", "56"}});
  EXPECT_EQ(Read(*stream, 4), "S_OK 4 1234");
  EXPECT_EQ(Read(*stream, 4), "S_FALSE 2 56");
}

TEST_F(WinHttpResponseStreamTest, ANullCountIsAccepted) {
  const ComPtr<IStream> stream = Open({.chunks = {"abcd"}});
  char buffer[4];
  EXPECT_EQ(stream->Read(buffer, 4, nullptr), S_OK);
  EXPECT_EQ(std::string(buffer, 4), "abcd");
}

TEST_F(WinHttpResponseStreamTest, AFailedQuestionIsAFailedRead) {
  const ComPtr<IStream> stream = Open({.chunks = {"abc"}, .availableError = 12030});
  EXPECT_EQ(Read(*stream, 3), "S_OK 3 abc");
  EXPECT_EQ(Read(*stream, 3), "E_FAIL 0 ");
}

TEST_F(WinHttpResponseStreamTest, AFailedReadTellsItsCountToo) {
  const ComPtr<IStream> stream = Open({.chunks = {"abc"}, .readError = 12030});
  EXPECT_EQ(Read(*stream, 3), "S_OK 3 abc");
  EXPECT_EQ(Read(*stream, 3), "E_FAIL 0 ");
}

TEST_F(WinHttpResponseStreamTest, AStreamTakesEveryStatus) {
  const ComPtr<IStream> stream = Open({.status = OLESTR("404"), .chunks = {"no such file"}});
  EXPECT_EQ(Read(*stream, 12), "S_OK 12 no such file");
}

// The request that the rewind opens is overwritten by the one that Execute opens, and never closed.
TEST_F(WinHttpResponseStreamTest, ARewindOpensTwoRequestsAndLosesTheFirst) {
  m_platform.expectedLeaks = 1;
  const ComPtr<IStream> stream = Open({.chunks = {"first", "second"}});
  EXPECT_EQ(Read(*stream, 5), "S_OK 5 first");
  m_platform.answers.push_back({.chunks = {"first"}});
  m_platform.calls.clear();
  EXPECT_EQ(SeekToStart(*stream), S_OK);
  EXPECT_EQ(m_platform.calls.front(), "WinHttpCloseHandle(3)");
  const auto opened = m_platform.CallsOf("WinHttpOpenRequest");
  ASSERT_EQ(opened.size(), 2U);
  EXPECT_EQ(opened[0], opened[1]) << "the verb, URL and accept types of the first request";
  EXPECT_TRUE(m_platform.CallsOf("WinHttpConnect").empty()) << "the connection stays";
  EXPECT_EQ(Read(*stream, 5), "S_OK 5 first");
}

TEST_F(WinHttpResponseStreamTest, ARewindOfAFileThatHasGoneIsAStreamOverTheRefusal) {
  m_platform.expectedLeaks = 1;
  const ComPtr<IStream> stream = Open({.chunks = {"abc"}});
  m_platform.answers.push_back({.status = OLESTR("404"), .chunks = {"gone"}});
  EXPECT_EQ(SeekToStart(*stream), S_OK);
  EXPECT_EQ(Read(*stream, 4), "S_OK 4 gone");
}

TEST_F(WinHttpResponseStreamTest, ARewindOverALostConnectionFails) {
  m_platform.expectedLeaks = 1;
  const ComPtr<IStream> stream = Open({.chunks = {"abc"}});
  m_platform.answers.push_back({.sendError = 12029});
  EXPECT_EQ(SeekToStart(*stream), E_FAIL);
  m_platform.failing = {"WinHttpOpenRequest"};
  EXPECT_EQ(SeekToStart(*stream), E_FAIL);
  EXPECT_EQ(m_platform.OpenRequests(), 1);
}

TEST_F(WinHttpResponseStreamTest, NoOtherSeekIsServedAndStatIsNot) {
  const ComPtr<IStream> stream = Open({});
  m_platform.calls.clear();
  LARGE_INTEGER one{};
  one.QuadPart = 1;
  STATSTG stat{};
  EXPECT_EQ(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_END, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(stream->Seek(one, STREAM_SEEK_SET, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(stream->Stat(&stat, STATFLAG_NONAME), E_NOTIMPL);
  EXPECT_EQ(stream->Write("x", 1, nullptr), E_NOTIMPL);
  EXPECT_TRUE(m_platform.calls.empty());
}

TEST_F(WinHttpResponseStreamTest, TheLastReferenceClosesTheRequestAlone) {
  ComPtr<IStream> stream = Open({});
  EXPECT_EQ(Module().GetLockCount(), 1);
  m_platform.calls.clear();
  stream.Reset();
  EXPECT_EQ(Module().GetLockCount(), 0);
  EXPECT_THAT(m_platform.calls, ElementsAre("WinHttpCloseHandle(3)"));
}

TEST(WinHttpResponseStreamWireTest, AFileIsReadToItsEndAndOnceMoreFromItsFirstByte) {
  if (!test::StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN is not set";
  EXPECT_EQ(Module().GetLockCount(), 0);
  test::StandIn server;
  const test::StandInScope scope(server);
  std::string content;
  for (int i = 0; i < 20000; ++i) content += static_cast<char>(i % 251);
  const std::string url = server.HttpUrl("/bytes/20000");
  const ComPtr<IStream> stream = StreamOver(Sent(WideString(url.begin(), url.end()).c_str()));
  for (int round = 0; round < 2; ++round) {
    std::string found;
    std::string buffer(7000, 0);
    ULONG read = 0;
    do {
      ASSERT_GE(stream->Read(buffer.data(), static_cast<ULONG>(buffer.size()), &read), S_OK);
      found.append(buffer, 0, read);
    } while (read != 0);
    EXPECT_EQ(found, content);
    if (round == 0) {
      ASSERT_EQ(SeekToStart(*stream), S_OK);
    }
  }
  const auto log = server.Log();
  ASSERT_EQ(log.size(), 2U);
  EXPECT_EQ(log[0].head, log[1].head) << "the same verb, URL and headers";
}

}  // namespace
}  // namespace velandoc
