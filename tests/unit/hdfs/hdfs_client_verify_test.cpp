#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HdfsClientVerifyTest : public HdfsClientTest {
 protected:
  HRESULT Verify(const VARIANT& user, LPCOLESTR url = OLESTR("http://nn:8020/x")) {
    return m_client->VerifyServer(Bstr(url).Get(), user, &m_found);
  }
  VARIANT_BOOL m_found = 77;
  Variant m_empty;
};

TEST_F(HdfsClientVerifyTest, AnAnswerThatBeginsAsExpectedIsAServers) {
  m_platform.answers = {{.chunks = {R"({"Path":"/user/bob"})"}}};
  EXPECT_EQ(Verify(Variant(OLESTR("bob")).Get()), S_OK);
  EXPECT_EQ(m_found, VARIANT_TRUE);
  EXPECT_THAT(Requests(),
              ElementsAre("GET /webhdfs/v1/d/f.txt?op=GETHOMEDIRECTORY&user.name=bob 0x400200"));
  EXPECT_THAT(m_platform.CallsOf("InternetReadFile"), ElementsAre("InternetReadFile(3, 1024)"));
  EXPECT_EQ(Op(), "GETHOMEDIRECTORY");
  Bstr text;
  m_client->get_UserName(text.Receive());
  EXPECT_EQ(text.Text(), OLESTR("bob")) << "it stays";
  m_client->get_BaseUrl(text.Receive());
  EXPECT_EQ(text.Text(), OLESTR("http://nn:8020"));
}

TEST_F(HdfsClientVerifyTest, AnythingInFrontOrElseIsNone) {
  for (const char* body :
       {R"( {"Path":"/"})", R"({ "Path":"/"})", R"({"path":"/"})", "", "{\"Pat"}) {
    m_platform.answers = {{.chunks = {body}}};
    EXPECT_EQ(Verify(m_empty.Get()), S_OK);
    EXPECT_EQ(m_found, VARIANT_FALSE) << body;
  }
}

TEST_F(HdfsClientVerifyTest, ARefusalAndABrokenBodyAreNone) {
  m_platform.answers = {{.status = OLESTR("401"), .chunks = {R"({"Path":"/"})"}},
                        {.chunks = {}, .readError = 12030}};
  EXPECT_EQ(Verify(m_empty.Get()), S_OK);
  EXPECT_EQ(m_found, VARIANT_FALSE);
  EXPECT_EQ(Error(), R"(401 {"Path":"/"})");
  EXPECT_EQ(Verify(m_empty.Get()), S_OK);
  EXPECT_EQ(m_found, VARIANT_FALSE);
}

TEST_F(HdfsClientVerifyTest, AUserOfAnotherTypeIsRefusedAndOneLeftOutToo) {
  Variant missing(DISP_E_PARAMNOTFOUND, VT_ERROR);
  EXPECT_EQ(Verify(missing.Get()), E_INVALIDARG);
  EXPECT_EQ(Verify(Variant(7, VT_I4).Get()), E_INVALIDARG);
  EXPECT_EQ(m_found, 77) << "untouched";
  EXPECT_EQ(Op(), "OPEN");
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

TEST_F(HdfsClientVerifyTest, ALeftOutUserIsRefusedThroughIDispatchToo) {
  Variant url(OLESTR("http://nn"));
  DISPPARAMS params{&url.Get(), nullptr, 1, 0};
  Variant result;
  EXCEPINFO exception{};
  EXPECT_EQ(m_client->Invoke(10, IID_NULL, 0x409, DISPATCH_METHOD, &params, result.Receive(),
                             &exception, nullptr),
            DISP_E_EXCEPTION);
  EXPECT_EQ(exception.scode, E_INVALIDARG);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
}

TEST_F(HdfsClientVerifyTest, NullPointersAreRefused) {
  EXPECT_EQ(m_client->VerifyServer(Bstr(OLESTR("http://nn")).Get(), m_empty.Get(), nullptr),
            E_POINTER);
  EXPECT_EQ(m_client->VerifyServer(nullptr, m_empty.Get(), &m_found), E_INVALIDARG);
  EXPECT_EQ(m_found, 77);
}

TEST_F(HdfsClientVerifyTest, AUrlThatIsNoneIsSFalse) {
  EXPECT_EQ(Verify(m_empty.Get(), OLESTR("ftp://nn")), S_FALSE);
  EXPECT_EQ(m_found, VARIANT_FALSE);
  EXPECT_EQ(Op(), "GETHOMEDIRECTORY");
  EXPECT_EQ(Verify(m_empty.Get(), OLESTR("https://third/?q")), S_FALSE);
  Bstr url;
  m_client->get_BaseUrl(url.Receive());
  EXPECT_EQ(url.Text(), OLESTR("https://third:50470")) << "taken over all the same";
  EXPECT_THAT(m_platform.calls, IsEmpty());
}

}  // namespace
}  // namespace velandoc::testing
