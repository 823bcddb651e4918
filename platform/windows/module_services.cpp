// The ModuleServices port on Windows: the system's functions.
#include "platform/module_services.h"

// Behind com.h, which includes windows.h.
#include <shlwapi.h>

namespace velandoc {
namespace {

class SystemModuleServices final : public ModuleServices {
 public:
  DWORD GetModuleFileNameW(HINSTANCE module, LPWSTR path, DWORD size) override {
    return ::GetModuleFileNameW(module, path, size);
  }
  BOOL GetThreadPreferredUILanguages(DWORD flags, ULONG* count, LPWSTR names,
                                     ULONG* size) override {
    return ::GetThreadPreferredUILanguages(flags, count, names, size);
  }
  BOOL PathFileExistsW(LPCWSTR path) override { return ::PathFileExistsW(path); }
  HINSTANCE LoadLibraryExW(LPCWSTR path, HANDLE reserved, DWORD flags) override {
    return ::LoadLibraryExW(path, reserved, flags);
  }
  BOOL FreeLibrary(HINSTANCE module) override { return ::FreeLibrary(module); }
  int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int size) override {
    return ::LoadStringW(module, id, text, size);
  }
};

}  // namespace

template <>
ModuleServices& SystemPort<ModuleServices>() {
  static SystemModuleServices port;
  return port;
}

}  // namespace velandoc
