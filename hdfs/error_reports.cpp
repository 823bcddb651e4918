#include "hdfs/error_reports.h"

#include "hdfs/error_texts.h"
#include "platform/ansi_text.h"
#include "platform/error_services.h"
#include "platform/out_of_memory.h"
#include "platform/resources.h"

namespace velandoc {
namespace {

constexpr DWORD kStatusOk = 200;

}  // namespace

void ErrorReports::RenewConnectionError() {
  CComObject<CConnectionError>* error = nullptr;
  CheckResult(CComObject<CConnectionError>::CreateInstance(&error));
  m_connectionError = ComPtr<CComObject<CConnectionError>>(error);
}

void ErrorReports::ReportRequestFailure(DWORD status, DWORD lastError, const NarrowString& body) {
  RaiseOutOfMemory([&] {
    if (status != 0 && status != kStatusOk) {
      Describe(FromAnsi(body), kConnectSource);
    } else if (lastError != 0) {
      Describe(ModuleText(lastError), kConnectSource);
    } else {
      Describe(LoadModuleString(kUnknownConnectionError), kConnectSource);
    }
  });
}

void ErrorReports::ReportHresultError(HRESULT hr, WORD sourceId) {
  RaiseOutOfMemory([&] { ReportTextError(ErrorMessage(hr), sourceId); });
}

void ErrorReports::ReportTextError(const WideString& text, WORD sourceId) {
  RaiseOutOfMemory([&] {
    RenewConnectionError();
    Describe(text, sourceId);
  });
}

void ErrorReports::ReportLastError() {
  const DWORD error = m_origin.getLastError();
  RaiseOutOfMemory([&] { ReportTextError(ModuleText(error), kUploadSource); });
}

HRESULT ErrorReports::GetConnectionError(IConnectionError** error) const {
  if (error == nullptr) return E_POINTER;
  *error = ComPtr<IConnectionError>(m_connectionError.Get()).Detach();
  return S_OK;
}

WideString ErrorReports::ModuleText(DWORD code) const {
  const HMODULE module = CurrentPort<ErrorServices>().GetModuleHandleW(m_origin.messageModule);
  return GetModuleErrorText(code, module);
}

void ErrorReports::Describe(const WideString& text, WORD sourceId) {
  m_connectionError->m_message = text;
  SetRichError(text.c_str(), sourceId, *m_origin.classId);
}

}  // namespace velandoc
