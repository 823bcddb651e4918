// A CHdfsClientWinHttp over a scripted WinHttp.
//
// Reading ConnectionError clears the thread's error object in this class, so OnTheThread is asked
// before Error.
#pragma once

#include "hdfs/hdfs_client_winhttp.h"
#include "tests/support/scripted_winhttp.h"
#include "tests/unit/hdfs/hdfs_host_test.h"

namespace velandoc::testing {

inline constexpr char kUnknownError[] = "Unknown connection error with server.";

class HdfsClientWinHttpTest : public HdfsHostTest {
 protected:
  HdfsClientWinHttpTest() : HdfsHostTest(&NewClient, CLSID_HdfsClientWinHttp) {
    m_services.texts[12029] = OLESTR("cannot connect\r\n");
    m_services.texts[12030] = OLESTR("broke off\r\n");
    m_services.texts[0x80004005] = OLESTR("failed\r\n");
    m_services.texts[0x80070057] = OLESTR("bad argument\r\n");
  }

  static ComPtr<IHdfsClient> NewClient() {
    ComPtr<IHdfsClient> client;
    EXPECT_EQ(CHdfsClientWinHttp::CreateObject(nullptr, IID_IHdfsClient, client.ReceiveVoid()),
              S_OK);
    return client;
  }
  /// "VERB target flags" of every request that was opened.
  std::vector<std::string> Requests() const {
    return RequestsOf(m_platform.CallsOf("WinHttpOpenRequest"));
  }
  /// The text, whose result must be S_OK.
  std::string GetText() {
    Bstr text;
    EXPECT_EQ(m_client->GetText(text.Receive()), S_OK);
    return DescribeText(text.View());
  }

  ScriptedWinHttp m_platform;
  PortScope<WinHttp> m_platformScope{m_platform};
};

}  // namespace velandoc::testing
