#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HdfsClientWinHttpVerifyTest : public HdfsClientWinHttpTest {
 protected:
  HRESULT Verify(const VARIANT& user, LPCOLESTR url = OLESTR("https://nn:8020/x")) {
    return m_client->VerifyServer(Bstr(url).Get(), user, &m_found);
  }
  VARIANT_BOOL m_found = 77;
  Variant m_empty;
};

TEST_F(HdfsClientWinHttpVerifyTest, TheRequestIsThatOfTheClientsPropertiesWhateverTheArguments) {
  m_client->put_UserName(Bstr(OLESTR("ann")).Get());
  m_platform.answers = {{.chunks = {R"({"Path":"/user/bob"})"}}};
  EXPECT_EQ(Verify(Variant(OLESTR("bob")).Get()), S_OK);
  EXPECT_EQ(m_found, VARIANT_TRUE);
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=OPEN&user.name=ann 0x0"));
  EXPECT_THAT(m_platform.CallsOf("WinHttpConnect"), ElementsAre("WinHttpConnect(1, h, 50070, 0)"));
  EXPECT_EQ(Op(), "OPEN");
  Bstr text;
  m_client->get_UserName(text.Receive());
  EXPECT_EQ(text.Text(), OLESTR("ann"));
  m_client->get_BaseUrl(text.Receive());
  EXPECT_EQ(text.Text(), OLESTR("http://h:50070"));
}

TEST_F(HdfsClientWinHttpVerifyTest, AHostSetsBaseUrlUserAndOpItself) {
  m_client->put_BaseUrl(Bstr(OLESTR("https://nn:8020")).Get());
  m_client->put_UserName(Bstr(OLESTR("bob")).Get());
  m_client->put_Op(Bstr(OLESTR("GETHOMEDIRECTORY")).Get());
  m_platform.answers = {{.chunks = {R"({"Path":"/user/bob"})"}}};
  EXPECT_EQ(Verify(m_empty.Get()), S_OK);
  EXPECT_EQ(m_found, VARIANT_TRUE);
  EXPECT_THAT(Requests(), ElementsAre("GET /webhdfs/v1/d/f.txt?op=GETHOMEDIRECTORY&user.name=bob "
                                      "0x800000"));
}

TEST_F(HdfsClientWinHttpVerifyTest, AFreshObjectAsksAnEmptyServerAndSaysFalse) {
  m_client = NewClient();
  EXPECT_EQ(Verify(m_empty.Get()), S_OK);
  EXPECT_EQ(m_found, VARIANT_FALSE);
  EXPECT_THAT(m_platform.CallsOf("WinHttpSendRequest"), IsEmpty());
  EXPECT_EQ(OnTheThread(), std::string("HDFS Client Connect: ") + kUnknownError)
      << "in spite of S_OK";
  EXPECT_EQ(Error(), std::string("0 ") + kUnknownError);
}

TEST_F(HdfsClientWinHttpVerifyTest, AnythingInFrontOrElseIsNoServersAnswer) {
  for (const char* body :
       {R"( {"Path":"/"})", R"({ "Path":"/"})", R"({"path":"/"})", "", "{\"Pat"}) {
    m_platform.answers = {{.chunks = {body}}};
    m_found = VARIANT_TRUE;
    EXPECT_EQ(Verify(m_empty.Get()), S_OK);
    EXPECT_EQ(m_found, VARIANT_FALSE) << body;
  }
}

TEST_F(HdfsClientWinHttpVerifyTest, TheStatusPlaysNoPart) {
  m_platform.answers = {{.status = OLESTR("401"), .chunks = {R"({"Path":"/"})"}}};
  EXPECT_EQ(Verify(m_empty.Get()), S_OK);
  EXPECT_EQ(m_found, VARIANT_TRUE);
  EXPECT_EQ(Error(), "401 ");
}

TEST_F(HdfsClientWinHttpVerifyTest, ABodyThatBreaksOffIsLookedAtAllTheSame) {
  m_platform.answers = {{.chunks = {R"({"Path":"/"})"}, .readError = 12030}};
  EXPECT_EQ(Verify(m_empty.Get()), S_OK);
  EXPECT_EQ(m_found, VARIANT_TRUE);
}

TEST_F(HdfsClientWinHttpVerifyTest, AUserWhoIsLeftOutIsAcceptedAndOtherTypesAreNot) {
  const Variant missing(DISP_E_PARAMNOTFOUND, VT_ERROR);
  m_platform.answers = {{}};
  EXPECT_EQ(Verify(missing.Get()), S_OK);
  for (const VARTYPE type : {VT_NULL, VT_I4, VT_BOOL, VT_UNKNOWN}) {
    VARIANT other{};
    other.vt = type;
    m_found = 77;
    EXPECT_EQ(Verify(other), E_INVALIDARG) << type;
    EXPECT_EQ(m_found, 77) << "untouched";
  }
  EXPECT_EQ(m_client->VerifyServer(nullptr, m_empty.Get(), &m_found), E_INVALIDARG);
  EXPECT_EQ(m_client->VerifyServer(Bstr(OLESTR("http://nn")).Get(), m_empty.Get(), nullptr),
            E_POINTER);
  EXPECT_EQ(m_found, 77);
  EXPECT_EQ(Requests().size(), 1U);
}

TEST_F(HdfsClientWinHttpVerifyTest, AUserWhoIsLeftOutIsAcceptedThroughIDispatch) {
  m_platform.answers = {{.chunks = {R"({"Path":"/"})"}}};
  Variant url(OLESTR("no url at all"));
  DISPPARAMS params{&url.Get(), nullptr, 1, 0};
  Variant result;
  EXPECT_EQ(m_client->Invoke(10, IID_NULL, 0x409, DISPATCH_METHOD, &params, result.Receive(),
                             nullptr, nullptr),
            S_OK);
  EXPECT_EQ(result.Get().vt, VT_BOOL);
  EXPECT_EQ(result.Get().boolVal, VARIANT_TRUE);
}

}  // namespace
}  // namespace velandoc::testing
