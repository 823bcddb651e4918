// CHdfsClientWinHttp: bodies into local files, as a stream and as text.
#include "hdfs/automation_funnel.h"
#include "hdfs/hdfs_client_winhttp.h"
#include "hdfs/local_download.h"
#include "hdfs/response_source.h"
#include "hdfs/response_stream.h"
#include "platform/ansi_text.h"

namespace velandoc {

STDMETHODIMP CHdfsClientWinHttp::Download(VARIANT_BOOL RandomName, BSTR LocalPath,
                                          BSTR* SavedPath) {
  return AutomationFunnel("CHdfsClientWinHttp::Download", [&] {
    return DownloadToFile(m_params.m_hdfsPath, RandomName, LocalPath, SavedPath, [&](CFile& sink) {
      CHdfsHttpConnection connection(RequestUrl().c_str());
      connection.m_sink = &sink;
      return SUCCEEDED(RunRequest(connection));
    });
  });
}

STDMETHODIMP CHdfsClientWinHttp::DownloadPreview(LONG NumberOfLines, BSTR* SavedPath) {
  return AutomationFunnel("CHdfsClientWinHttp::DownloadPreview", [&] {
    return DownloadToPreview(m_params.m_hdfsPath, SavedPath, [&](CFile& sink) {
      CHdfsHttpConnection connection(RequestUrl().c_str());
      connection.m_keepBody = true;
      if (FAILED(RunRequest(connection))) return false;
      ResponseSource<WinHttp, CHdfsHttpConnection> source(connection);
      if (CopyPreviewLines(source, NumberOfLines, sink)) return true;
      // The error goes in as it is, where a result is expected.
      SetConnectionErrorText(m_connectionError.Get(), static_cast<LONG>(source.Error()));
      return false;
    });
  });
}

STDMETHODIMP CHdfsClientWinHttp::Stream(IStream** pVal) {
  return AutomationFunnel("CHdfsClientWinHttp::Stream", [&]() -> FunnelResult {
    if (pVal == nullptr) return E_POINTER;
    auto connection = std::make_unique<CHdfsHttpConnection>(RequestUrl().c_str());
    connection->m_keepBody = true;
    if (FAILED(RunRequest(*connection))) return E_FAIL;
    const HRESULT result = CreateResponseStream(std::move(connection), pVal);
    return FAILED(result) ? result : S_OK;
  });
}

STDMETHODIMP CHdfsClientWinHttp::GetText(BSTR* Text) {
  return AutomationFunnel("CHdfsClientWinHttp::GetText", [&]() -> FunnelResult {
    if (Text == nullptr) return E_POINTER;
    CHdfsHttpConnection connection(RequestUrl().c_str());
    // What came is the result, even if nothing did.
    RunRequest(connection);
    *Text = Bstr(FromAnsi(connection.m_responseText)).Detach();
    return S_OK;
  });
}

}  // namespace velandoc
