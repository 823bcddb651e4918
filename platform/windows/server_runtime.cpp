// The ServerRuntime port on Windows: the system's functions, and the routines that the interface
// compiler generates around the system's NdrDll functions for the merged proxies.
#include "platform/server_runtime.h"

#include "platform/owners.h"

// Of the generated dlldata.c, whose ENTRY_PREFIX is Prx.
extern "C" {
HRESULT WINAPI PrxDllGetClassObject(REFCLSID rclsid, REFIID riid, void** object);
HRESULT WINAPI PrxDllCanUnloadNow();
HRESULT WINAPI PrxDllRegisterServer();
HRESULT WINAPI PrxDllUnregisterServer();
BOOL WINAPI PrxDllMain(HINSTANCE module, DWORD reason, LPVOID reserved);
}

namespace velandoc {
namespace {

constexpr const wchar_t* kRegistrationMutex = L"Global\\Velandoc.Registration";
constexpr DWORD kLockWait = 60000;  // milliseconds

using RegisterForUser = HRESULT(WINAPI*)(ITypeLib* library, OLECHAR* path, OLECHAR* helpFolder);
using UnRegisterForUser = HRESULT(WINAPI*)(REFGUID id, WORD major, WORD minor, LCID lcid,
                                           SYSKIND system);

template <class Function>
Function FindInOleAut(const char* name) {
  const HMODULE library = GetModuleHandleW(L"OLEAUT32.DLL");
  if (library == nullptr) return nullptr;
  // By way of void*: GetProcAddress's own type fits no function with arguments.
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

HRESULT Load(const TypeLibrary& library, ComPtr<ITypeLib>& loaded) {
  return LoadTypeLibEx(library.path.c_str(), REGKIND_NONE, loaded.Receive());
}

/// What a type library says about itself, released with it.
HRESULT Unregister(const TypeLibrary& library, UnRegisterForUser unregister) {
  ComPtr<ITypeLib> loaded;
  if (const HRESULT result = Load(library, loaded); FAILED(result)) return result;
  TLIBATTR* attributes = nullptr;
  if (const HRESULT result = loaded->GetLibAttr(&attributes); FAILED(result)) return result;
  const HRESULT result =
      unregister(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum,
                 attributes->lcid, attributes->syskind);
  loaded->ReleaseTLibAttr(attributes);
  return result;
}

HRESULT Register(const TypeLibrary& library, RegisterForUser registerLibrary) {
  ComPtr<ITypeLib> loaded;
  if (const HRESULT result = Load(library, loaded); FAILED(result)) return result;
  // No help file: the folder beside the library is named, as the registrar of the system's wizards
  // does.
  WideString path = library.path;
  WideString folder = path.substr(0, path.find_last_of(L'\\') + 1);
  return registerLibrary(loaded.Get(), path.data(), folder.data());
}

class WindowsServerRuntime final : public ServerRuntime {
 public:
  LCID GetThreadLocale() override { return ::GetThreadLocale(); }
  BOOL SetThreadLocale(LCID lcid) override { return ::SetThreadLocale(lcid); }

  HANDLE LockRegistration(bool) override {
    // One for the user and the machine: the type library and the proxies may go to the machine in
    // either case. Another user's lock can't be opened, and is nobody's to wait for.
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, kRegistrationMutex);
    if (mutex == nullptr) return nullptr;
    const DWORD waited = WaitForSingleObject(mutex, kLockWait);
    // A process that ended with the lock has left it to us.
    if (waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED) return mutex;
    CloseHandle(mutex);
    return nullptr;
  }
  HRESULT UnlockRegistration(HANDLE lock) override {
    if (lock == nullptr) return S_OK;
    ReleaseMutex(lock);
    CloseHandle(lock);
    return S_OK;
  }

  HRESULT RegisterTypeLib(const TypeLibrary& library) override {
    // Not its address: the texts are LPCOLESTR in newer headers and OLECHAR* in older ones.
    return Register(library, [](ITypeLib* loaded, OLECHAR* path, OLECHAR* helpFolder) {
      return ::RegisterTypeLib(loaded, path, helpFolder);
    });
  }
  HRESULT UnRegisterTypeLib(const TypeLibrary& library) override {
    return Unregister(library, &::UnRegisterTypeLib);
  }
  bool OffersTypeLibForUser() override {
    return FindInOleAut<RegisterForUser>("RegisterTypeLibForUser") != nullptr &&
           FindInOleAut<UnRegisterForUser>("UnRegisterTypeLibForUser") != nullptr;
  }
  HRESULT RegisterTypeLibForUser(const TypeLibrary& library) override {
    return Register(library, FindInOleAut<RegisterForUser>("RegisterTypeLibForUser"));
  }
  HRESULT UnRegisterTypeLibForUser(const TypeLibrary& library) override {
    return Unregister(library, FindInOleAut<UnRegisterForUser>("UnRegisterTypeLibForUser"));
  }

  void SetProxyModule(HINSTANCE module) override {
    PrxDllMain(module, DLL_PROCESS_ATTACH, nullptr);
  }
  HRESULT NdrDllCanUnloadNow() override { return PrxDllCanUnloadNow(); }
  HRESULT NdrDllGetClassObject(REFCLSID rclsid, REFIID riid, void** object) override {
    // The system's function stores through a null pointer.
    if (object == nullptr) return E_INVALIDARG;
    return PrxDllGetClassObject(rclsid, riid, object);
  }
  HRESULT NdrDllRegisterProxy() override { return PrxDllRegisterServer(); }
  HRESULT NdrDllUnregisterProxy() override { return PrxDllUnregisterServer(); }
};

}  // namespace

template <>
ServerRuntime& SystemPort<ServerRuntime>() {
  static WindowsServerRuntime port;
  return port;
}

}  // namespace velandoc
