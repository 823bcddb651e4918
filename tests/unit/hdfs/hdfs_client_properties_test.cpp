#include "tests/support/thread_error.h"
#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc::testing {
namespace {

using HdfsClientPropertiesTest = HdfsClientTest;

TEST_F(HdfsClientPropertiesTest, ANewClientHasItsDefaults) {
  const ComPtr<IHdfsClient> client = NewClient();
  USHORT port = 0;
  EXPECT_EQ(client->get_Port(&port), S_OK);
  EXPECT_EQ(port, 50070);
  VARIANT_BOOL secure = VARIANT_TRUE;
  EXPECT_EQ(client->get_Secure(&secure), S_OK);
  EXPECT_EQ(secure, VARIANT_FALSE);
  INT options = 0;
  EXPECT_EQ(client->get_Options(&options), S_OK);
  EXPECT_EQ(options, scHdfsReportSSLCertificateErrors);
  const struct {
    HRESULT (STDMETHODCALLTYPE IHdfsClient::*get)(BSTR*);
    LPCOLESTR value;
  } rows[] = {
      {&IHdfsClient::get_ServerName, OLESTR("")},      {&IHdfsClient::get_HdfsPath, OLESTR("")},
      {&IHdfsClient::get_UserName, OLESTR("")},        {&IHdfsClient::get_BaseUrl, OLESTR("")},
      {&IHdfsClient::get_URL, OLESTR("/webhdfs/v1/")}, {&IHdfsClient::get_Op, OLESTR("OPEN")}};
  for (const auto& row : rows) {
    Bstr text;
    EXPECT_EQ((client.Get()->*row.get)(text.Receive()), S_OK);
    EXPECT_EQ(text.Text(), row.value);
    EXPECT_EQ((client.Get()->*row.get)(nullptr), E_POINTER);
  }
  EXPECT_EQ(client->get_Secure(nullptr), E_POINTER);
  EXPECT_EQ(client->get_Options(nullptr), E_POINTER);
  EXPECT_EQ(client->get_ConnectionError(nullptr), E_POINTER);
}

TEST_F(HdfsClientPropertiesTest, BaseUrlIsTakenApartAndPutTogether) {
  EXPECT_EQ(m_client->put_BaseUrl(Bstr(OLESTR("https://other/x")).Get()), S_OK);
  Bstr url;
  EXPECT_EQ(m_client->get_BaseUrl(url.Receive()), S_OK);
  EXPECT_EQ(url.Text(), OLESTR("https://other:50470"));
  EXPECT_EQ(m_client->get_URL(url.Receive()), S_OK);
  EXPECT_EQ(url.Text(), OLESTR("https://other:50470/webhdfs/v1/d/f.txt"));
  EXPECT_EQ(m_client->put_BaseUrl(Bstr(OLESTR("ftp://third")).Get()), E_INVALIDARG);
  EXPECT_EQ(m_client->put_BaseUrl(nullptr), E_INVALIDARG);
  m_client->get_BaseUrl(url.Receive());
  EXPECT_EQ(url.Text(), OLESTR("https://other:50470"));
  EXPECT_THAT(m_services.lines, ::testing::IsEmpty()) << "a result is no exception";
}

TEST_F(HdfsClientPropertiesTest, ThereIsNoConnectionErrorBeforeTheFirstRequest) {
  EXPECT_EQ(Error(), "none");
}

TEST_F(HdfsClientPropertiesTest, MembersInTheFunnelClearTheThreadsErrorAndTheOthersDoNot) {
  const auto keeps = [&](auto&& call) {
    SetErrorInfo(0, MakeErrorInfo(OLESTR("older")).Get());
    call();
    return TakeThreadError().isThere;
  };
  Bstr text;
  USHORT port = 0;
  VARIANT_BOOL secure = 0;
  INT options = 0;
  ComPtr<IConnectionError> error;
  EXPECT_FALSE(keeps([&] { m_client->get_Port(&port); }));
  EXPECT_FALSE(keeps([&] { m_client->put_Port(1); }));
  EXPECT_FALSE(keeps([&] { m_client->get_ServerName(text.Receive()); }));
  EXPECT_FALSE(keeps([&] { m_client->get_URL(text.Receive()); }));
  EXPECT_FALSE(keeps([&] { m_client->get_BaseUrl(text.Receive()); }));
  EXPECT_FALSE(keeps([&] { m_client->get_Secure(&secure); }));
  EXPECT_FALSE(keeps([&] { m_client->get_Options(&options); }));
  EXPECT_FALSE(keeps([&] { m_client->put_Options(2); }));
  EXPECT_TRUE(keeps([&] { m_client->put_Secure(0); }));
  EXPECT_TRUE(keeps([&] { m_client->get_Op(text.Receive()); }));
  EXPECT_TRUE(keeps([&] { m_client->put_Op(nullptr); }));
  EXPECT_TRUE(keeps([&] { m_client->get_ConnectionError(error.Receive()); }));
  EXPECT_TRUE(keeps([&] { m_client->GetText(nullptr); }));
}

TEST_F(HdfsClientPropertiesTest, AnswersToItsInterfacesOnly) {
  const struct {
    const IID* id;
    HRESULT result;
  } rows[] = {{&IID_IUnknown, S_OK},
              {&IID_IDispatch, S_OK},
              {&IID_IHdfsClient, S_OK},
              {&IID_IRawRequest, S_OK},
              {&IID_ISupportErrorInfo, E_NOINTERFACE},
              {&IID_IClient, E_NOINTERFACE}};
  for (const auto& row : rows) {
    ComPtr<IUnknown> found;
    EXPECT_EQ(m_client->QueryInterface(*row.id, found.ReceiveVoid()), row.result);
  }
}

}  // namespace
}  // namespace velandoc::testing
