#include "hdfs/automation_funnel.h"

#include <array>
#include <cstring>

#include "hdfs/error_texts.h"
#include "platform/error_services.h"
#include "platform/mfc/exceptions.h"
#include "platform/mfc/module_state.h"
#include "platform/out_of_memory.h"

namespace velandoc {
namespace {

constexpr UINT kMessageSize = 255;  // characters, the terminator among them

void WriteDebuggerLine(const char* method, const WideString& text) {
  WideString line = OLESTR("Exception in automation method [");
  line.append(method, method + std::strlen(method));
  line += OLESTR("]: ");
  line += text;
  CurrentPort<ErrorServices>().OutputDebugStringW(line.c_str());
}

HRESULT Run(const char* method, FunnelBody call, void* body) {
  HRESULT hr = S_OK;
  WideString strError;
  try {
    SetErrorInfo(0, nullptr);
    const FunnelResult result = call(body);
    hr = result.hr;
    if (!result.writesFailure || !FAILED(hr)) return hr;
  } catch (COleException* exception) {
    hr = exception->m_sc;
    exception->Delete();
    if (!FAILED(hr)) return hr;
  } catch (CException* exception) {
    hr = E_FAIL;
    std::array<OLECHAR, kMessageSize> message{};
    const BOOL hasText = exception->GetErrorMessage(message.data(), kMessageSize, nullptr);
    exception->Delete();
    if (hasText) strError = message.data();
  } catch (_com_error& error) {
    hr = error.Error();
    const _bstr_t description = error.Description();
    if (const OLECHAR* text = description) strError = text;
    // The reference that ErrorInfo takes is not given back, so the object outlives the thread's
    // reference to it. That is settled; it costs one small object for each such failure.
    SetErrorInfo(0, error.ErrorInfo());
    if (!FAILED(hr)) return hr;
  } catch (...) {
    hr = E_FAIL;
  }
  if (strError.empty()) strError = ErrorMessage(hr);
  WriteDebuggerLine(method, strError);
  return hr;
}

}  // namespace

HRESULT RunAutomationFunnel(const char* method, FunnelBody call, void* body) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return RaiseOutOfMemory([&] { return Run(method, call, body); });
}

}  // namespace velandoc
