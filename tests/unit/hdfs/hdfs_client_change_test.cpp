#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using HdfsClientChangeTest = HdfsClientTest;

constexpr VARIANT_BOOL kUnwritten = 77;

TEST_F(HdfsClientChangeTest, DeleteSaysHowDeepAndStaysTheOperation) {
  m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  m_platform.answers = {{.chunks = {R"({"boolean":true})"}}, {.chunks = {R"({"boolean":true})"}}};
  VARIANT_BOOL success = kUnwritten;
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(m_client->Delete(VARIANT_TRUE, nullptr), S_OK);
  EXPECT_THAT(Requests(),
              ElementsAre("DELETE /webhdfs/v1/d/f.txt?op=DELETE&user.name=bob&recursive=false "
                          "0x400200",
                          "DELETE /webhdfs/v1/d/f.txt?op=DELETE&user.name=bob&recursive=true "
                          "0x400200"));
  EXPECT_EQ(m_platform.CallsOf("InternetReadFile").size(), 6U) << "read once more behind the end";
  EXPECT_EQ(Op(), "DELETE");
}

TEST_F(HdfsClientChangeTest, AnAnswerWithoutTheWordTrueIsNoSuccessAndNoFailure) {
  const struct {
    const char* body;
    VARIANT_BOOL success;
  } rows[] = {{R"({"boolean":false})", VARIANT_FALSE},
              {"", VARIANT_FALSE},
              {"True", VARIANT_FALSE},
              {"anything, true or not", VARIANT_TRUE}};
  for (const auto& row : rows) {
    VARIANT_BOOL success = kUnwritten;
    m_platform.answers = {{.chunks = {row.body}}};
    EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), S_OK);
    EXPECT_EQ(success, row.success) << row.body;
  }
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(HdfsClientChangeTest, TheWordMayLieAcrossTwoReads) {
  VARIANT_BOOL success = kUnwritten;
  m_platform.answers = {{.chunks = {"{tr", "ue}"}}};
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
}

TEST_F(HdfsClientChangeTest, RenameEncodesTheNewNameTwice) {
  VARIANT_BOOL success = kUnwritten;
  m_platform.answers = {{.chunks = {"true"}}, {.chunks = {"true"}}};
  EXPECT_EQ(m_client->Rename(Bstr(OLESTR("/new n-\u00e9")).Get(), &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(m_client->Rename(nullptr, nullptr), S_OK);
  EXPECT_THAT(Requests(),
              ElementsAre("PUT /webhdfs/v1/d/f.txt?op=RENAME&destination=/new%20n%2d\\u00c3\\u00a9 "
                          "0x400200",
                          "PUT /webhdfs/v1/d/f.txt?op=RENAME&destination= 0x400200"));
  EXPECT_EQ(Op(), "RENAME");
}

TEST_F(HdfsClientChangeTest, CreateFolderSendsPermissionsThatWereGiven) {
  VARIANT_BOOL success = kUnwritten;
  m_platform.answers = {{.chunks = {"true"}}, {.chunks = {"false"}}};
  EXPECT_EQ(m_client->CreateFolder(Bstr(OLESTR("750")).Get(), &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(m_client->CreateFolder(nullptr, &success), S_OK);
  EXPECT_EQ(success, VARIANT_FALSE);
  EXPECT_THAT(Requests(), ElementsAre("PUT /webhdfs/v1/d/f.txt?op=MKDIRS&permission=750 0x400200",
                                      "PUT /webhdfs/v1/d/f.txt?op=MKDIRS 0x400200"));
  EXPECT_EQ(Op(), "MKDIRS");
}

TEST_F(HdfsClientChangeTest, BadPermissionsOfAFolderAreRefusedBeforeAnythingElse) {
  m_services.texts[0x80070057] = OLESTR("bad argument\r\n");
  for (const LPCOLESTR permissions : {OLESTR("999"), OLESTR("75"), OLESTR("7777"), OLESTR("rwx")}) {
    VARIANT_BOOL success = kUnwritten;
    EXPECT_EQ(m_client->CreateFolder(Bstr(permissions).Get(), &success), E_INVALIDARG);
    EXPECT_EQ(success, kUnwritten);
    EXPECT_EQ(Error(), "0 bad argument");
    EXPECT_EQ(OnTheThread(), "HDFS CreateFolder: bad argument");
  }
  EXPECT_EQ(Op(), "OPEN");
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(HdfsClientChangeTest, AFailedResultWritesTheDebuggerLineOfItsMethod) {
  m_services.texts[0x80004005] = OLESTR("failed\r\n");
  VARIANT_BOOL success = kUnwritten;
  const auto refuse = [&] { m_platform.answers = {{.status = OLESTR("403"), .chunks = {"no"}}}; };
  refuse();
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), E_FAIL);
  EXPECT_EQ(success, VARIANT_FALSE);
  EXPECT_EQ(Error(), "403 no");
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: no") << "the line takes nothing away";
  refuse();
  EXPECT_EQ(m_client->Rename(nullptr, &success), E_FAIL);
  refuse();
  EXPECT_EQ(m_client->CreateFolder(nullptr, &success), E_FAIL);
  EXPECT_THAT(m_services.lines,
              ElementsAre("Exception in automation method [CHdfsClient::Delete]: failed",
                          "Exception in automation method [CHdfsClient::Rename]: failed",
                          "Exception in automation method [CHdfsClient::CreateFolder]: failed"));
}

TEST_F(HdfsClientChangeTest, AnAnswerThatBreaksOffIsAFailure) {
  VARIANT_BOOL success = kUnwritten;
  m_platform.answers = {{.chunks = {"true"}, .readError = 12030}};
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), E_FAIL);
  EXPECT_EQ(success, VARIANT_FALSE);
}

TEST_F(HdfsClientChangeTest, ADownloadBehindItSendsTheOperationThatStayed) {
  m_platform.answers = {{.chunks = {"true"}}, {.chunks = {"x"}}};
  m_client->Delete(VARIANT_FALSE, nullptr);
  Bstr saved;
  m_client->Download(VARIANT_FALSE, Bstr(OLESTR("out")).Get(), saved.Receive());
  EXPECT_EQ(Requests()[1], "GET /webhdfs/v1/d/f.txt?op=DELETE 0x400200");
}

}  // namespace
}  // namespace velandoc::testing
