#include "hdfs/error_reports.h"

#include "hdfs/error_texts.h"
#include "platform/code_page.h"
#include "platform/error_services.h"
#include "platform/out_of_memory.h"
#include "platform/resources.h"

namespace velandoc {
namespace {

constexpr DWORD kStatusOk = 200;

WideString FromAnsi(const NarrowString& bytes) {
  CodePage& codePage = CurrentPort<CodePage>();
  const auto convert = [&](LPWSTR wide, int capacity) {
    return codePage.MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()),
                                        wide, capacity);
  };
  if (bytes.empty()) return WideString();
  WideString wide(static_cast<std::size_t>(convert(nullptr, 0)), 0);
  if (!wide.empty()) convert(wide.data(), static_cast<int>(wide.size()));
  return wide;
}

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
