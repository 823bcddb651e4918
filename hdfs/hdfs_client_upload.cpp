// CHdfsClient: a file to the server, in the two steps of WebHDFS. The name node says by a 307 where
// the body goes, and the data node there takes it with a 201.
#include <array>

#include "hdfs/automation_funnel.h"
#include "hdfs/hdfs_client.h"
#include "hdfs/upload_source.h"
#include "platform/ansi_text.h"

namespace velandoc {
namespace {

constexpr DWORD kStatusCreated = 201;
constexpr DWORD kStatusRedirect = 307;
constexpr ULONG kChunkSize = 8192;

/// What the stream says it holds, less its high half; 0 if it doesn't say.
DWORD AnnouncedLength(IStream& source) {
  STATSTG stat{};
  source.Stat(&stat, STATFLAG_NONAME);
  return static_cast<DWORD>(stat.cbSize.QuadPart);
}

/// Nothing is told here: a write that failed shows when the request is ended.
void WriteStreamToRequest(IStream& source, HINTERNET request) {
  WinInet& platform = CurrentPort<WinInet>();
  std::array<char, kChunkSize> chunk;
  HRESULT result = S_OK;
  ULONG read = 0;
  do {
    read = 0;
    result = source.Read(chunk.data(), kChunkSize, &read);
    DWORD written = 0;
    if (read != 0 && !platform.InternetWriteFile(request, chunk.data(), read, &written)) return;
    // Some streams say S_FALSE at their end, others S_OK with no bytes.
  } while (result == S_OK && read != 0);
}

}  // namespace

STDMETHODIMP CHdfsClient::Upload(VARIANT FileNameOrStream, VARIANT_BOOL OverwriteFlag,
                                 BSTR OctalPermissions) {
  return AutomationFunnel("CHdfsClient::Upload", [&]() -> FunnelResult {
    const WideView permissions = ViewOf(OctalPermissions);
    ComPtr<IStream> source;
    const HRESULT opened = OpenUploadSource(FileNameOrStream, permissions, source);
    if (FAILED(opened)) {
      ReportHresultError(opened, kUploadSource);
      return opened;
    }
    SelectOp(OLESTR("CREATE"));
    const bool overwrites = OverwriteFlag != VARIANT_FALSE;
    WideString url = BuildOpUrl(m_op);
    url += overwrites ? OLESTR("&overwrite=true") : OLESTR("&overwrite=false");
    if (!permissions.empty()) url.append(OLESTR("&permission=")).append(permissions);
    WideString location;
    const HRESULT asked = AskWhereToUpload(url, location);
    if (location.empty()) return asked;
    return SendUpload(location, *source) ? S_OK : E_FAIL;
  });
}

HRESULT CHdfsClient::AskWhereToUpload(const WideString& url, WideString& location) {
  CHdfsConnection connection(url.c_str());
  connection.m_verb = OLESTR("PUT");
  connection.m_requestFlags |= INTERNET_FLAG_NO_AUTO_REDIRECT;
  // A 307 is a failure here and the usual way: it has made the error objects that a success behind
  // it takes back in part. A 200 means that the server took an empty file; that stays S_OK.
  const HRESULT result = RunRequest(connection);
  if (connection.m_statusCode == kStatusRedirect) {
    connection.QueryHeader(HTTP_QUERY_LOCATION, location);
  }
  return result;
}

bool CHdfsClient::SendUpload(const WideString& location, IStream& source) {
  const DWORD length = AnnouncedLength(source);
  CHdfsConnection connection(location.c_str());
  if (!connection.BeginWrite(length)) {
    ReportLastError();
    return false;
  }
  WriteStreamToRequest(source, connection.m_hRequest);
  if (!CurrentPort<WinInet>().HttpEndRequestW(connection.m_hRequest, nullptr, 0, 0)) {
    ReportLastError();
    return false;
  }
  if (connection.QueryStatusCode() == kStatusCreated) {
    // The thread's error object alone: ConnectionError still tells of the 307.
    SetErrorInfo(0, nullptr);
    return true;
  }
  CMemFile answer;
  connection.m_sink = &answer;
  connection.ReadResponse();
  ReportTextError(FromThreadAnsi(answer.GetContent()), kUploadSource);
  return false;
}

}  // namespace velandoc
