#include "tests/unit/hdfs/hdfs_client_fixture.h"

#include "hdfs/hdfs_client.h"

namespace velandoc::testing {

BOOL HdfsWinInet::InternetQueryOptionW(HINTERNET, DWORD option, LPVOID buffer, DWORD* size) {
  EXPECT_EQ(option, INTERNET_OPTION_SECURITY_FLAGS);
  EXPECT_EQ(*size, 4U);
  *static_cast<DWORD*>(buffer) = securityFlags;
  return TRUE;
}

BOOL HdfsWinInet::InternetSetOptionW(HINTERNET, DWORD option, LPVOID buffer, DWORD size) {
  EXPECT_EQ(option, INTERNET_OPTION_SECURITY_FLAGS);
  EXPECT_EQ(size, 4U);
  securityFlags = *static_cast<DWORD*>(buffer);
  return TRUE;
}

BOOL HdfsWinInet::InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* count) {
  const BOOL result = ScriptedWinInet::InternetWriteFile(request, buffer, size, count);
  return writeFails ? FALSE : result;
}

BOOL HdfsWinInet::HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* out, DWORD flags,
                                  DWORD_PTR context) {
  const BOOL result = ScriptedWinInet::HttpEndRequestW(request, out, flags, context);
  m_ended = endFails;
  return endFails ? FALSE : result;
}

DWORD HdfsWinInet::GetLastError() {
  const DWORD error = ScriptedWinInet::GetLastError();
  return m_ended ? ERROR_INTERNET_CONNECTION_RESET : error;
}

HdfsClientTest::HdfsClientTest() : HdfsHostTest(&NewClient, CLSID_HdfsClient) {
  m_services.texts[12029] = OLESTR("cannot connect\r\n");
  m_services.texts[12030] = OLESTR("broke off\r\n");
  m_services.texts[12031] = OLESTR("reset\r\n");
}

HdfsClientTest::~HdfsClientTest() = default;

ComPtr<IHdfsClient> HdfsClientTest::NewClient() {
  ComPtr<IHdfsClient> client;
  EXPECT_EQ(CHdfsClient::CreateObject(nullptr, IID_IHdfsClient, client.ReceiveVoid()), S_OK);
  return client;
}

std::vector<std::string> HdfsClientTest::Requests() const {
  return RequestsOf(m_platform.CallsOf("HttpOpenRequestW"));
}

}  // namespace velandoc::testing
