#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HdfsClientWinHttpDownloadTest : public HdfsClientWinHttpTest {
 protected:
  HRESULT Download(bool random = false, LPCOLESTR path = OLESTR("")) {
    m_saved = Bstr();
    return m_client->Download(random ? VARIANT_TRUE : VARIANT_FALSE, Bstr(path).Get(),
                              m_saved.Receive());
  }
  HRESULT Preview(LONG lines) {
    m_saved = Bstr();
    return m_client->DownloadPreview(lines, m_saved.Receive());
  }
  Bstr m_saved;
};

const std::string kMark = "\xEF\xBB\xBF";
const std::string kConnectError = std::string("HDFS Client Connect: ") + kUnknownError;

TEST_F(HdfsClientWinHttpDownloadTest, ABodyGoesToTheNamedFile) {
  m_platform.answers = {{.chunks = {"first ", std::string("sec\0nd", 6)}}};
  EXPECT_EQ(Download(false, OLESTR("out")), S_OK);
  EXPECT_EQ(m_saved.Text(), OLESTR("out"));
  ASSERT_NE(File(OLESTR("out")), nullptr);
  EXPECT_EQ(*File(OLESTR("out")), std::string("first sec\0nd", 12)) << "a NUL is a byte in a file";
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=OPEN 0x0"));
  EXPECT_THAT(m_platform.CallsOf("WinHttpConnect"), ElementsAre("WinHttpConnect(1, h, 50070, 0)"));
  EXPECT_THAT(m_platform.CallsOf("WinHttpReadData"),
              ElementsAre("WinHttpReadData(3, 8192)", "WinHttpReadData(3, 8192)"));
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_EQ(Error(), "200 ");
}

TEST_F(HdfsClientWinHttpDownloadTest, AMissingFileIsALocalFileWithTheServersWords) {
  const std::string json = R"({"RemoteException":{"exception":"FileNotFoundException"}})";
  m_platform.answers = {{.status = OLESTR("404"), .chunks = {json}}};
  EXPECT_EQ(Download(false, OLESTR("out")), S_OK);
  EXPECT_EQ(m_saved.Text(), OLESTR("out"));
  EXPECT_EQ(*File(OLESTR("out")), json);
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_EQ(Error(), "404 ") << "the one place that tells";
}

TEST_F(HdfsClientWinHttpDownloadTest, WithoutAPathTheNameOfTheFileIsUsedInTheTemporaryFolder) {
  const WideString path = WideString(MemoryFileSystem::kFolder) + kPathSeparator + OLESTR("f.txt");
  m_files.files[path] = "an older one, and longer";
  m_platform.answers = {{.chunks = {"new"}}};
  EXPECT_EQ(Download(), S_OK);
  EXPECT_EQ(m_saved.Text(), path);
  EXPECT_EQ(m_files.files[path], "new");
}

TEST_F(HdfsClientWinHttpDownloadTest, ARandomNameIsTheSystems) {
  m_platform.answers = {{.chunks = {"x"}}};
  EXPECT_EQ(Download(true), S_OK);
  EXPECT_EQ(m_saved.Text(), MemoryFileSystem::kRandomName);
}

TEST_F(HdfsClientWinHttpDownloadTest, NullPointersAreNoPathAndNoResult) {
  m_platform.answers = {{.chunks = {"x"}}};
  EXPECT_EQ(m_client->Download(VARIANT_FALSE, nullptr, nullptr), S_OK);
  EXPECT_EQ(m_files.files.size(), 1U);
}

TEST_F(HdfsClientWinHttpDownloadTest, APathThatEndsInASlashGivesNoName) {
  m_client->put_HdfsPath(Bstr(OLESTR("/dir/")).Get());
  EXPECT_EQ(Download(), E_ACCESSDENIED);
  EXPECT_EQ(Download(true), E_ACCESSDENIED);
  EXPECT_EQ(Preview(1), E_ACCESSDENIED);
  m_client->put_HdfsPath(Bstr(OLESTR("/dir/name")).Get());
  m_files.failing = {"CreateFileExclusive"};
  EXPECT_EQ(Download(), E_ACCESSDENIED);
  EXPECT_EQ(Preview(1), E_ACCESSDENIED);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(HdfsClientWinHttpDownloadTest, WithoutAnAnswerThereIsNoFileAndNoReason) {
  m_platform.answers = {{.sendError = 12029}};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(m_saved.Get(), nullptr);
  EXPECT_EQ(OnTheThread(), kConnectError);
  EXPECT_EQ(Error(), std::string("0 ") + kUnknownError) << "WinHTTP's own error is never known";
  EXPECT_THAT(m_services.lines, IsEmpty()) << "a failed result is no exception";
}

TEST_F(HdfsClientWinHttpDownloadTest, ABodyThatBreaksOffLeavesNoFile) {
  m_platform.answers = {{.chunks = {"half"}, .readError = 12030},
                        {.chunks = {"half"}, .availableError = 12030}};
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
    EXPECT_THAT(m_files.files, IsEmpty());
    EXPECT_EQ(OnTheThread(), kConnectError);
    EXPECT_EQ(Error(), std::string("200 ") + kUnknownError);
  }
}

/// An answer whose first read breaks off and whose next one goes through.
class BreaksOnce final : public ScriptedWinHttp {
 public:
  BOOL WinHttpReadData(HINTERNET request, LPVOID buffer, DWORD size, DWORD* read) override {
    sizes.push_back(size);
    if (sizes.size() != 1) return ScriptedWinHttp::WinHttpReadData(request, buffer, size, read);
    *read = 0;
    return FALSE;
  }
  std::vector<DWORD> sizes;
};

TEST_F(HdfsClientWinHttpDownloadTest, ARefusalThatBreaksOffIsToldInWhatOneMoreReadGives) {
  BreaksOnce platform;
  const PortScope<WinHttp> scope(platform);
  platform.answers = {{.status = OLESTR("403"), .chunks = {"caf\xE9 closed", "never read"}}};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
  EXPECT_THAT(platform.sizes, ElementsAre(8192U, 32768U));
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: caf\\u00E9 closed") << "ANSI text";
  EXPECT_EQ(Error(), "403 caf\\u00E9 closed");
}

TEST_F(HdfsClientWinHttpDownloadTest, ARefusalThatBreaksOffForGoodHasNoWords) {
  m_platform.answers = {{.status = OLESTR("403"), .availableError = 12030}};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: ");
  EXPECT_EQ(Error(), "403 ");
}

TEST_F(HdfsClientWinHttpDownloadTest, AFullDiskLeavesNoFileAndWritesTheDebuggerLine) {
  m_services.texts[ERROR_DISK_FULL] = OLESTR("the disk is full\r\n");
  m_files.room = 3;
  m_platform.answers = {{.chunks = {"abc", "def"}}};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(Error(), "200 ") << "the server did its part";
  EXPECT_EQ(Preview(1), E_FAIL) << "not even the mark";
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_THAT(m_services.lines,
              ElementsAre("Exception in automation method [CHdfsClientWinHttp::Download]: the disk "
                          "is full",
                          "Exception in automation method [CHdfsClientWinHttp::DownloadPreview]: "
                          "the disk is full"));
}

TEST_F(HdfsClientWinHttpDownloadTest, PreviewOfThreeOfFourLinesLeavesOutTheThirdsEnd) {
  m_platform.answers = {{.chunks = {"one\r\ntwo\r\nthree\r\nfour\r\n"}}};
  EXPECT_EQ(Preview(3), S_OK);
  EXPECT_EQ(m_saved.Text(), MemoryFileSystem::kRandomName);
  EXPECT_EQ(*File(MemoryFileSystem::kRandomName), kMark + "one\r\ntwo\r\nthree");
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=OPEN 0x0"));
  EXPECT_THAT(m_platform.CallsOf("WinHttpReadData"), ElementsAre("WinHttpReadData(3, 32768)"));
  EXPECT_EQ(m_platform.CallsOf("WinHttpQueryDataAvailable").size(), 2U)
      << "read on behind the last line";
}

TEST_F(HdfsClientWinHttpDownloadTest, PreviewOfNoLinesIsTheMarkAlone) {
  for (const std::string& content : {std::string("text\n"), std::string("\xFF\xFE\x61\0", 4)}) {
    for (const LONG lines : {0, -1}) {
      m_platform.answers = {{.chunks = {content}}};
      EXPECT_EQ(Preview(lines), S_OK);
      EXPECT_EQ(*File(MemoryFileSystem::kRandomName), kMark);
    }
  }
}

TEST_F(HdfsClientWinHttpDownloadTest, PreviewCopiesTwoBytesAndNoneWhateverTheNumberOfLines) {
  for (const LONG lines : {0, 1, 1000}) {
    m_platform.answers = {{.chunks = {"\r\n"}}, {}};
    EXPECT_EQ(Preview(lines), S_OK);
    EXPECT_EQ(*File(MemoryFileSystem::kRandomName), kMark + "\r\n");
    EXPECT_EQ(Preview(lines), S_OK);
    EXPECT_EQ(*File(MemoryFileSystem::kRandomName), kMark);
  }
}

TEST_F(HdfsClientWinHttpDownloadTest, AnyStatusIsPreviewed) {
  m_platform.answers = {{.status = OLESTR("404"), .chunks = {"gone\nfor good"}}};
  EXPECT_EQ(Preview(1), S_OK);
  EXPECT_EQ(*File(MemoryFileSystem::kRandomName), kMark + "gone");
  EXPECT_EQ(Error(), "404 ");
}

TEST_F(HdfsClientWinHttpDownloadTest, APreviewWithoutAnAnswerIsARequestsFailure) {
  m_platform.answers = {{.receiveError = 12030}};
  EXPECT_EQ(Preview(1), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(OnTheThread(), kConnectError);
}

TEST_F(HdfsClientWinHttpDownloadTest, APreviewThatBreaksOffKeepsTheStatusAndIsToldInOnePlaceOnly) {
  for (const HttpAnswer& answer : {HttpAnswer{.chunks = {"one\n"}, .readError = 12030},
                                   HttpAnswer{.chunks = {"one\n"}, .availableError = 12030},
                                   HttpAnswer{.chunks = {}, .availableError = 12030}}) {
    m_platform.answers = {answer};
    EXPECT_EQ(Preview(1000), E_FAIL);
    EXPECT_THAT(m_files.files, IsEmpty());
    EXPECT_EQ(OnTheThread(), "none");
    EXPECT_EQ(Error(), "200 broke off") << "here WinHTTP's error is known";
  }
}

TEST_F(HdfsClientWinHttpDownloadTest, AStreamTakesAnyStatusAndOutlivesItsClient) {
  m_platform.answers = {{.status = OLESTR("500"), .chunks = {"oops"}}};
  ComPtr<IStream> stream;
  ASSERT_EQ(m_client->Stream(stream.Receive()), S_OK);
  EXPECT_EQ(Error(), "500 ");
  EXPECT_THAT(m_platform.CallsOf("WinHttpReadData"), IsEmpty());
  m_client.Reset();
  char buffer[10];
  ULONG read = 0;
  EXPECT_EQ(stream->Read(buffer, 10, &read), S_FALSE);
  EXPECT_EQ(std::string(buffer, read), "oops");
  stream.Reset();
}

TEST_F(HdfsClientWinHttpDownloadTest, AStreamWithoutAnAnswerIsNone) {
  m_platform.answers = {{.sendError = 12029}};
  ComPtr<IStream> stream;
  EXPECT_EQ(m_client->Stream(stream.Receive()), E_FAIL);
  EXPECT_FALSE(stream);
  EXPECT_EQ(OnTheThread(), kConnectError);
  EXPECT_EQ(m_client->Stream(nullptr), E_POINTER);
}

TEST_F(HdfsClientWinHttpDownloadTest, AStreamsRewindLeavesTheBodyUnreadToo) {
  m_platform.expectedLeaks = 1;
  m_platform.answers = {{.chunks = {"abc"}}, {.chunks = {"abc"}}};
  ComPtr<IStream> stream;
  ASSERT_EQ(m_client->Stream(stream.Receive()), S_OK);
  char buffer[3];
  EXPECT_EQ(stream->Read(buffer, 3, nullptr), S_OK);
  EXPECT_EQ(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr), S_OK);
  EXPECT_EQ(stream->Read(buffer, 3, nullptr), S_OK);
  EXPECT_EQ(std::string(buffer, 3), "abc");
}

TEST_F(HdfsClientWinHttpDownloadTest, TextIsAnsiAndLosesWhatStandsBehindANulInItsChunk) {
  m_platform.answers = {{.chunks = {"caf\xC3", std::string("\xA9\0lost", 6), " on"}}};
  EXPECT_EQ(GetText(), "caf\\u00C3\\u00A9 on");
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=OPEN 0x0"));
}

TEST_F(HdfsClientWinHttpDownloadTest, TextOfARefusalIsTheText) {
  m_platform.answers = {{.status = OLESTR("404"), .chunks = {"gone"}}};
  EXPECT_EQ(GetText(), "gone");
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_EQ(Error(), "404 ");
}

TEST_F(HdfsClientWinHttpDownloadTest, TextWithoutAnAnswerIsEmptyWithSOkAndAnErrorObject) {
  m_platform.answers = {{.sendError = 12029}};
  EXPECT_EQ(GetText(), "");
  EXPECT_EQ(OnTheThread(), kConnectError) << "in spite of S_OK";
  EXPECT_EQ(Error(), std::string("0 ") + kUnknownError);
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(HdfsClientWinHttpDownloadTest, TextWithNoServerIsEmptyWithSOk) {
  m_client = NewClient();
  EXPECT_EQ(GetText(), "");
  EXPECT_THAT(m_platform.CallsOf("WinHttpConnect"), ElementsAre("WinHttpConnect(1, , 0, 0)"));
  EXPECT_EQ(Error(), std::string("0 ") + kUnknownError);
}

TEST_F(HdfsClientWinHttpDownloadTest, TextThatBreaksOffIsWhatCame) {
  m_platform.answers = {{.chunks = {"half"}, .readError = 12030}};
  EXPECT_EQ(GetText(), "half");
  EXPECT_EQ(m_client->GetText(nullptr), E_POINTER);
}

TEST_F(HdfsClientWinHttpDownloadTest, AHostsConnectionErrorKeepsItsCallsValues) {
  m_platform.answers = {{.status = OLESTR("404")}, {.chunks = {"x"}}};
  EXPECT_EQ(Download(false, OLESTR("out")), S_OK);
  ComPtr<IConnectionError> kept;
  m_client->get_ConnectionError(kept.Receive());
  EXPECT_EQ(Download(false, OLESTR("out")), S_OK);
  LONG code = 0;
  kept->get_HttpCode(&code);
  EXPECT_EQ(code, 404);
  EXPECT_EQ(Error(), "200 ");
}

}  // namespace
}  // namespace velandoc::testing
