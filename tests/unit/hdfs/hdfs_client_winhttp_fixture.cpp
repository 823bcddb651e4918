#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"

#include "hdfs/hdfs_client_winhttp.h"
#include "tests/support/variant_text.h"

namespace velandoc::testing {

HdfsClientWinHttpTest::HdfsClientWinHttpTest() : HdfsHostTest(&NewClient, CLSID_HdfsClientWinHttp) {
  m_services.texts[12029] = OLESTR("cannot connect\r\n");
  m_services.texts[12030] = OLESTR("broke off\r\n");
  m_services.texts[0x80004005] = OLESTR("failed\r\n");
  m_services.texts[0x80070057] = OLESTR("bad argument\r\n");
}

HdfsClientWinHttpTest::~HdfsClientWinHttpTest() = default;

ComPtr<IHdfsClient> HdfsClientWinHttpTest::NewClient() {
  ComPtr<IHdfsClient> client;
  EXPECT_EQ(CHdfsClientWinHttp::CreateObject(nullptr, IID_IHdfsClient, client.ReceiveVoid()), S_OK);
  return client;
}

std::vector<std::string> HdfsClientWinHttpTest::Requests() const {
  return RequestsOf(m_platform.CallsOf("WinHttpOpenRequest"));
}

std::string HdfsClientWinHttpTest::GetText() {
  Bstr text;
  EXPECT_EQ(m_client->GetText(text.Receive()), S_OK);
  return DescribeText(text.View());
}

}  // namespace velandoc::testing
