// CHdfsClientWinHttp: is there a WebHDFS server?
#include "hdfs/automation_funnel.h"
#include "hdfs/hdfs_client_winhttp.h"
#include "hdfs/server_answers.h"
#include "platform/results.h"

namespace velandoc {

STDMETHODIMP CHdfsClientWinHttp::VerifyServer(BSTR URL, VARIANT UserName, VARIANT_BOOL* bRet) {
  return AutomationFunnel("CHdfsClientWinHttp::VerifyServer", [&]() -> FunnelResult {
    if (bRet == nullptr) return E_POINTER;
    if (URL == nullptr) return E_INVALIDARG;
    if (UserName.vt != VT_EMPTY && UserName.vt != VT_BSTR && UserName.vt != VT_ERROR) {
      return E_INVALIDARG;
    }
    *bRet = VARIANT_FALSE;
    // The request has always been that of the client's own properties, and not one for `URL` and
    // `UserName`. Hosts set BaseUrl, UserName and Op before they call, so it can't be changed.
    CHdfsHttpConnection connection(RequestUrl().c_str());
    RunRequest(connection);
    *bRet = AutomationBool(IsHomeDirectory(connection.m_responseText));
    return S_OK;
  });
}

}  // namespace velandoc
