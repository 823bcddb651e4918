// A CHdfsClient over a scripted WinInet.
#pragma once

#include "hdfs/hdfs_client.h"
#include "tests/support/scripted_wininet.h"
#include "tests/unit/hdfs/hdfs_host_test.h"

namespace velandoc::testing {

/// Security flags that can be read and written, and uploads that break.
class HdfsWinInet final : public ScriptedWinInet {
 public:
  DWORD securityFlags = 1;
  bool writeFails = false;
  bool endFails = false;

  BOOL InternetQueryOptionW(HINTERNET, DWORD option, LPVOID buffer, DWORD* size) override {
    EXPECT_EQ(option, INTERNET_OPTION_SECURITY_FLAGS);
    EXPECT_EQ(*size, 4U);
    *static_cast<DWORD*>(buffer) = securityFlags;
    return TRUE;
  }
  BOOL InternetSetOptionW(HINTERNET, DWORD option, LPVOID buffer, DWORD size) override {
    EXPECT_EQ(option, INTERNET_OPTION_SECURITY_FLAGS);
    EXPECT_EQ(size, 4U);
    securityFlags = *static_cast<DWORD*>(buffer);
    return TRUE;
  }
  BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* count) override {
    const BOOL result = ScriptedWinInet::InternetWriteFile(request, buffer, size, count);
    return writeFails ? FALSE : result;
  }
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* out, DWORD flags,
                       DWORD_PTR context) override {
    const BOOL result = ScriptedWinInet::HttpEndRequestW(request, out, flags, context);
    m_ended = endFails;
    return endFails ? FALSE : result;
  }
  DWORD GetLastError() override {
    const DWORD error = ScriptedWinInet::GetLastError();
    return m_ended ? ERROR_INTERNET_CONNECTION_RESET : error;
  }

 private:
  bool m_ended = false;
};

class HdfsClientTest : public HdfsHostTest {
 protected:
  HdfsClientTest() : HdfsHostTest(&NewClient, CLSID_HdfsClient) {
    m_services.texts[12029] = OLESTR("cannot connect\r\n");
    m_services.texts[12030] = OLESTR("broke off\r\n");
    m_services.texts[12031] = OLESTR("reset\r\n");
  }

  static ComPtr<IHdfsClient> NewClient() {
    ComPtr<IHdfsClient> client;
    EXPECT_EQ(CHdfsClient::CreateObject(nullptr, IID_IHdfsClient, client.ReceiveVoid()), S_OK);
    return client;
  }
  /// "VERB target flags" of every request that was opened.
  std::vector<std::string> Requests() const {
    return RequestsOf(m_platform.CallsOf("HttpOpenRequestW"));
  }

  HdfsWinInet m_platform;
  PortScope<WinInet> m_platformScope{m_platform};
};

}  // namespace velandoc::testing
