// CHdfsClient: bodies as a stream and as text.
#include "connection/utf8.h"
#include "hdfs/automation_funnel.h"
#include "hdfs/hdfs_client.h"
#include "hdfs/response_stream.h"
#include "platform/out_of_memory.h"

namespace velandoc {

STDMETHODIMP CHdfsClient::Stream(IStream** pVal) {
  return AutomationFunnel("CHdfsClient::Stream", [&]() -> FunnelResult {
    if (pVal == nullptr) return E_POINTER;
    auto connection = std::make_unique<CHdfsConnection>(BuildOpUrl(m_op).c_str());
    if (FAILED(RunRequest(*connection))) return E_FAIL;
    const HRESULT result = CreateResponseStream(std::move(connection), pVal);
    return FAILED(result) ? result : S_OK;
  });
}

STDMETHODIMP CHdfsClient::GetText(BSTR* Text) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  if (Text == nullptr) return E_POINTER;
  return RaiseOutOfMemory([&] { return ReadText(BuildOpUrl(m_op).c_str(), Text); });
}

STDMETHODIMP CHdfsClient::Request(BSTR URL, BSTR* Data) {
  return AutomationFunnel("CHdfsClient::Request", [&]() -> FunnelResult {
    if (Data == nullptr) return E_POINTER;
    return ReadText(URL, Data);
  });
}

HRESULT CHdfsClient::ReadText(LPCWSTR url, BSTR* text) {
  CMemFile body;
  CHdfsConnection connection(url);
  connection.m_sink = &body;
  const HRESULT result = RunRequest(connection);
  if (SUCCEEDED(result)) *text = Bstr(FromUtf8(body.GetContent().c_str())).Detach();
  return result;
}

}  // namespace velandoc
