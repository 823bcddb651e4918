// CHdfsClientWinHttp: a file to the server, in the two steps of WebHDFS. The name node says by a
// 307 where the body goes, and the data node there takes it with a 201.
#include "hdfs/automation_funnel.h"
#include "hdfs/hdfs_client_winhttp.h"
#include "hdfs/upload_source.h"
#include "platform/ansi_text.h"

namespace velandoc {
namespace {

constexpr DWORD kStatusCreated = 201;
constexpr DWORD kStatusRedirect = 307;

}  // namespace

STDMETHODIMP CHdfsClientWinHttp::Upload(VARIANT FileNameOrStream, VARIANT_BOOL OverwriteFlag,
                                        BSTR OctalPermissions) {
  return AutomationFunnel("CHdfsClientWinHttp::Upload", [&]() -> FunnelResult {
    const WideView permissions = ViewOf(OctalPermissions);
    ComPtr<IStream> source;
    const HRESULT opened = OpenUploadSource(FileNameOrStream, permissions, source);
    if (FAILED(opened)) {
      ReportHresultError(opened, kUploadSource);
      return opened;
    }
    SelectOp(OLESTR("CREATE"));
    const bool overwrites = OverwriteFlag != VARIANT_FALSE;
    m_params.SetQueryParam(OLESTR("overwrite"), overwrites ? OLESTR("true") : OLESTR("false"));
    if (!permissions.empty()) m_params.SetQueryParam(OLESTR("permission"), permissions);
    WideString location;
    const HRESULT asked = AskWhereToUpload(location);
    if (location.empty()) return WriteIfFailed(asked);
    return SendUpload(location, *source) ? S_OK : E_FAIL;
  });
}

HRESULT CHdfsClientWinHttp::AskWhereToUpload(WideString& location) {
  CHdfsHttpConnection connection(RequestUrl().c_str());
  connection.m_verb = OLESTR("PUT");
  connection.m_noRedirect = true;
  const HRESULT result = RunRequest(connection);
  if (connection.m_statusCode == kStatusRedirect) {
    connection.QueryHeader(WINHTTP_QUERY_LOCATION, location);
  }
  return result;
}

bool CHdfsClientWinHttp::SendUpload(const WideString& location, IStream& source) {
  CHdfsHttpConnection connection(location.c_str());
  connection.m_verb = OLESTR("PUT");
  if (FAILED(connection.SendStream(&source))) {
    ReportLastError();
    return false;
  }
  if (connection.QueryStatusCode() == kStatusCreated) {
    // The thread's error object alone: ConnectionError still tells of the 307.
    SetErrorInfo(0, nullptr);
    return true;
  }
  ReportTextError(FromThreadAnsi(connection.m_responseText), kUploadSource);
  return false;
}

}  // namespace velandoc
