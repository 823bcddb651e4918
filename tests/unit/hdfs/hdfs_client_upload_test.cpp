#include <fstream>

#include "tests/support/temporary_folder.h"
#include "tests/support/text_stream.h"
#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;

class HdfsClientUploadTest : public HdfsClientTest {
 protected:
  static Answer Redirect() {
    return {.status = OLESTR("307"),
            .chunks = {"moved"},
            .headers = {{HTTP_QUERY_LOCATION, OLESTR("http://dn:50075/x%20y?op=CREATE&a=b")}}};
  }
  void PlayUpload(Answer second) { m_platform.answers = {Redirect(), std::move(second)}; }
  HRESULT Upload(TextStream& stream, VARTYPE type = VT_UNKNOWN) {
    VARIANT source;
    VariantInit(&source);
    source.vt = type;
    source.punkVal = &stream;
    const HRESULT result = m_client->Upload(source, VARIANT_TRUE, nullptr);
    EXPECT_EQ(stream.references, 1U) << "the stream was not released";
    return result;
  }
};

TEST_F(HdfsClientUploadTest, AStreamGoesInTwoSteps) {
  m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  m_client->put_HdfsPath(Bstr(OLESTR("/u/a b.txt")).Get());
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("hello");
  VARIANT source;
  VariantInit(&source);
  source.vt = VT_UNKNOWN;
  source.punkVal = &stream;
  EXPECT_EQ(m_client->Upload(source, VARIANT_TRUE, Bstr(OLESTR("755")).Get()), S_OK);
  EXPECT_THAT(Requests(), ElementsAre("PUT /webhdfs/v1/u/a%20b.txt?op=CREATE&user.name=bob"
                                      "&overwrite=true&permission=755 0x600200",
                                      "PUT /x%20y?op=CREATE&a=b 0x4400200"));
  EXPECT_EQ(m_platform.CallsOf("InternetConnectW")[1],
            "InternetConnectW(4, dn, 50075, null, null, 3, 0x200, 0)");
  EXPECT_THAT(m_platform.CallsOf("HttpSendRequestExW"),
              ElementsAre("HttpSendRequestExW(6, {Content-Length: 5 17}, null, 0, 0)"));
  EXPECT_THAT(m_platform.bodies, ElementsAre("")) << "the first step has none";
  EXPECT_EQ(m_platform.written, "hello");
  EXPECT_EQ(Op(), "CREATE");
}

TEST_F(HdfsClientUploadTest, ASuccessLeavesThe307InConnectionErrorAndNothingOnTheThread) {
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(Error(), "307 moved");
  EXPECT_EQ(OnTheThread(), "none");
}

TEST_F(HdfsClientUploadTest, AFileIsReadFromItsName) {
  const TemporaryFolder folder;
  std::ofstream(folder.Path() / "local", std::ios::binary) << std::string(20000, 'q');
  const std::string narrow = (folder.Path() / "local").string();
  const WideString path(narrow.begin(), narrow.end());
  PlayUpload({.status = OLESTR("201")});
  EXPECT_EQ(m_client->Upload(Variant(path).Get(), VARIANT_FALSE, nullptr), S_OK);
  EXPECT_EQ(m_files.streamName, path);
  EXPECT_EQ(m_files.streamMode, 0x20U);
  EXPECT_EQ(Requests()[0], "PUT /webhdfs/v1/d/f.txt?op=CREATE&overwrite=false 0x600200");
  EXPECT_EQ(m_platform.written, std::string(20000, 'q'));
  EXPECT_EQ(m_platform.CallsOf("HttpSendRequestExW")[0],
            "HttpSendRequestExW(6, {Content-Length: 20000 21}, null, 0, 0)");
  EXPECT_THAT(m_platform.CallsOf("InternetWriteFile"),
              ElementsAre("InternetWriteFile(6, 8192)", "InternetWriteFile(6, 8192)",
                          "InternetWriteFile(6, 3616)"));
}

TEST_F(HdfsClientUploadTest, StreamsComeInThreeTypes) {
  for (const VARTYPE type : {VT_DISPATCH, VT_UNKNOWN, VT_STREAM}) {
    PlayUpload({.status = OLESTR("201")});
    TextStream stream("x");
    EXPECT_EQ(Upload(stream, type), S_OK) << type;
  }
}

TEST_F(HdfsClientUploadTest, BothWaysToTellTheEndAreUnderstood) {
  for (const bool saysOk : {false, true}) {
    for (const std::size_t size : {0U, 1U, 8191U, 8192U, 8193U, 16384U}) {
      m_platform.written.clear();
      PlayUpload({.status = OLESTR("201")});
      TextStream stream(std::string(size, 'z'), saysOk);
      EXPECT_EQ(Upload(stream), S_OK);
      EXPECT_EQ(m_platform.written.size(), size);
    }
  }
}

TEST_F(HdfsClientUploadTest, OnlyTheLowHalfOfALengthIsAnnounced) {
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("abc");
  stream.size = (ULONGLONG{1} << 32) + 3;
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(m_platform.CallsOf("HttpSendRequestExW")[0],
            "HttpSendRequestExW(6, {Content-Length: 3 17}, null, 0, 0)");
}

TEST_F(HdfsClientUploadTest, AStreamThatDoesNotTellItsLengthHasNone) {
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("abc");
  stream.statResult = E_NOTIMPL;
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(m_platform.CallsOf("HttpSendRequestExW")[0],
            "HttpSendRequestExW(6, {Content-Length: 0 17}, null, 0, 0)");
}

TEST_F(HdfsClientUploadTest, AnyOtherFirstAnswerIsTheResult) {
  const struct {
    LPCOLESTR status;
    HRESULT result;
    const char* error;
  } rows[] = {{OLESTR("200"), S_OK, "200 "},
              {OLESTR("201"), E_FAIL, "201 text"},
              {OLESTR("302"), E_FAIL, "302 text"},
              {OLESTR("403"), E_FAIL, "403 text"}};
  for (const auto& row : rows) {
    m_platform.answers = {{.status = row.status,
                           .chunks = {"text"},
                           .headers = {{HTTP_QUERY_LOCATION, OLESTR("http://dn/")}}}};
    TextStream stream("x");
    EXPECT_EQ(Upload(stream), row.result);
    EXPECT_EQ(Error(), row.error);
  }
  EXPECT_EQ(m_platform.written, "");
}

TEST_F(HdfsClientUploadTest, A307WithoutAPlaceIsTheResult) {
  m_platform.answers = {{.status = OLESTR("307"), .chunks = {"moved"}},
                        {.status = OLESTR("307"),
                         .chunks = {"moved"},
                         .headers = {{HTTP_QUERY_LOCATION, WideString(2048, 'a')}}}};
  for (int i = 0; i < 2; ++i) {
    TextStream stream("x");
    EXPECT_EQ(Upload(stream), E_FAIL);
    EXPECT_EQ(Error(), "307 moved");
    EXPECT_EQ(OnTheThread(), "HDFS Client Connect: moved");
  }
}

TEST_F(HdfsClientUploadTest, ASecondStepThatDoesNotStartIsToldByItsError) {
  PlayUpload({.error = 12029});
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), E_FAIL);
  EXPECT_EQ(Error(), "0 cannot connect\\u000D\\u000A");
  EXPECT_EQ(OnTheThread(), "HDFS Client Upload: cannot connect\\u000D\\u000A");
}

TEST_F(HdfsClientUploadTest, ASecondStepThatDoesNotEndIsToldByItsError) {
  PlayUpload({.status = OLESTR("201")});
  m_platform.endFails = true;
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), E_FAIL);
  EXPECT_EQ(Error(), "0 reset\\u000D\\u000A");
  EXPECT_EQ(OnTheThread(), "HDFS Client Upload: reset\\u000D\\u000A");
}

TEST_F(HdfsClientUploadTest, AFailedWriteEndsTheWritingAndTheEndTells) {
  PlayUpload({.status = OLESTR("201")});
  m_platform.writeFails = true;
  TextStream stream(std::string(20000, 'x'));
  EXPECT_EQ(Upload(stream), S_OK) << "the server's word counts";
  EXPECT_EQ(m_platform.CallsOf("InternetWriteFile").size(), 1U);
}

TEST_F(HdfsClientUploadTest, ARefusedSecondStepIsToldInTheServersWordsWithoutItsStatus) {
  for (const LPCOLESTR status : {OLESTR("403"), OLESTR("200"), OLESTR("500")}) {
    PlayUpload({.status = status, .chunks = {"no ", "room"}});
    TextStream stream("x");
    EXPECT_EQ(Upload(stream), E_FAIL);
    EXPECT_EQ(Error(), "0 no room");
    EXPECT_EQ(OnTheThread(), "HDFS Client Upload: no room");
  }
}

TEST_F(HdfsClientUploadTest, ADownloadBehindAnUploadSendsCreate) {
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), S_OK);
  m_platform.answers = {{.status = OLESTR("405")}};
  Bstr text;
  EXPECT_EQ(m_client->GetText(text.Receive()), E_FAIL);
  EXPECT_EQ(Requests()[2], "GET /webhdfs/v1/d/f.txt?op=CREATE 0x400200");
}

}  // namespace
}  // namespace velandoc::testing
