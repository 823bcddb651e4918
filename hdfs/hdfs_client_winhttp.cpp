// CHdfsClientWinHttp: its properties and how its requests are run.
#include "hdfs/hdfs_client_winhttp.h"

#include "hdfs/automation_funnel.h"
#include "hdfs/response_stream.h"

namespace velandoc {
namespace {

constexpr DWORD kStatusOk = 200;
constexpr DWORD kFailureTextSize = 32768;

constexpr ErrorOrigin kOrigin = {&CLSID_HdfsClientWinHttp, OLESTR("winhttp.dll"),
                                 &LastErrorOf<WinHttp>};

HRESULT Get(const WideString& text, BSTR* copy) {
  *copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return *copy != nullptr ? S_OK : E_OUTOFMEMORY;
}

HRESULT Put(BSTR text, WideString& property) {
  property = ViewOf(text);
  return S_OK;
}

/// What one read gives of the rest of an answer that tells of a failure.
NarrowString ReadFailureText(CHdfsHttpConnection& connection) {
  NarrowString text(kFailureTextSize, '\0');
  ULONG count = 0;
  ReadResponseBody(connection, text.data(), kFailureTextSize, count);
  text.resize(count);
  return text;
}

/// Tells the status at the end of its scope, also when the sink of a body has raised.
class StatusTeller {
 public:
  StatusTeller(const CHdfsHttpConnection& connection, CConnectionError& error)
      : m_connection(connection), m_error(error) {}
  StatusTeller(const StatusTeller&) = delete;
  StatusTeller& operator=(const StatusTeller&) = delete;
  ~StatusTeller() { m_error.m_httpCode = static_cast<LONG>(m_connection.m_statusCode); }

 private:
  const CHdfsHttpConnection& m_connection;
  CConnectionError& m_error;
};

}  // namespace

CHdfsClientWinHttp::CHdfsClientWinHttp() : ErrorReports(kOrigin) {}

STDMETHODIMP CHdfsClientWinHttp::get_Port(USHORT* pVal) {
  *pVal = m_params.m_port;
  return S_OK;
}

STDMETHODIMP CHdfsClientWinHttp::put_Port(USHORT newVal) {
  m_params.m_port = newVal;
  return S_OK;
}

STDMETHODIMP CHdfsClientWinHttp::get_ServerName(BSTR* pVal) {
  return Get(m_params.m_serverName, pVal);
}

STDMETHODIMP CHdfsClientWinHttp::put_ServerName(BSTR newVal) {
  return Put(newVal, m_params.m_serverName);
}

STDMETHODIMP CHdfsClientWinHttp::get_HdfsPath(BSTR* pVal) { return Get(m_params.m_hdfsPath, pVal); }

STDMETHODIMP CHdfsClientWinHttp::put_HdfsPath(BSTR newVal) {
  return Put(newVal, m_params.m_hdfsPath);
}

STDMETHODIMP CHdfsClientWinHttp::put_BaseUrl(BSTR newVal) {
  const WideString url(ViewOf(newVal));
  // The result is nobody's concern here: CHdfsClient refuses, this class never has.
  m_params.ParseBaseUrl(url.c_str());
  return S_OK;
}

STDMETHODIMP CHdfsClientWinHttp::get_BaseUrl(BSTR* pVal) {
  return Get(m_params.BuildBaseUrl(), pVal);
}

STDMETHODIMP CHdfsClientWinHttp::put_UserName(BSTR newVal) {
  return Put(newVal, m_params.m_userName);
}

STDMETHODIMP CHdfsClientWinHttp::get_UserName(BSTR* pVal) { return Get(m_params.m_userName, pVal); }

STDMETHODIMP CHdfsClientWinHttp::get_Secure(VARIANT_BOOL* pVal) {
  *pVal = m_params.m_secure;
  return S_OK;
}

STDMETHODIMP CHdfsClientWinHttp::put_Secure(VARIANT_BOOL newVal) {
  m_params.m_secure = newVal;
  return S_OK;
}

STDMETHODIMP CHdfsClientWinHttp::get_URL(BSTR* pVal) { return Get(m_params.BuildPathUrl(), pVal); }

STDMETHODIMP CHdfsClientWinHttp::get_ConnectionError(IConnectionError** pVal) {
  return AutomationFunnel("CHdfsClientWinHttp::get_ConnectionError",
                          [&] { return GetConnectionError(pVal); });
}

STDMETHODIMP CHdfsClientWinHttp::get_Op(BSTR* pVal) { return Get(m_params.m_op, pVal); }

STDMETHODIMP CHdfsClientWinHttp::put_Op(BSTR newVal) { return Put(newVal, m_params.m_op); }

STDMETHODIMP CHdfsClientWinHttp::get_Options(INT* pVal) {
  *pVal = m_options;
  return S_OK;
}

STDMETHODIMP CHdfsClientWinHttp::put_Options(INT newVal) {
  m_options = newVal;
  return S_OK;
}

WideString CHdfsClientWinHttp::RequestUrl() const { return m_params.BuildFullUrl(m_params.m_op); }

HRESULT CHdfsClientWinHttp::RunRequest(CHdfsHttpConnection& connection) {
  RenewConnectionError();
  const HRESULT result = [&] {
    const StatusTeller teller(connection, *m_connectionError.Get());
    return connection.Execute();
  }();
  if (SUCCEEDED(result)) return result;
  const DWORD status = connection.m_statusCode;
  const bool isRefused = status != 0 && status != kStatusOk;
  ReportRequestFailure(status, connection.m_lastError,
                       isRefused ? ReadFailureText(connection) : NarrowString());
  return result;
}

void CHdfsClientWinHttp::SelectOp(LPCWSTR op) { put_Op(Bstr(op).Get()); }

}  // namespace velandoc
