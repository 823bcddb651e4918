// CHdfsClient: the operations that a server answers with true or false.
#include "hdfs/automation_funnel.h"
#include "hdfs/encode_url_part.h"
#include "hdfs/hdfs_client.h"
#include "hdfs/octal_permissions.h"
#include "hdfs/server_answers.h"

namespace velandoc {

STDMETHODIMP CHdfsClient::Delete(VARIANT_BOOL Recursive, VARIANT_BOOL* Success) {
  return AutomationFunnel("CHdfsClient::Delete", [&] {
    if (Success != nullptr) *Success = VARIANT_FALSE;
    SelectOp(OLESTR("DELETE"));
    const bool isRecursive = Recursive != VARIANT_FALSE;
    return WriteIfFailed(RunChange(
        OLESTR("DELETE"),
        BuildOpUrl(m_op) + (isRecursive ? OLESTR("&recursive=true") : OLESTR("&recursive=false")),
        Success));
  });
}

STDMETHODIMP CHdfsClient::Rename(BSTR NewName, VARIANT_BOOL* Succes) {
  return AutomationFunnel("CHdfsClient::Rename", [&] {
    if (Succes != nullptr) *Succes = VARIANT_FALSE;
    SelectOp(OLESTR("RENAME"));
    return WriteIfFailed(RunChange(
        OLESTR("PUT"),
        BuildOpUrl(m_op) + OLESTR("&destination=") + EncodeUrlPart(ViewOf(NewName), false),
        Succes));
  });
}

STDMETHODIMP CHdfsClient::CreateFolder(BSTR OctalPermissions, VARIANT_BOOL* Success) {
  return AutomationFunnel("CHdfsClient::CreateFolder", [&] {
    const WideView permissions = ViewOf(OctalPermissions);
    if (!permissions.empty() && !IsValidOctalPermissions(permissions)) {
      ReportHresultError(E_INVALIDARG, kCreateFolderSource);
      return WriteIfFailed(E_INVALIDARG);
    }
    if (Success != nullptr) *Success = VARIANT_FALSE;
    SelectOp(OLESTR("MKDIRS"));
    WideString url = BuildOpUrl(m_op);
    if (!permissions.empty()) url.append(OLESTR("&permission=")).append(permissions);
    return WriteIfFailed(RunChange(OLESTR("PUT"), url, Success));
  });
}

HRESULT CHdfsClient::RunChange(LPCWSTR verb, const WideString& url, VARIANT_BOOL* success) {
  CMemFile answer;
  CHdfsConnection connection(url.c_str());
  connection.m_verb = verb;
  connection.m_sink = &answer;
  const HRESULT result = RunRequest(connection);
  if (FAILED(result)) return result;
  // Finds the end of the body at once: servers have always seen it read to there.
  connection.ReadResponse();
  if (success != nullptr && SaysTrue(answer.GetContent())) *success = VARIANT_TRUE;
  return result;
}

}  // namespace velandoc
