// CHdfsClient: its properties and how its requests are run.
#include "hdfs/hdfs_client.h"

#include "hdfs/automation_funnel.h"
#include "platform/mfc/module_state.h"
#include "platform/results.h"

namespace velandoc {
namespace {

constexpr DWORD kStatusOk = 200;
constexpr DWORD kFailureTextSize = 32768;

constexpr ErrorOrigin kOrigin = {&CLSID_HdfsClient, OLESTR("wininet.dll"), &LastErrorOf<WinInet>};

HRESULT Get(const char* method, const WideString& text, BSTR* copy) {
  return AutomationFunnel(method, [&] { return CopyText(text, copy); });
}

HRESULT Put(const char* method, BSTR text, WideString& property) {
  return AutomationFunnel(method, [&] {
    property = ViewOf(text);
    return S_OK;
  });
}

/// What one read gives of the body behind a status that tells of a failure.
NarrowString ReadFailureText(CHdfsConnection& connection) {
  NarrowString text(kFailureTextSize, '\0');
  DWORD count = 0;
  CurrentPort<WinInet>().InternetReadFile(connection.m_hRequest, text.data(), kFailureTextSize,
                                          &count);
  text.resize(count);
  return text;
}

}  // namespace

CHdfsClient::CHdfsClient() : ErrorReports(kOrigin) {}

STDMETHODIMP CHdfsClient::get_Port(USHORT* pVal) {
  return AutomationFunnel("CHdfsClient::get_Port", [&] {
    *pVal = m_port;
    return S_OK;
  });
}

STDMETHODIMP CHdfsClient::put_Port(USHORT newVal) {
  return AutomationFunnel("CHdfsClient::put_Port", [&] {
    m_port = newVal;
    return S_OK;
  });
}

STDMETHODIMP CHdfsClient::get_ServerName(BSTR* pVal) {
  return Get("CHdfsClient::get_ServerName", m_serverName, pVal);
}

STDMETHODIMP CHdfsClient::put_ServerName(BSTR newVal) {
  return Put("CHdfsClient::put_ServerName", newVal, m_serverName);
}

STDMETHODIMP CHdfsClient::get_HdfsPath(BSTR* pVal) {
  return Get("CHdfsClient::get_HdfsPath", m_hdfsPath, pVal);
}

STDMETHODIMP CHdfsClient::put_HdfsPath(BSTR newVal) {
  return Put("CHdfsClient::put_HdfsPath", newVal, m_hdfsPath);
}

STDMETHODIMP CHdfsClient::put_BaseUrl(BSTR newVal) {
  return AutomationFunnel("CHdfsClient::put_BaseUrl", [&] {
    const WideString url(ViewOf(newVal));
    return ParseBaseUrl(url.c_str()) ? S_OK : E_INVALIDARG;
  });
}

STDMETHODIMP CHdfsClient::get_BaseUrl(BSTR* pVal) {
  return AutomationFunnel("CHdfsClient::get_BaseUrl",
                          [&] { return CopyText(BuildBaseUrl(), pVal); });
}

STDMETHODIMP CHdfsClient::put_UserName(BSTR newVal) {
  return Put("CHdfsClient::put_UserName", newVal, m_userName);
}

STDMETHODIMP CHdfsClient::get_UserName(BSTR* pVal) {
  return Get("CHdfsClient::get_UserName", m_userName, pVal);
}

STDMETHODIMP CHdfsClient::get_Secure(VARIANT_BOOL* pVal) {
  return AutomationFunnel("CHdfsClient::get_Secure", [&]() -> HRESULT {
    if (pVal == nullptr) return E_POINTER;
    *pVal = m_secure;
    return S_OK;
  });
}

STDMETHODIMP CHdfsClient::put_Secure(VARIANT_BOOL newVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  m_secure = newVal;
  return S_OK;
}

STDMETHODIMP CHdfsClient::get_URL(BSTR* pVal) {
  return AutomationFunnel("CHdfsClient::get_Url", [&] { return CopyText(BuildPathUrl(), pVal); });
}

STDMETHODIMP CHdfsClient::get_ConnectionError(IConnectionError** pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return GetConnectionError(pVal);
}

STDMETHODIMP CHdfsClient::get_Op(BSTR* pVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return CopyText(m_op, pVal);
}

STDMETHODIMP CHdfsClient::put_Op(BSTR newVal) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  m_op = ViewOf(newVal);
  return S_OK;
}

STDMETHODIMP CHdfsClient::get_Options(INT* pVal) {
  return AutomationFunnel("CHdfsClient::get_Options", [&]() -> HRESULT {
    if (pVal == nullptr) return E_POINTER;
    *pVal = m_options;
    return S_OK;
  });
}

STDMETHODIMP CHdfsClient::put_Options(INT newVal) {
  return AutomationFunnel("CHdfsClient::put_Options", [&] {
    m_options = newVal;
    return S_OK;
  });
}

HRESULT CHdfsClient::RunRequest(CHdfsConnection& connection) {
  RenewConnectionError();
  connection.m_reportCertificateErrors = (m_options & scHdfsReportSSLCertificateErrors) != 0;
  HRESULT result = connection.Open(nullptr, nullptr);
  if (SUCCEEDED(result)) result = connection.SendWithRetry();
  // Before the body: its sink may raise.
  m_connectionError->m_httpCode = static_cast<LONG>(connection.m_statusCode);
  if (SUCCEEDED(result) && connection.m_sink != nullptr) {
    if (connection.ReadResponse()) {
      connection.ProcessResponse();
    } else {
      result = E_FAIL;
    }
  }
  if (SUCCEEDED(result)) return result;
  const DWORD status = connection.m_statusCode;
  const bool isRefused = status != 0 && status != kStatusOk;
  ReportRequestFailure(status, connection.m_lastError,
                       isRefused ? ReadFailureText(connection) : NarrowString());
  return result;
}

void CHdfsClient::SelectOp(LPCWSTR op) { put_Op(Bstr(op).Get()); }

}  // namespace velandoc
