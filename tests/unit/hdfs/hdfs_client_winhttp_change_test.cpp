#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using HdfsClientWinHttpChangeTest = HdfsClientWinHttpTest;

constexpr VARIANT_BOOL kUnwritten = 77;

TEST_F(HdfsClientWinHttpChangeTest, DeleteSaysHowDeepAndStaysTheOperation) {
  m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  m_platform.answers = {{.chunks = {R"({"boolean":true})"}}, {.chunks = {R"({"boolean":true})"}}};
  VARIANT_BOOL success = kUnwritten;
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(m_client->Delete(VARIANT_TRUE, nullptr), S_OK);
  EXPECT_THAT(Requests(),
              ElementsAre("DELETE /webhdfs/v1/d/f.txt?op=DELETE&user.name=bob&recursive=false 0x0",
                          "DELETE /webhdfs/v1/d/f.txt?op=DELETE&user.name=bob&recursive=true 0x0"));
  EXPECT_EQ(Op(), "DELETE");
  EXPECT_EQ(Error(), "200 ");
}

TEST_F(HdfsClientWinHttpChangeTest, DeleteWithoutTheWordTrueReportsFalse) {
  const struct {
    const char* body;
    VARIANT_BOOL success;
  } rows[] = {{R"({"boolean":false})", VARIANT_FALSE},
              {"", VARIANT_FALSE},
              {"True", VARIANT_FALSE},
              {"true", VARIANT_TRUE},
              {"anything, true or not", VARIANT_TRUE}};
  for (const auto& row : rows) {
    VARIANT_BOOL success = kUnwritten;
    m_platform.answers = {{.chunks = {row.body}}};
    EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), S_OK);
    EXPECT_EQ(success, row.success) << row.body;
  }
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(HdfsClientWinHttpChangeTest, ARefusalIsASuccessOfTheCall) {
  VARIANT_BOOL success = kUnwritten;
  m_platform.answers = {{.status = OLESTR("403"), .chunks = {"it is true that you may not"}}};
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE) << "the words of the refusal are searched too";
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_EQ(Error(), "403 ");
}

TEST_F(HdfsClientWinHttpChangeTest, RenameReportsFalseOnlyForABodyThatBeginsWithTrue) {
  const struct {
    const char* body;
    VARIANT_BOOL success;
  } rows[] = {{R"({"boolean":true})", VARIANT_TRUE},
              {R"({"boolean":false})", VARIANT_TRUE},
              {"", VARIANT_TRUE},
              {" true", VARIANT_TRUE},
              {"true", VARIANT_FALSE},
              {"true, true", VARIANT_FALSE}};
  for (const auto& row : rows) {
    VARIANT_BOOL success = kUnwritten;
    m_platform.answers = {{.chunks = {row.body}}};
    EXPECT_EQ(m_client->Rename(Bstr(OLESTR("/n")).Get(), &success), S_OK);
    EXPECT_EQ(success, row.success) << row.body;
  }
  EXPECT_EQ(Requests().front(), "PUT /webhdfs/v1/d/f.txt?op=RENAME&destination=/n 0x0");
  EXPECT_EQ(Op(), "RENAME");
}

TEST_F(HdfsClientWinHttpChangeTest, RenameWithoutAPointerForTheAnswer) {
  m_platform.answers = {{.chunks = {"true"}}};
  EXPECT_EQ(m_client->Rename(Bstr(OLESTR("/n")).Get(), nullptr), S_OK);
  EXPECT_EQ(m_client->Rename(nullptr, nullptr), E_INVALIDARG);
}

// The name is UTF-8 read as ANSI text already; the connection encodes what stands behind the "?"
// once more, a byte a character.
TEST_F(HdfsClientWinHttpChangeTest, RenameEncodesTheNewNameOnceMoreThanTheOtherClass) {
  m_platform.answers = {{}};
  EXPECT_EQ(m_client->Rename(Bstr(OLESTR("/new n-\u00e9")).Get(), nullptr), S_OK);
  EXPECT_THAT(Requests(), ElementsAre("PUT /webhdfs/v1/d/f.txt?op=RENAME&destination=/new%20n%2d"
                                      "\\u00c3\\u0083\\u00c2\\u00a9 0x0"));
}

TEST_F(HdfsClientWinHttpChangeTest, RenameToNothingIsAnExceptionBehindTheFalse) {
  VARIANT_BOOL success = kUnwritten;
  EXPECT_EQ(m_client->Rename(nullptr, &success), E_INVALIDARG);
  EXPECT_EQ(success, VARIANT_FALSE);
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_EQ(Error(), "none");
  EXPECT_EQ(Op(), "OPEN");
  EXPECT_THAT(m_services.lines,
              ElementsAre("Exception in automation method [CHdfsClientWinHttp::Rename]: "
                          "bad argument"));
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(HdfsClientWinHttpChangeTest, CreateFolderSendsGetAndPermissionsEvenIfEmpty) {
  VARIANT_BOOL success = kUnwritten;
  m_platform.answers = {{.chunks = {R"({"boolean":true})"}},
                        {.chunks = {R"({"boolean":false})"}},
                        {.status = OLESTR("400"), .chunks = {"no GET"}}};
  EXPECT_EQ(m_client->CreateFolder(Bstr(OLESTR("750")).Get(), &success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(m_client->CreateFolder(nullptr, &success), S_OK);
  EXPECT_EQ(success, VARIANT_FALSE);
  EXPECT_EQ(m_client->CreateFolder(Bstr(OLESTR("")).Get(), nullptr), S_OK);
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=MKDIRS&permission=750 0x0",
                                      "GET /webhdfs/v1/d/f.txt?op=MKDIRS&permission= 0x0",
                                      "GET /webhdfs/v1/d/f.txt?op=MKDIRS&permission= 0x0"));
  EXPECT_EQ(Op(), "MKDIRS");
  EXPECT_EQ(Error(), "400 ");
}

TEST_F(HdfsClientWinHttpChangeTest, BadPermissionsOfAFolderAreAnExceptionBehindTheFalse) {
  for (const LPCOLESTR permissions : {OLESTR("999"), OLESTR("75"), OLESTR("7777"), OLESTR("rwx")}) {
    VARIANT_BOOL success = kUnwritten;
    EXPECT_EQ(m_client->CreateFolder(Bstr(permissions).Get(), &success), E_INVALIDARG);
    EXPECT_EQ(success, VARIANT_FALSE);
    EXPECT_EQ(OnTheThread(), "none") << "no source of CreateFolder's own";
    EXPECT_EQ(Error(), "none");
  }
  EXPECT_EQ(Op(), "OPEN");
  EXPECT_EQ(m_services.lines.size(), 4U);
  EXPECT_EQ(m_services.lines[0],
            "Exception in automation method [CHdfsClientWinHttp::CreateFolder]: bad argument");
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(HdfsClientWinHttpChangeTest, AFailedResultWritesTheDebuggerLineOfItsMethod) {
  VARIANT_BOOL success = kUnwritten;
  m_platform.answers = {{.sendError = 12029}, {.receiveError = 12030}, {.readError = 12030}};
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, &success), E_FAIL);
  EXPECT_EQ(success, VARIANT_FALSE);
  EXPECT_EQ(OnTheThread(), std::string("HDFS Client Connect: ") + kUnknownError)
      << "the line takes nothing away";
  success = kUnwritten;
  EXPECT_EQ(m_client->Rename(Bstr(OLESTR("/n")).Get(), &success), E_FAIL);
  EXPECT_EQ(success, VARIANT_FALSE) << "its test is of answers that came";
  EXPECT_EQ(m_client->CreateFolder(nullptr, &success), E_FAIL);
  EXPECT_EQ(Error(), std::string("200 ") + kUnknownError);
  EXPECT_THAT(m_services.lines,
              ElementsAre("Exception in automation method [CHdfsClientWinHttp::Delete]: failed",
                          "Exception in automation method [CHdfsClientWinHttp::Rename]: failed",
                          "Exception in automation method [CHdfsClientWinHttp::CreateFolder]: "
                          "failed"));
}

TEST_F(HdfsClientWinHttpChangeTest, ParametersStayForEveryLaterRequestInTheOrderOfTheirNames) {
  m_platform.answers = {{}, {}, {}, {}, {}};
  m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  m_client->Delete(VARIANT_TRUE, nullptr);
  m_client->CreateFolder(Bstr(OLESTR("755")).Get(), nullptr);
  m_client->Rename(Bstr(OLESTR("/n")).Get(), nullptr);
  m_client->Delete(VARIANT_FALSE, nullptr);
  m_client->put_Op(Bstr(OLESTR("OPEN")).Get());
  GetText();
  const std::string path = " /webhdfs/v1/d/f.txt?op=";
  EXPECT_THAT(
      Requests(),
      ElementsAre(
          "DELETE" + path + "DELETE&user.name=bob&recursive=true 0x0",
          "GET" + path + "MKDIRS&user.name=bob&permission=755&recursive=true 0x0",
          "PUT" + path + "RENAME&user.name=bob&destination=/n&permission=755&recursive=true 0x0",
          "DELETE" + path +
              "DELETE&user.name=bob&destination=/n&permission=755&recursive=false 0x0",
          "GET" + path + "OPEN&user.name=bob&destination=/n&permission=755&recursive=false 0x0"));
  Bstr url;
  m_client->get_URL(url.Receive());
  EXPECT_EQ(url.Text(), OLESTR("http://h:50070/webhdfs/v1/d/f.txt")) << "URL does not show them";
}

}  // namespace
}  // namespace velandoc::testing
