#include "host/exports.h"

#include "host/velandoc_app.h"
#include "host/velandoc_module.h"
#include "platform/ascii_case.h"

namespace {

using velandoc::Module;

velandoc::ServerRuntime& Runtime() { return velandoc::CurrentPort<velandoc::ServerRuntime>(); }

/// The end counts: nothing may follow the word.
bool IsUser(velandoc::WideView commandLine) {
  return velandoc::EqualsIgnoringAsciiCase(commandLine, OLESTR("user"));
}

}  // namespace

STDAPI DllCanUnloadNow() {
  if (const HRESULT result = Runtime().NdrDllCanUnloadNow(); result != S_OK) return result;
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  return AfxDllCanUnloadNow() == S_OK && Module().GetLockCount() == 0 ? S_OK : S_FALSE;
}

STDAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* object) {
  if (Runtime().NdrDllGetClassObject(rclsid, riid, object) == S_OK) return S_OK;
  return Module().GetClassObject(rclsid, riid, object);
}

STDAPI DllRegisterServer() {
  const HRESULT result = Module().RegisterServer();
  return FAILED(result) ? result : Runtime().NdrDllRegisterProxy();
}

STDAPI DllUnregisterServer() {
  HRESULT result = Module().UnregisterServer();
  if (FAILED(result)) return result;
  // Registered first, so that there is always something to remove: unregistering proxies that are
  // not there fails.
  result = Runtime().NdrDllRegisterProxy();
  return FAILED(result) ? result : Runtime().NdrDllUnregisterProxy();
}

STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
  if (commandLine != nullptr && IsUser(commandLine)) AtlSetPerUserRegistration(true);
  if (!install) return DllUnregisterServer();
  const HRESULT result = DllRegisterServer();
  // What failed is what the caller wants to know, not how taking it back went.
  if (FAILED(result)) DllUnregisterServer();
  return result;
}
