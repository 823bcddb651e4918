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

HRESULT Register() {
  const HRESULT result = Module().RegisterServer();
  return FAILED(result) ? result : Runtime().NdrDllRegisterProxy();
}

HRESULT Unregister() {
  HRESULT result = Module().UnregisterServer();
  if (FAILED(result)) return result;
  // Registered first, so that there is always something to remove: unregistering proxies that are
  // not there fails.
  result = Runtime().NdrDllRegisterProxy();
  return FAILED(result) ? result : Runtime().NdrDllUnregisterProxy();
}

/// Runs `work` while nobody else registers. Its failure goes before that of keeping what it did.
template <class Work>
HRESULT RunAlone(Work work) {
  const HANDLE lock = Runtime().LockRegistration(AtlGetPerUserRegistration());
  const HRESULT result = work();
  const HRESULT kept = Runtime().UnlockRegistration(lock);
  return SUCCEEDED(result) && FAILED(kept) ? kept : result;
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

STDAPI DllRegisterServer() { return RunAlone(&Register); }

STDAPI DllUnregisterServer() { return RunAlone(&Unregister); }

STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
  if (commandLine != nullptr && IsUser(commandLine)) AtlSetPerUserRegistration(true);
  if (!install) return DllUnregisterServer();
  return RunAlone([] {
    const HRESULT result = Register();
    // What failed is what the caller wants to know, not how taking it back went.
    if (FAILED(result)) Unregister();
    return result;
  });
}
