// The ErrorServices port on Windows: the system's functions.
#include "platform/error_services.h"

namespace velandoc {
namespace {

class SystemErrorServices final : public ErrorServices {
 public:
  DWORD FormatMessageW(DWORD flags, LPCVOID source, DWORD code, DWORD language, LPWSTR buffer,
                       DWORD size, va_list* arguments) override {
    return ::FormatMessageW(flags, source, code, language, buffer, size, arguments);
  }
  void LocalFree(void* memory) override { ::LocalFree(memory); }
  HMODULE GetModuleHandleW(LPCWSTR name) override { return ::GetModuleHandleW(name); }
  HRESULT CreateErrorInfo(ICreateErrorInfo** info) override { return ::CreateErrorInfo(info); }
  void OutputDebugStringW(LPCWSTR text) override { ::OutputDebugStringW(text); }
};

}  // namespace

template <>
ErrorServices& SystemPort<ErrorServices>() {
  static SystemErrorServices port;
  return port;
}

}  // namespace velandoc
