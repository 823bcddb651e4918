#include <fstream>

#include "tests/support/temporary_folder.h"
#include "tests/support/text_stream.h"
#include "tests/support/variant_text.h"
#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HdfsClientWinHttpUploadTest : public HdfsClientWinHttpTest {
 protected:
  static HttpAnswer Redirect() {
    return {.status = OLESTR("307"),
            .chunks = {"moved"},
            .headers = {{WINHTTP_QUERY_LOCATION, OLESTR("http://dn:50075/x%20y?op=CREATE&a=b")}}};
  }
  void PlayUpload(HttpAnswer second) { m_platform.answers = {Redirect(), std::move(second)}; }
  HRESULT Upload(TextStream& stream, VARTYPE type = VT_UNKNOWN, LPCOLESTR permissions = nullptr) {
    VARIANT source;
    VariantInit(&source);
    source.vt = type;
    source.punkVal = &stream;
    const Bstr octal = permissions != nullptr ? Bstr(permissions) : Bstr();
    const HRESULT result = m_client->Upload(source, VARIANT_TRUE, octal.Get());
    EXPECT_EQ(stream.references, 1U) << "the stream was not released";
    return result;
  }
};

TEST_F(HdfsClientWinHttpUploadTest, AStreamGoesInTwoSteps) {
  m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  m_client->put_HdfsPath(Bstr(OLESTR("/u/a b.txt")).Get());
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("hello");
  EXPECT_EQ(Upload(stream, VT_UNKNOWN, OLESTR("755")), S_OK);
  EXPECT_THAT(Requests(), ElementsAre("PUT /webhdfs/v1/u/a%20b.txt?op=CREATE&user.name=bob"
                                      "&overwrite=true&permission=755 0x0",
                                      "PUT /x%20y?op=CREATE&a=b 0x0"));
  EXPECT_THAT(m_platform.CallsOf("WinHttpSetOption"), ElementsAre("WinHttpSetOption(3, 88, 0)"))
      << "only the first step refuses to be led on";
  EXPECT_EQ(m_platform.CallsOf("WinHttpConnect")[1], "WinHttpConnect(4, dn, 50075, 0)");
  EXPECT_THAT(m_platform.CallsOf("WinHttpSendRequest"),
              ElementsAre("WinHttpSendRequest(3, null, 0, null, 0, 0, 0)",
                          "WinHttpSendRequest(6, null, 0, null, 0, 5, 0)"));
  EXPECT_EQ(m_platform.written, "hello");
  EXPECT_EQ(Op(), "CREATE");
}

TEST_F(HdfsClientWinHttpUploadTest, ASuccessLeavesThe307WithoutATextAndNothingOnTheThread) {
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_EQ(Error(), "307 ") << "the 307 was no failure, so its body is not kept";
}

TEST_F(HdfsClientWinHttpUploadTest, AFileIsReadFromItsName) {
  const TemporaryFolder folder;
  std::ofstream(folder.Path() / "local", std::ios::binary) << std::string(20000, 'q');
  const std::string narrow = (folder.Path() / "local").string();
  const WideString path(narrow.begin(), narrow.end());
  PlayUpload({.status = OLESTR("201")});
  EXPECT_EQ(m_client->Upload(Variant(path).Get(), VARIANT_FALSE, nullptr), S_OK);
  EXPECT_EQ(m_files.streamMode, 0x20U);
  EXPECT_EQ(Requests()[0], "PUT /webhdfs/v1/d/f.txt?op=CREATE&overwrite=false 0x0");
  EXPECT_EQ(m_platform.written, std::string(20000, 'q'));
  EXPECT_EQ(m_platform.CallsOf("WinHttpSendRequest")[1],
            "WinHttpSendRequest(6, null, 0, null, 0, 20000, 0)");
  EXPECT_THAT(m_platform.CallsOf("WinHttpWriteData"),
              ElementsAre("WinHttpWriteData(6, 8192)", "WinHttpWriteData(6, 8192)",
                          "WinHttpWriteData(6, 3616)"));
}

TEST_F(HdfsClientWinHttpUploadTest, StreamsComeInThreeTypes) {
  for (const VARTYPE type : {VT_DISPATCH, VT_UNKNOWN, VT_STREAM}) {
    PlayUpload({.status = OLESTR("201")});
    TextStream stream("x");
    EXPECT_EQ(Upload(stream, type), S_OK) << type;
  }
}

TEST_F(HdfsClientWinHttpUploadTest, BothWaysToTellTheEndAreUnderstoodAtEveryChunksEdge) {
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

TEST_F(HdfsClientWinHttpUploadTest, OnlyTheLowHalfOfALengthIsAnnounced) {
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("abc");
  stream.size = (ULONGLONG{1} << 32) + 3;
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(m_platform.CallsOf("WinHttpSendRequest")[1],
            "WinHttpSendRequest(6, null, 0, null, 0, 3, 0)");
}

TEST_F(HdfsClientWinHttpUploadTest, AStreamThatDoesNotTellItsLengthHasNone) {
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("abc");
  stream.statResult = E_NOTIMPL;
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(m_platform.CallsOf("WinHttpSendRequest")[1],
            "WinHttpSendRequest(6, null, 0, null, 0, 0, 0)");
  EXPECT_EQ(m_platform.written, "abc") << "what the platform makes of it is the platform's";
}

TEST_F(HdfsClientWinHttpUploadTest, ANameNodesRefusalIsSOkAndUploadsNothing) {
  for (const LPCOLESTR status :
       {OLESTR("403"), OLESTR("500"), OLESTR("200"), OLESTR("201"), OLESTR("302")}) {
    m_platform.answers = {{.status = status,
                           .chunks = {"text"},
                           .headers = {{WINHTTP_QUERY_LOCATION, OLESTR("http://dn/")}}}};
    TextStream stream("x");
    EXPECT_EQ(Upload(stream), S_OK);
    EXPECT_EQ(OnTheThread(), "none");
    EXPECT_EQ(Error(), DescribeText(status) + " ");
  }
  EXPECT_EQ(m_platform.written, "");
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(HdfsClientWinHttpUploadTest, A307WithoutAPlaceIsSOkAndUploadsNothing) {
  m_platform.answers = {{.status = OLESTR("307"), .chunks = {"moved"}}};
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(m_platform.written, "");
  EXPECT_EQ(Error(), "307 ");
}

TEST_F(HdfsClientWinHttpUploadTest, APlaceMayBeLongerThanTheOtherClassTakes) {
  HttpAnswer redirect = Redirect();
  redirect.headers[WINHTTP_QUERY_LOCATION] =
      OLESTR("http://datanode.example.test:50075/?") + WideString(2040, 'a');
  m_platform.answers = {redirect, {.status = OLESTR("201")}};
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(m_platform.written, "x");
}

TEST_F(HdfsClientWinHttpUploadTest, AFirstStepWithoutAnAnswerWritesTheDebuggerLine) {
  m_platform.answers = {{.sendError = 12029}};
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), E_FAIL);
  EXPECT_EQ(OnTheThread(), std::string("HDFS Client Connect: ") + kUnknownError);
  EXPECT_EQ(Error(), std::string("0 ") + kUnknownError);
  EXPECT_THAT(m_services.lines,
              ElementsAre("Exception in automation method [CHdfsClientWinHttp::Upload]: failed"));
}

TEST_F(HdfsClientWinHttpUploadTest, A307WhoseBodyBreaksOffIsFollowedAllTheSame) {
  HttpAnswer redirect = Redirect();
  redirect.availableError = 12030;
  m_platform.answers = {redirect, {.status = OLESTR("201")}};
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), S_OK);
  EXPECT_EQ(m_platform.written, "x");
  EXPECT_EQ(OnTheThread(), "none") << "the success takes back what the first step said";
}

TEST_F(HdfsClientWinHttpUploadTest, ASecondStepThatDoesNotStartIsToldByItsErrorWithoutALine) {
  PlayUpload({.sendError = 12029});
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), E_FAIL);
  EXPECT_EQ(OnTheThread(), "HDFS Client Upload: cannot connect\\u000D\\u000A");
  EXPECT_EQ(Error(), "0 cannot connect\\u000D\\u000A");
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(HdfsClientWinHttpUploadTest, AFailedWriteEndsTheUploadAndIsToldByItsError) {
  m_services.texts[ERROR_WINHTTP_CONNECTION_ERROR] = OLESTR("reset\r\n");
  PlayUpload({.status = OLESTR("201")});
  m_platform.goodWrites = 1;
  TextStream stream(std::string(20000, 'x'));
  EXPECT_EQ(Upload(stream), E_FAIL);
  EXPECT_EQ(m_platform.CallsOf("WinHttpWriteData").size(), 2U);
  EXPECT_EQ(OnTheThread(), "HDFS Client Upload: reset\\u000D\\u000A");
  EXPECT_EQ(Error(), "0 reset\\u000D\\u000A");
}

TEST_F(HdfsClientWinHttpUploadTest, TheWordsAreThoseOfWinHttpsOwnTable) {
  m_services.modules["winhttp.dll"] = 0;
  PlayUpload({.sendError = 12029});
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), E_FAIL);
  EXPECT_THAT(m_services.calls, ElementsAre("GetModuleHandleW(winhttp.dll)",
                                            "FormatMessageW(0xb00, winhttp.dll, 0x2efd, 0x400)"));
}

TEST_F(HdfsClientWinHttpUploadTest, ARefusedSecondStepIsToldInTheServersWordsWithoutItsStatus) {
  for (const LPCOLESTR status : {OLESTR("403"), OLESTR("200"), OLESTR("500")}) {
    PlayUpload({.status = status, .chunks = {"no ", "room f\xFCr"}});
    TextStream stream("x");
    EXPECT_EQ(Upload(stream), E_FAIL);
    EXPECT_EQ(OnTheThread(), "HDFS Client Upload: no room f\\u00FCr");
    EXPECT_EQ(Error(), "0 no room f\\u00FCr");
  }
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(HdfsClientWinHttpUploadTest, ASecondStepWithoutAnAnswerHasNoWords) {
  PlayUpload({.receiveError = 12030});
  TextStream stream("x");
  EXPECT_EQ(Upload(stream), E_FAIL);
  EXPECT_EQ(OnTheThread(), "HDFS Client Upload: ");
  EXPECT_EQ(Error(), "0 ");
}

TEST_F(HdfsClientWinHttpUploadTest, ADeleteAndADownloadBehindAnUploadSendItsParameters) {
  m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  PlayUpload({.status = OLESTR("201")});
  TextStream stream("x");
  EXPECT_EQ(Upload(stream, VT_UNKNOWN, OLESTR("755")), S_OK);
  m_platform.answers = {{}, {}};
  EXPECT_EQ(m_client->Delete(VARIANT_FALSE, nullptr), S_OK);
  EXPECT_EQ(GetText(), "");
  const std::string behind =
      "DELETE&user.name=bob&overwrite=true&permission=755&recursive=false "
      "0x0";
  EXPECT_EQ(Requests()[2], "DELETE /webhdfs/v1/d/f.txt?op=" + behind);
  EXPECT_EQ(Requests()[3], "GET /webhdfs/v1/d/f.txt?op=" + behind) << "Op stays as well";
}

}  // namespace
}  // namespace velandoc::testing
