#include "hdfs/response_stream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "host/velandoc_module.h"
#include "tests/support/scripted_wininet.h"
#include "tests/support/standin_client.h"
#include "tests/support/thread_error.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using testing::ScriptedWinInet;
using testing::TakeThreadError;

constexpr ULONG kUnwritten = 0xAAAAAAAA;

/// A connection whose request has been sent, as a client hands it to a stream.
std::unique_ptr<CWinInetConnection> Sent(LPCWSTR url) {
  auto connection = std::make_unique<CWinInetConnection>(url, OLESTR("GET"), false);
  EXPECT_EQ(connection->Open(nullptr, nullptr), S_OK);
  EXPECT_EQ(connection->SendWithRetry(), S_OK);
  return connection;
}

ComPtr<IStream> StreamOver(std::unique_ptr<CWinInetConnection> connection) {
  ComPtr<IStream> stream;
  EXPECT_EQ(CreateResponseStream(std::move(connection), stream.Receive()), S_OK);
  return stream;
}

/// "result count bytes" of one read.
std::string Read(IStream& stream, ULONG size) {
  std::string buffer(size, '-');
  ULONG read = kUnwritten;
  const HRESULT result = stream.Read(buffer.data(), size, &read);
  std::string name = result == S_OK ? "S_OK" : result == S_FALSE ? "S_FALSE" : "failed";
  if (name == "failed") {
    EXPECT_EQ(result, E_FAIL);
  }
  if (read == kUnwritten) return name + " unwritten";
  return name + " " + std::to_string(read) + " " + buffer.substr(0, read);
}

HRESULT Seek(IStream& stream, LONGLONG move, DWORD origin) {
  LARGE_INTEGER distance{};
  distance.QuadPart = move;
  ULARGE_INTEGER position{};
  position.QuadPart = 77;
  const HRESULT result = stream.Seek(distance, origin, &position);
  EXPECT_EQ(position.QuadPart, 77U) << "the position is never told";
  return result;
}

class ResponseStreamTest : public ::testing::Test {
 protected:
  ResponseStreamTest() {
    EXPECT_EQ(Module().GetLockCount(), 0);
    SetErrorInfo(0, nullptr);
  }
  void TearDown() override {
    EXPECT_EQ(Module().GetLockCount(), 0);
    EXPECT_FALSE(TakeThreadError().isThere) << "a stream makes no error object";
  }
  ComPtr<IStream> Open(const Answer& answer) {
    m_platform.answers.push_back(answer);
    return StreamOver(Sent(OLESTR("http://h/webhdfs/v1/f?op=OPEN")));
  }
  /// The calls from now on.
  void Forget() { m_platform.calls.clear(); }

  ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
};

TEST_F(ResponseStreamTest, AShortFileIsReadWithSFalseAndThenNothing) {
  const std::string content(100, 'x');
  const ComPtr<IStream> stream = Open({.chunks = {content}});
  Forget();
  EXPECT_EQ(Read(*stream, 4096), "S_FALSE 100 " + content);
  EXPECT_EQ(Read(*stream, 4096), "S_FALSE 0 ");
  EXPECT_THAT(m_platform.calls,
              ElementsAre("InternetReadFile(3, 4096)", "InternetReadFile(3, 4096)"));
}

TEST_F(ResponseStreamTest, AReadThatIsFilledIsSOk) {
  const ComPtr<IStream> stream = Open({.chunks = {"1234", "56", "7"}});
  EXPECT_EQ(Read(*stream, 4), "S_OK 4 1234");
  EXPECT_EQ(Read(*stream, 4), "S_FALSE 2 56") << "a part in the middle of the file";
  EXPECT_EQ(Read(*stream, 1), "S_OK 1 7");
}

TEST_F(ResponseStreamTest, AReadOfNoBytesIsSOk) {
  const ComPtr<IStream> stream = Open({.chunks = {}});
  EXPECT_EQ(Read(*stream, 0), "S_OK 0 ");
}

TEST_F(ResponseStreamTest, AFailedReadTellsItsCountToo) {
  const ComPtr<IStream> stream = Open({.chunks = {"abc"}, .readError = 12030});
  EXPECT_EQ(Read(*stream, 3), "S_OK 3 abc");
  EXPECT_EQ(Read(*stream, 3), "failed 0 ");
}

TEST_F(ResponseStreamTest, ANullCountIsAccepted) {
  const ComPtr<IStream> stream = Open({.chunks = {"abcd"}});
  char buffer[4];
  EXPECT_EQ(stream->Read(buffer, 4, nullptr), S_OK);
  EXPECT_EQ(std::string(buffer, 4), "abcd");
}

TEST_F(ResponseStreamTest, SeekToTheStartFetchesTheFileAgain) {
  const ComPtr<IStream> stream = Open({.chunks = {"first", "second"}});
  EXPECT_EQ(Read(*stream, 5), "S_OK 5 first");
  m_platform.answers.push_back({.chunks = {"first"}});
  Forget();
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_SET), S_OK);
  EXPECT_EQ(m_platform.calls[0], "InternetCloseHandle(3)");
  EXPECT_EQ(m_platform.calls[1],
            "HttpOpenRequestW(2, GET, /webhdfs/v1/f?op=OPEN, null, null, text/*, 0x400200, 0)");
  EXPECT_EQ(m_platform.CallsOf("InternetConnectW").size(), 0U) << "the connection stays";
  EXPECT_EQ(Read(*stream, 5), "S_OK 5 first");
}

TEST_F(ResponseStreamTest, SeekTakesNoPositionPointer) {
  const ComPtr<IStream> stream = Open({});
  m_platform.answers.push_back({});
  EXPECT_EQ(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr), S_OK);
}

TEST_F(ResponseStreamTest, NoOtherSeekIsServed) {
  const ComPtr<IStream> stream = Open({});
  Forget();
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_END), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_CUR), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(Seek(*stream, 1, STREAM_SEEK_SET), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(Seek(*stream, -1, STREAM_SEEK_CUR), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(Seek(*stream, LONGLONG{1} << 32, STREAM_SEEK_SET), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(Seek(*stream, 0, 3), STG_E_INVALIDFUNCTION);
  EXPECT_TRUE(m_platform.calls.empty());
}

TEST_F(ResponseStreamTest, ARewindOfAFileThatHasGoneFails) {
  const ComPtr<IStream> stream = Open({.chunks = {"abc"}});
  m_platform.answers.push_back({.status = OLESTR("404")});
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_SET), E_FAIL);
}

TEST_F(ResponseStreamTest, ARewindOverALostConnectionFailsAndSoDoReads) {
  const ComPtr<IStream> stream = Open({.chunks = {"abc"}});
  m_platform.answers.push_back({.error = 12029});
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_SET), E_FAIL);
  m_platform.failing = {"HttpOpenRequestW"};
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_SET), E_FAIL);
}

TEST_F(ResponseStreamTest, TheRestIsNotImplemented) {
  const ComPtr<IStream> stream = Open({});
  const ULARGE_INTEGER zero{};
  ULONG written = kUnwritten;
  STATSTG stat{};
  ComPtr<IStream> other;
  EXPECT_EQ(stream->Write("abc", 3, &written), E_NOTIMPL);
  EXPECT_EQ(written, kUnwritten);
  EXPECT_EQ(stream->SetSize(zero), E_NOTIMPL);
  EXPECT_EQ(stream->CopyTo(stream.Get(), zero, nullptr, nullptr), E_NOTIMPL);
  EXPECT_EQ(stream->Commit(0), E_NOTIMPL);
  EXPECT_EQ(stream->Revert(), E_NOTIMPL);
  EXPECT_EQ(stream->LockRegion(zero, zero, 0), E_NOTIMPL);
  EXPECT_EQ(stream->UnlockRegion(zero, zero, 0), E_NOTIMPL);
  EXPECT_EQ(stream->Stat(&stat, STATFLAG_NONAME), E_NOTIMPL);
  EXPECT_EQ(stream->Clone(other.Receive()), E_NOTIMPL);
}

TEST_F(ResponseStreamTest, AnswersToIUnknownAndIStreamOnly) {
  const ComPtr<IStream> stream = Open({});
  ComPtr<IUnknown> found;
  EXPECT_EQ(stream->QueryInterface(IID_IUnknown, found.ReceiveVoid()), S_OK);
  EXPECT_EQ(stream->QueryInterface(IID_IStream, found.ReceiveVoid()), S_OK);
  EXPECT_EQ(stream->QueryInterface(IID_ISequentialStream, found.ReceiveVoid()), E_NOINTERFACE);
  EXPECT_EQ(stream->QueryInterface(IID_IDispatch, found.ReceiveVoid()), E_NOINTERFACE);
}

TEST_F(ResponseStreamTest, TheLastReferenceClosesAllThreeHandlesAndUnlocksTheModule) {
  ComPtr<IStream> stream = Open({});
  EXPECT_EQ(Module().GetLockCount(), 1);
  EXPECT_EQ(m_platform.OpenHandles(), 3);
  Forget();
  stream.Reset();
  EXPECT_EQ(Module().GetLockCount(), 0);
  EXPECT_THAT(m_platform.calls, ElementsAre("InternetCloseHandle(3)", "InternetCloseHandle(2)",
                                            "InternetCloseHandle(1)"));
}

TEST_F(ResponseStreamTest, TheConnectionIsTheStreamsAlsoWhenNoStreamComesOfIt) {
  m_platform.answers.push_back({});
  std::unique_ptr<CWinInetConnection> connection = Sent(OLESTR("http://h/f"));
  EXPECT_EQ(CreateResponseStream(std::move(connection), nullptr), E_POINTER);
  EXPECT_EQ(m_platform.OpenHandles(), 0);
}

/// Over the wire.
class ResponseStreamWireTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!test::StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN is not set";
    m_server.emplace();
    m_server->Reset();
    EXPECT_EQ(Module().GetLockCount(), 0);
  }
  void TearDown() override {
    if (m_server) m_server->Reset();
  }
  ComPtr<IStream> Open(std::string_view path) {
    const std::string url = m_server->HttpUrl(path);
    return StreamOver(Sent(WideString(url.begin(), url.end()).c_str()));
  }
  static std::string ReadAll(IStream& stream) {
    std::string found;
    std::string buffer(7000, 0);
    ULONG read = 0;
    do {
      EXPECT_GE(stream.Read(buffer.data(), static_cast<ULONG>(buffer.size()), &read), S_OK);
      found.append(buffer, 0, read);
    } while (read != 0);
    return found;
  }
  std::optional<test::StandIn> m_server;
};

TEST_F(ResponseStreamWireTest, AFileIsReadToItsEndAndOnceMoreFromItsFirstByte) {
  std::string content;
  for (int i = 0; i < 20000; ++i) content += static_cast<char>(i % 251);
  const ComPtr<IStream> stream = Open("/bytes/20000");
  EXPECT_EQ(ReadAll(*stream), content);
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_SET), S_OK);
  EXPECT_EQ(Read(*stream, 3), std::string("S_OK 3 \0\1\2", 10));
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_SET), S_OK) << "in the middle of a body";
  EXPECT_EQ(ReadAll(*stream), content);
  const auto log = m_server->Log();
  ASSERT_EQ(log.size(), 3U);
  EXPECT_EQ(log[0].head, log[1].head) << "the same verb, URL and headers";
  EXPECT_EQ(log[0].head, log[2].head);
}

TEST_F(ResponseStreamWireTest, ARewindIsRefusedWhenTheFileHasGone) {
  m_server->SetBehaviour(R"([{"skip": 1, "do": {"status": 404}}])");
  const ComPtr<IStream> stream = Open("/bytes/100");
  EXPECT_EQ(ReadAll(*stream).size(), 100U);
  EXPECT_EQ(Seek(*stream, 0, STREAM_SEEK_SET), E_FAIL);
}

}  // namespace
}  // namespace velandoc
