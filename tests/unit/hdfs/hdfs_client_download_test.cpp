#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HdfsClientDownloadTest : public HdfsClientTest {
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

TEST_F(HdfsClientDownloadTest, ABodyGoesToTheNamedFile) {
  m_platform.answers = {{.chunks = {"first ", "second"}}};
  EXPECT_EQ(Download(false, OLESTR("out")), S_OK);
  EXPECT_EQ(m_saved.Text(), OLESTR("out"));
  ASSERT_NE(File(OLESTR("out")), nullptr);
  EXPECT_EQ(*File(OLESTR("out")), "first second");
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=OPEN 0x400200"));
  EXPECT_THAT(m_platform.CallsOf("InternetConnectW"),
              ElementsAre("InternetConnectW(1, h, 50070, null, null, 3, 0x200, 0)"));
  EXPECT_THAT(m_platform.CallsOf("InternetReadFile"),
              ElementsAre("InternetReadFile(3, 8192)", "InternetReadFile(3, 8192)",
                          "InternetReadFile(3, 8192)"));
  EXPECT_EQ(Error(), "200 ");
  EXPECT_EQ(OnTheThread(), "none");
}

TEST_F(HdfsClientDownloadTest, WithoutAPathTheNameOfTheFileIsUsedInTheTemporaryFolder) {
  const WideString path = WideString(MemoryFileSystem::kFolder) + kPathSeparator + OLESTR("f.txt");
  m_files.files[path] = "an older one, and longer";
  m_platform.answers = {{.chunks = {"new"}}};
  EXPECT_EQ(Download(), S_OK);
  EXPECT_EQ(m_saved.Text(), path);
  EXPECT_EQ(m_files.files[path], "new");
}

TEST_F(HdfsClientDownloadTest, ARandomNameIsTheSystems) {
  m_platform.answers = {{.chunks = {"x"}}};
  EXPECT_EQ(Download(true), S_OK);
  EXPECT_EQ(m_saved.Text(), MemoryFileSystem::kRandomName);
  EXPECT_EQ(*File(MemoryFileSystem::kRandomName), "x");
}

TEST_F(HdfsClientDownloadTest, NullPointersAreNoPathAndNoResult) {
  m_platform.answers = {{.chunks = {"x"}}};
  EXPECT_EQ(m_client->Download(VARIANT_FALSE, nullptr, nullptr), S_OK);
  EXPECT_EQ(m_files.files.size(), 1U);
}

TEST_F(HdfsClientDownloadTest, APathThatEndsInASlashOrHasNoneGivesNoName) {
  for (const LPCOLESTR path : {OLESTR("/dir/"), OLESTR("name"), OLESTR("")}) {
    m_client->put_HdfsPath(Bstr(path).Get());
    for (const bool random : {false, true}) {
      EXPECT_EQ(Download(random), E_ACCESSDENIED);
    }
    EXPECT_EQ(Preview(1), E_ACCESSDENIED);
  }
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(HdfsClientDownloadTest, ARefusedPathLeavesTheServersWordsAndNoFile) {
  const std::string json = R"({"RemoteException":{"exception":"FileNotFoundException"}})";
  m_platform.answers = {{.status = OLESTR("404"), .chunks = {json}}};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(m_saved.Get(), nullptr);
  EXPECT_EQ(Error(), "404 " + json);
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: " + json);
  EXPECT_THAT(m_platform.CallsOf("InternetReadFile"), ElementsAre("InternetReadFile(3, 32768)"));
  EXPECT_THAT(m_services.lines, IsEmpty()) << "a failed result is no exception";
}

TEST_F(HdfsClientDownloadTest, WithoutAnAnswerTheLibrarysWordsStand) {
  m_platform.answers = {{.error = 12029}};
  m_platform.dialogResults = {ERROR_CANCELLED};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(Error(), "0 cannot connect\\u000D\\u000A");
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: cannot connect\\u000D\\u000A");
}

TEST_F(HdfsClientDownloadTest, ABodyThatBreaksOffLeavesNoFile) {
  m_platform.answers = {{.chunks = {"half"}, .readError = 12030}};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(Error(), "200 Unknown connection error with server.");
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: Unknown connection error with server.");
}

TEST_F(HdfsClientDownloadTest, AFileThatCannotBeMadeIsAccessDenied) {
  m_files.failing = {"CreateFileExclusive"};
  m_files.files[OLESTR("out")] = "somebody's";
  EXPECT_EQ(Download(false, OLESTR("out")), E_ACCESSDENIED);
  EXPECT_EQ(*File(OLESTR("out")), "somebody's");
  EXPECT_EQ(Download(true), E_ACCESSDENIED);
  EXPECT_EQ(Preview(3), E_ACCESSDENIED);
  EXPECT_EQ(File(MemoryFileSystem::kRandomName), nullptr) << "made for us, and so ours to delete";
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(HdfsClientDownloadTest, WithoutATemporaryFolderThereIsNoPath) {
  for (const char* operation : {"GetTempPathW", "GetTempFileNameW"}) {
    m_files.failing = {operation};
    EXPECT_EQ(Download(true), E_ACCESSDENIED) << operation;
    EXPECT_EQ(Preview(1), E_ACCESSDENIED) << operation;
  }
  m_files.failing = {"GetTempPathW"};
  EXPECT_EQ(Download(), E_ACCESSDENIED);
  EXPECT_THAT(m_files.files, IsEmpty());
}

TEST_F(HdfsClientDownloadTest, AFullDiskLeavesNoFileAndWritesTheDebuggerLine) {
  m_services.texts[ERROR_DISK_FULL] = OLESTR("the disk is full\r\n");
  for (const std::size_t room : {0U, 3U, 5U}) {
    m_files.room = room;
    m_platform.answers = {{.chunks = {"abc", "def"}}};
    EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL) << room;
    EXPECT_THAT(m_files.files, IsEmpty());
    EXPECT_EQ(Error(), "200 ") << "the server did its part";
  }
  EXPECT_EQ(m_services.lines[0],
            "Exception in automation method [CHdfsClient::Download]: the disk is full");
  m_files.room = 2;
  EXPECT_EQ(Preview(1), E_FAIL) << "not even the mark";
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(m_services.lines.back(),
            "Exception in automation method [CHdfsClient::DownloadPreview]: the disk is full");
}

TEST_F(HdfsClientDownloadTest, AFileThatDoesNotCloseIsNotKept) {
  m_files.failing = {"CloseHandle"};
  m_platform.answers = {{.chunks = {"abc"}}, {.chunks = {"abc"}}};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
  EXPECT_EQ(Preview(2), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(m_saved.Get(), nullptr);
}

TEST_F(HdfsClientDownloadTest, PreviewOfThreeOfFourLinesLeavesOutTheThirdsEnd) {
  m_platform.answers = {{.chunks = {"one\r\ntwo\r\nthree\r\nfour\r\n"}}};
  EXPECT_EQ(Preview(3), S_OK);
  EXPECT_EQ(m_saved.Text(), MemoryFileSystem::kRandomName);
  EXPECT_EQ(*File(MemoryFileSystem::kRandomName), kMark + "one\r\ntwo\r\nthree");
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=OPEN 0x400200"));
  EXPECT_THAT(m_platform.CallsOf("InternetReadFile"),
              ElementsAre("InternetReadFile(3, 32768)", "InternetReadFile(3, 32768)"));
}

TEST_F(HdfsClientDownloadTest, PreviewOfNoLinesIsTheMarkAlone) {
  for (const std::string& content : {std::string("text\n"), std::string("\xFF\xFE\x61\0", 4),
                                     std::string("\xFE\xFF\0\x61", 4)}) {
    for (const LONG lines : {0, -1}) {
      m_platform.answers = {{.chunks = {content}}};
      EXPECT_EQ(Preview(lines), S_OK);
      EXPECT_EQ(*File(MemoryFileSystem::kRandomName), kMark);
    }
  }
}

TEST_F(HdfsClientDownloadTest, PreviewCopiesTwoBytesWhateverTheNumberOfLines) {
  for (const LONG lines : {0, 1, -5, 1000}) {
    m_platform.answers = {{.chunks = {"\r\n"}}};
    EXPECT_EQ(Preview(lines), S_OK);
    EXPECT_EQ(*File(MemoryFileSystem::kRandomName), kMark + "\r\n");
  }
}

TEST_F(HdfsClientDownloadTest, APreviewThatBreaksOffKeepsTheStatusAndIsToldInConnectionErrorOnly) {
  m_platform.answers = {{.chunks = {"one\n"}, .readError = 12030}};
  EXPECT_EQ(Preview(1000), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(Error(), "200 broke off") << "its own error, not one of closing the file";
  EXPECT_EQ(OnTheThread(), "none");
}

TEST_F(HdfsClientDownloadTest, ARefusedPreviewLeavesNoFile) {
  m_platform.answers = {{.status = OLESTR("403"), .chunks = {"no"}}};
  EXPECT_EQ(Preview(10), E_FAIL);
  EXPECT_THAT(m_files.files, IsEmpty());
  EXPECT_EQ(Error(), "403 no");
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: no");
}

TEST_F(HdfsClientDownloadTest, AHostsConnectionErrorKeepsItsCallsValues) {
  m_platform.answers = {{.status = OLESTR("404"), .chunks = {"gone"}}, {.chunks = {"x"}}};
  EXPECT_EQ(Download(false, OLESTR("out")), E_FAIL);
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
