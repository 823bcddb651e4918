// CHdfsClient: is there a WebHDFS server?
#include <array>

#include "hdfs/automation_funnel.h"
#include "hdfs/hdfs_client.h"
#include "hdfs/server_answers.h"

namespace velandoc {
namespace {

constexpr DWORD kTestedSize = 1024;

bool BeginsAsExpected(const CHdfsConnection& connection) {
  std::array<char, kTestedSize> body{};
  DWORD count = 0;
  CurrentPort<WinInet>().InternetReadFile(connection.m_hRequest, body.data(), kTestedSize, &count);
  return IsHomeDirectory({body.data(), count});
}

}  // namespace

STDMETHODIMP CHdfsClient::VerifyServer(BSTR URL, VARIANT UserName, VARIANT_BOOL* bRet) {
  return AutomationFunnel("CHdfsClient::VerifyServer", [&]() -> FunnelResult {
    if (bRet == nullptr) return E_POINTER;
    if (URL == nullptr) return E_INVALIDARG;
    if (UserName.vt == VT_BSTR) {
      put_UserName(UserName.bstrVal);
    } else if (UserName.vt != VT_EMPTY) {
      return E_INVALIDARG;
    }
    SelectOp(OLESTR("GETHOMEDIRECTORY"));
    *bRet = VARIANT_FALSE;
    if (FAILED(put_BaseUrl(URL))) return S_FALSE;
    // HdfsPath stays in the URL; the operation does not mind.
    CHdfsConnection connection(BuildOpUrl(m_op).c_str());
    if (SUCCEEDED(RunRequest(connection)) && BeginsAsExpected(connection)) *bRet = VARIANT_TRUE;
    return S_OK;
  });
}

}  // namespace velandoc
