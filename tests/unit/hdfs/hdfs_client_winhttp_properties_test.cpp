#include "tests/support/thread_error.h"
#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::IsEmpty;

using HdfsClientWinHttpPropertiesTest = HdfsClientWinHttpTest;

TEST_F(HdfsClientWinHttpPropertiesTest, ANewClientHasItsDefaults) {
  const ComPtr<IHdfsClient> client = NewClient();
  USHORT port = 0;
  EXPECT_EQ(client->get_Port(&port), S_OK);
  EXPECT_EQ(port, 50070);
  VARIANT_BOOL secure = VARIANT_TRUE;
  EXPECT_EQ(client->get_Secure(&secure), S_OK);
  EXPECT_EQ(secure, VARIANT_FALSE);
  INT options = 77;
  EXPECT_EQ(client->get_Options(&options), S_OK);
  EXPECT_EQ(options, 0) << "not the other class's 2";
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
  }
  EXPECT_EQ(Error(), "none");
}

TEST_F(HdfsClientWinHttpPropertiesTest, OptionsCanBeAnyNumberAndReadBack) {
  for (const INT value : {0, 1, 2, 3, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(m_client->put_Options(value), S_OK);
    INT options = 77;
    EXPECT_EQ(m_client->get_Options(&options), S_OK);
    EXPECT_EQ(options, value);
  }
}

TEST_F(HdfsClientWinHttpPropertiesTest, OptionsHaveNoEffectOnARequest) {
  m_client->put_Secure(VARIANT_TRUE);
  for (const INT value : {0, 1, 2, 3}) {
    m_client->put_Options(value);
    m_platform.calls.clear();
    m_platform.answers = {{.sendError = ERROR_WINHTTP_SECURE_INVALID_CA}};
    EXPECT_EQ(GetText(), "") << "a certificate's problem fails the request, whatever they say";
    EXPECT_THAT(m_platform.CallsOf("WinHttpSetOption"), IsEmpty());
    EXPECT_EQ(Error(), std::string("0 ") + kUnknownError);
  }
}

TEST_F(HdfsClientWinHttpPropertiesTest, ABaseUrlThatIsNoneIsSOkAndChangesNothing) {
  EXPECT_EQ(m_client->put_BaseUrl(Bstr(OLESTR("https://other/x")).Get()), S_OK);
  for (const LPCOLESTR url : {OLESTR("ftp://third"), OLESTR("third"), OLESTR("")}) {
    EXPECT_EQ(m_client->put_BaseUrl(Bstr(url).Get()), S_OK);
    Bstr text;
    EXPECT_EQ(m_client->get_BaseUrl(text.Receive()), S_OK);
    EXPECT_EQ(text.Text(), OLESTR("https://other:50470"));
  }
  EXPECT_EQ(m_client->put_BaseUrl(nullptr), S_OK);
}

TEST_F(HdfsClientWinHttpPropertiesTest, WhatABaseUrlsParseHadStoredStays) {
  EXPECT_EQ(m_client->put_BaseUrl(Bstr(OLESTR("https://third:8/?q")).Get()), S_OK);
  Bstr text;
  m_client->get_URL(text.Receive());
  EXPECT_EQ(text.Text(), OLESTR("https://third:8/webhdfs/v1/d/f.txt"));
}

TEST_F(HdfsClientWinHttpPropertiesTest, OnlyConnectionErrorAmongThePropertiesIsInTheFunnel) {
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
  EXPECT_TRUE(keeps([&] { m_client->get_Port(&port); }));
  EXPECT_TRUE(keeps([&] { m_client->put_Port(1); }));
  EXPECT_TRUE(keeps([&] { m_client->get_ServerName(text.Receive()); }));
  EXPECT_TRUE(keeps([&] { m_client->put_ServerName(nullptr); }));
  EXPECT_TRUE(keeps([&] { m_client->get_HdfsPath(text.Receive()); }));
  EXPECT_TRUE(keeps([&] { m_client->put_HdfsPath(nullptr); }));
  EXPECT_TRUE(keeps([&] { m_client->get_UserName(text.Receive()); }));
  EXPECT_TRUE(keeps([&] { m_client->put_UserName(nullptr); }));
  EXPECT_TRUE(keeps([&] { m_client->get_BaseUrl(text.Receive()); }));
  EXPECT_TRUE(keeps([&] { m_client->put_BaseUrl(nullptr); }));
  EXPECT_TRUE(keeps([&] { m_client->get_URL(text.Receive()); }));
  EXPECT_TRUE(keeps([&] { m_client->get_Secure(&secure); }));
  EXPECT_TRUE(keeps([&] { m_client->put_Secure(0); }));
  EXPECT_TRUE(keeps([&] { m_client->get_Op(text.Receive()); }));
  EXPECT_TRUE(keeps([&] { m_client->put_Op(nullptr); }));
  EXPECT_TRUE(keeps([&] { m_client->get_Options(&options); }));
  EXPECT_TRUE(keeps([&] { m_client->put_Options(2); }));
  EXPECT_FALSE(keeps([&] { m_client->get_ConnectionError(error.Receive()); }));
  EXPECT_FALSE(keeps([&] { m_client->GetText(nullptr); }));
  EXPECT_EQ(m_client->get_ConnectionError(nullptr), E_POINTER);
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(HdfsClientWinHttpPropertiesTest, AQueryForIRawRequestGivesNoInterface) {
  const struct {
    const IID* id;
    HRESULT result;
  } rows[] = {{&IID_IUnknown, S_OK},
              {&IID_IDispatch, S_OK},
              {&IID_IHdfsClient, S_OK},
              {&IID_IRawRequest, E_NOINTERFACE},
              {&IID_ISupportErrorInfo, E_NOINTERFACE}};
  for (const auto& row : rows) {
    ComPtr<IUnknown> found;
    EXPECT_EQ(m_client->QueryInterface(*row.id, found.ReceiveVoid()), row.result);
  }
}

}  // namespace
}  // namespace velandoc::testing
