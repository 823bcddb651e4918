// CHdfsClient: bodies into local files.
#include "hdfs/automation_funnel.h"
#include "hdfs/download_file.h"
#include "hdfs/hdfs_client.h"
#include "hdfs/local_path.h"
#include "hdfs/preview_lines.h"

namespace velandoc {
namespace {

constexpr unsigned char kUtf8Mark[] = {0xEF, 0xBB, 0xBF};

/// The file is kept and its path given to the caller, or neither.
void Hand(DownloadFile& file, BSTR* savedPath) {
  Bstr path(file.Path());
  file.Keep();
  if (savedPath != nullptr) *savedPath = path.Detach();
}

class ResponseSource final : public PreviewSource {
 public:
  explicit ResponseSource(const CHdfsConnection& connection) : m_connection(connection) {}

  bool ReadChunk(void* buffer, std::uint32_t* count) override {
    WinInet& platform = CurrentPort<WinInet>();
    DWORD read = 0;
    const BOOL isRead =
        platform.InternetReadFile(m_connection.m_hRequest, buffer, kChunkSize, &read);
    // At once: closing the file may put another error in its place.
    if (!isRead) m_error = platform.GetLastError();
    *count = read;
    return isRead != FALSE;
  }

  DWORD Error() const { return m_error; }

 private:
  const CHdfsConnection& m_connection;
  DWORD m_error = 0;
};

}  // namespace

STDMETHODIMP CHdfsClient::Download(VARIANT_BOOL RandomName, BSTR LocalPath, BSTR* SavedPath) {
  return AutomationFunnel("CHdfsClient::Download", [&]() -> FunnelResult {
    const WideView localPath = ViewOf(LocalPath);
    const bool isRandom = RandomName != VARIANT_FALSE;
    if (!localPath.empty() && isRandom) return E_INVALIDARG;
    DownloadFile file(MakeLocalPath(m_hdfsPath, isRandom, localPath), isRandom);
    if (!file.Open()) return E_ACCESSDENIED;
    CHdfsConnection connection(BuildOpUrl(m_op).c_str());
    connection.m_sink = &file.Sink();
    if (FAILED(RunRequest(connection))) return E_FAIL;
    Hand(file, SavedPath);
    return S_OK;
  });
}

STDMETHODIMP CHdfsClient::DownloadPreview(LONG NumberOfLines, BSTR* SavedPath) {
  return AutomationFunnel("CHdfsClient::DownloadPreview", [&]() -> FunnelResult {
    DownloadFile file(MakeLocalPath(m_hdfsPath, true, {}), true);
    if (!file.Open()) return E_ACCESSDENIED;
    // Before anything is known of the coding; UTF-16 gets them too.
    file.Sink().Write(kUtf8Mark, sizeof kUtf8Mark);
    CHdfsConnection connection(BuildOpUrl(m_op).c_str());
    if (FAILED(RunRequest(connection))) return E_FAIL;
    ResponseSource source(connection);
    if (!CopyPreviewLines(source, NumberOfLines, file.Sink())) {
      // The error goes in as it is, where a result is expected.
      SetConnectionErrorText(m_connectionError.Get(), static_cast<LONG>(source.Error()));
      return E_FAIL;
    }
    Hand(file, SavedPath);
    return S_OK;
  });
}

}  // namespace velandoc
