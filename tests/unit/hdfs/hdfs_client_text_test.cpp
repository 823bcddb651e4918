#include "tests/support/variant_text.h"
#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;

class HdfsClientTextTest : public HdfsClientTest {
 protected:
  /// "result text"
  std::string GetText() {
    Bstr text;
    const HRESULT result = m_client->GetText(text.Receive());
    return Told(result, text);
  }
  std::string Request(LPCOLESTR url) {
    ComPtr<IRawRequest> raw;
    EXPECT_EQ(m_client->QueryInterface(IID_IRawRequest, raw.ReceiveVoid()), S_OK);
    Bstr text;
    const HRESULT result = raw->Request(Bstr(url).Get(), text.Receive());
    return Told(result, text);
  }
  static std::string Told(HRESULT result, const Bstr& text) {
    const std::string name = result == S_OK ? "S_OK" : result == E_FAIL ? "E_FAIL" : "other";
    return name + (text.Get() != nullptr ? " " + DescribeText(text.View()) : " unwritten");
  }
};

TEST_F(HdfsClientTextTest, TextIsUtf8UpToItsFirstNul) {
  m_platform.answers = {{.chunks = {"caf\xC3", "\xA9", std::string(" x\0y", 4)}}};
  EXPECT_EQ(GetText(), "S_OK caf\\u00E9 x");
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=OPEN 0x400200"));
  m_platform.answers = {{}};
  EXPECT_EQ(GetText(), "S_OK ") << "an empty body is an empty text";
}

TEST_F(HdfsClientTextTest, TextOfManyChunksIsWhole) {
  m_platform.answers = {{}};
  for (int i = 0; i < 100; ++i) m_platform.answers[0].chunks.push_back(std::string(8192, 'a'));
  EXPECT_EQ(GetText(), "S_OK " + std::string(819200, 'a'));
}

TEST_F(HdfsClientTextTest, ARefusalIsTheRequestsAndWritesNoText) {
  m_platform.answers = {{.status = OLESTR("403"), .chunks = {"no"}},
                        {.chunks = {"x"}, .readError = 12030}};
  EXPECT_EQ(GetText(), "E_FAIL unwritten");
  EXPECT_EQ(Error(), "403 no");
  EXPECT_EQ(OnTheThread(), "HDFS Client Connect: no");
  EXPECT_EQ(GetText(), "E_FAIL unwritten");
  EXPECT_EQ(Error(), "200 Unknown connection error with server.");
  EXPECT_EQ(m_client->GetText(nullptr), E_POINTER);
}

TEST_F(HdfsClientTextTest, AStatusThatCannotBeReadIsAnUnknownError) {
  m_platform.answers = {{.status = OLESTR("")}};
  EXPECT_EQ(GetText(), "E_FAIL unwritten");
  EXPECT_EQ(Error(), "0 Unknown connection error with server.");
}

TEST_F(HdfsClientTextTest, ARawRequestGoesToItsUrlWhateverTheClientSays) {
  m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  m_platform.answers = {{.chunks = {"{}"}}, {.status = OLESTR("500"), .chunks = {"oops"}}};
  EXPECT_EQ(Request(OLESTR("http://other:81/x?y=1")), "S_OK {}");
  EXPECT_EQ(Request(OLESTR("http://other:81/z")), "E_FAIL unwritten");
  EXPECT_THAT(Requests(), ElementsAre("GET /x?y=1 0x400200", "GET /z 0x400200"));
  EXPECT_EQ(m_platform.CallsOf("InternetConnectW")[0],
            "InternetConnectW(1, other, 81, null, null, 3, 0x200, 0)");
  EXPECT_EQ(Error(), "500 oops");
  EXPECT_EQ(Op(), "OPEN");
  ComPtr<IRawRequest> raw;
  m_client->QueryInterface(IID_IRawRequest, raw.ReceiveVoid());
  EXPECT_EQ(raw->Request(Bstr(OLESTR("http://h/")).Get(), nullptr), E_POINTER);
}

TEST_F(HdfsClientTextTest, TheCertificateOptionHoldsForTextAndRawRequests) {
  m_client->put_Options(scHdfsIntegratedWindowsAuthentication);
  m_platform.answers = {{.error = 12045}, {.chunks = {"a"}}, {.error = 12038}, {.chunks = {"b"}}};
  EXPECT_EQ(GetText(), "S_OK a");
  EXPECT_EQ(Request(OLESTR("https://h/")), "S_OK b");
  EXPECT_EQ(m_platform.CallsOf("InternetErrorDlg").size(), 0U);
  m_client->put_Options(3);
  m_platform.answers = {{.error = 12045}};
  m_platform.dialogResults = {1223};
  EXPECT_EQ(GetText(), "E_FAIL unwritten");
  EXPECT_EQ(m_platform.CallsOf("InternetErrorDlg").size(), 1U);
}

TEST_F(HdfsClientTextTest, AStreamIsReadAfterItsClientHasGone) {
  m_platform.answers = {{.chunks = {"abc"}}};
  ComPtr<IStream> stream;
  ASSERT_EQ(m_client->Stream(stream.Receive()), S_OK);
  EXPECT_EQ(Error(), "200 ");
  EXPECT_EQ(m_platform.CallsOf("InternetReadFile").size(), 0U);
  m_client.Reset();
  char buffer[10];
  ULONG read = 0;
  EXPECT_EQ(stream->Read(buffer, 10, &read), S_FALSE);
  EXPECT_EQ(std::string(buffer, read), "abc");
}

TEST_F(HdfsClientTextTest, ARefusedStreamIsNone) {
  m_platform.answers = {{.status = OLESTR("404"), .chunks = {"gone"}}};
  ComPtr<IStream> stream;
  EXPECT_EQ(m_client->Stream(stream.Receive()), E_FAIL);
  EXPECT_FALSE(stream);
  EXPECT_EQ(m_client->Stream(nullptr), E_POINTER);
  EXPECT_EQ(Error(), "404 gone");
}

}  // namespace
}  // namespace velandoc::testing
