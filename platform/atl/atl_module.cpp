#include "platform/atl/atl_module.h"

#include <new>

#include "platform/module_path.h"
#include "platform/owners.h"

namespace {

std::atomic<CAtlModule*> s_module{nullptr};
std::atomic<bool> s_perUser{false};

velandoc::ServerRuntime& Runtime() { return velandoc::CurrentPort<velandoc::ServerRuntime>(); }

bool ForUser() { return AtlGetPerUserRegistration() && Runtime().OffersTypeLibForUser(); }

/// Puts the thread's locale back at the end of its scope.
class SystemLocale {
 public:
  SystemLocale() : m_locale(Runtime().GetThreadLocale()) {
    Runtime().SetThreadLocale(LOCALE_SYSTEM_DEFAULT);
  }
  ~SystemLocale() { Runtime().SetThreadLocale(m_locale); }
  SystemLocale(const SystemLocale&) = delete;
  SystemLocale& operator=(const SystemLocale&) = delete;

 private:
  LCID m_locale;
};

/// Runs `step`, whose exceptions become its result.
template <class Step>
HRESULT Guarded(Step step) try {
  return step();
} catch (const _com_error& error) {
  return error.Error();
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

}  // namespace

void AtlSetPerUserRegistration(bool enable) { s_perUser = enable; }
bool AtlGetPerUserRegistration() { return s_perUser; }

LONG AtlModuleLock() { return s_module.load()->Lock(); }
LONG AtlModuleUnlock() { return s_module.load()->Unlock(); }

CAtlModule::CAtlModule() : m_previous(s_module.exchange(this)) {}
CAtlModule::~CAtlModule() { s_module = m_previous; }

HRESULT CAtlModule::UpdateRegistryFromResource(WORD id, bool doRegister) {
  return Guarded([&]() -> HRESULT {
    CRegObject registrar(AtlGetPerUserRegistration());
    HRESULT result = AddCommonRGSReplacements(&registrar);
    if (FAILED(result)) return result;
    result = registrar.AddReplacement(OLESTR("MODULE"),
                                      AtlEscapeQuotes(velandoc::GetModulePath()).c_str());
    if (FAILED(result)) return result;
    return doRegister ? registrar.ResourceRegister(id) : registrar.ResourceUnregister(id);
  });
}

HRESULT CAtlDllModule::GetClassObject(REFCLSID rclsid, REFIID riid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (m_terminated) return E_UNEXPECTED;
  for (_ATL_OBJMAP_ENTRY& entry : m_description.objectMap) {
    if (!IsEqualCLSID(rclsid, *entry.pclsid)) continue;
    HRESULT result = S_OK;
    if (entry.pFactory == nullptr && entry.pfnCreateInstance != nullptr) {
      const std::lock_guard lock(m_csStaticDataInitAndTypeInfo);
      if (entry.pFactory == nullptr) {
        // Kept without a lock of the module: else it could never be unloaded.
        auto* factory = new (std::nothrow) CComObjectCached<CComClassFactory>;
        if (factory == nullptr) return E_OUTOFMEMORY;
        factory->SetCreator(entry.pfnCreateInstance);
        factory->AddRef();
        entry.pFactory = factory;
      }
    }
    if (IUnknown* factory = entry.pFactory) result = factory->QueryInterface(riid, object);
    return *object == nullptr && result == S_OK ? CLASS_E_CLASSNOTAVAILABLE : result;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT CAtlDllModule::RegisterServer() {
  const SystemLocale locale;
  HRESULT result = UpdateRegistryFromResource(m_description.appIdScript, true);
  for (const _ATL_OBJMAP_ENTRY& entry : m_description.objectMap) {
    if (FAILED(result)) return result;
    result = UpdateRegistryFromResource(entry.registryScript, true);
  }
  return FAILED(result) ? result : Guarded([this] { return RegisterTypeLibrary(); });
}

HRESULT CAtlDllModule::UnregisterServer() {
  const SystemLocale locale;
  for (const _ATL_OBJMAP_ENTRY& entry : m_description.objectMap) {
    const HRESULT result = UpdateRegistryFromResource(entry.registryScript, false);
    if (FAILED(result)) return result;
  }
  const HRESULT result = Guarded([this] { return UnregisterTypeLibrary(); });
  return FAILED(result) ? result : UpdateRegistryFromResource(m_description.appIdScript, false);
}

void CAtlDllModule::Term() {
  m_terminated = true;
  for (_ATL_OBJMAP_ENTRY& entry : m_description.objectMap) {
    if (IUnknown* factory = entry.pFactory.exchange(nullptr)) factory->Release();
  }
}

velandoc::TypeLibrary CAtlDllModule::FindTypeLibrary() const {
  velandoc::TypeLibrary library = m_description.typeLibrary;
  library.path = velandoc::GetModulePath();
  return library;
}

HRESULT CAtlDllModule::RegisterTypeLibrary() const {
  return ForUser() ? Runtime().RegisterTypeLibForUser(FindTypeLibrary())
                   : Runtime().RegisterTypeLib(FindTypeLibrary());
}

HRESULT CAtlDllModule::UnregisterTypeLibrary() const {
  return ForUser() ? Runtime().UnRegisterTypeLibForUser(FindTypeLibrary())
                   : Runtime().UnRegisterTypeLib(FindTypeLibrary());
}
