// CHdfsClient: bodies into local files.
#include "hdfs/automation_funnel.h"
#include "hdfs/hdfs_client.h"
#include "hdfs/local_download.h"
#include "hdfs/response_source.h"

namespace velandoc {

STDMETHODIMP CHdfsClient::Download(VARIANT_BOOL RandomName, BSTR LocalPath, BSTR* SavedPath) {
  return AutomationFunnel("CHdfsClient::Download", [&] {
    return DownloadToFile(m_hdfsPath, RandomName, LocalPath, SavedPath, [&](CFile& sink) {
      CHdfsConnection connection(BuildOpUrl(m_op).c_str());
      connection.m_sink = &sink;
      return SUCCEEDED(RunRequest(connection));
    });
  });
}

STDMETHODIMP CHdfsClient::DownloadPreview(LONG NumberOfLines, BSTR* SavedPath) {
  return AutomationFunnel("CHdfsClient::DownloadPreview", [&] {
    return DownloadToPreview(m_hdfsPath, SavedPath, [&](CFile& sink) {
      CHdfsConnection connection(BuildOpUrl(m_op).c_str());
      if (FAILED(RunRequest(connection))) return false;
      ResponseSource<WinInet, CHdfsConnection> source(connection);
      if (CopyPreviewLines(source, NumberOfLines, sink)) return true;
      // The error goes in as it is, where a result is expected.
      SetConnectionErrorText(m_connectionError.Get(), static_cast<LONG>(source.Error()));
      return false;
    });
  });
}

}  // namespace velandoc
