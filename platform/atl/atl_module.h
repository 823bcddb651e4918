// CAtlModule and CAtlDllModuleT: a library's lock count, its class objects, its registration.
//
// One module object exists in a library, as a global. While it lives it is the current module,
// whose lock count AtlModuleLock changes. A test may put another one in its place for a while; the
// earlier one comes back then.
#pragma once

#include <atomic>
#include <span>
#include <utility>

#include "platform/atl/object_map.h"
#include "platform/atl/registrar.h"
#include "platform/atl/threading.h"
#include "platform/server_runtime.h"

/// Whether registry scripts and the type library go to the current user alone. Of the whole
/// process; off at first.
void AtlSetPerUserRegistration(bool enable);
bool AtlGetPerUserRegistration();

class CAtlModule {
 public:
  CAtlModule();
  virtual ~CAtlModule();
  CAtlModule(const CAtlModule&) = delete;
  CAtlModule& operator=(const CAtlModule&) = delete;

  LONG Lock() { return m_nLockCnt.fetch_add(1) + 1; }
  LONG Unlock() { return m_nLockCnt.fetch_sub(1) - 1; }
  LONG GetLockCount() const { return m_nLockCnt.load(); }

  /// Adds what every script of the module may name. A failure keeps the script from being run.
  virtual HRESULT AddCommonRGSReplacements(IRegistrarBase* registrar) = 0;

  /// Runs the script in resource REGISTRY `id`, in the register or unregister direction, with the
  /// common replacements and MODULE, the library's full path. Results as CRegObject's.
  HRESULT UpdateRegistryFromResource(WORD id, bool doRegister);

 protected:
  CComCriticalSection m_csStaticDataInitAndTypeInfo;

 private:
  std::atomic<LONG> m_nLockCnt{0};
  CAtlModule* m_previous;
};

/// The part of CAtlDllModuleT that does not depend on the class.
class CAtlDllModule : public CAtlModule {
 public:
  ~CAtlDllModule() override { Term(); }

  /// S_OK when nothing holds the module, else S_FALSE.
  HRESULT DllCanUnloadNow() const { return GetLockCount() == 0 ? S_OK : S_FALSE; }

  /// The class object of `rclsid`, made once and kept. E_POINTER for a null `object`, which is null
  /// on failure; E_UNEXPECTED after Term; CLASS_E_CLASSNOTAVAILABLE for an unknown class;
  /// E_NOINTERFACE.
  HRESULT GetClassObject(REFCLSID rclsid, REFIID riid, void** object);

  /// The AppID's script, each class's in the order of the map, the type library. The first failure
  /// ends the walk and is the result; nothing is taken back. No category is registered: no class
  /// here declares one.
  HRESULT RegisterServer();
  /// The classes' scripts in the same order, the type library, the AppID's script. The first
  /// failure ends the walk.
  HRESULT UnregisterServer();

  /// Lets the class objects go. The module serves nothing from then on.
  void Term();

 protected:
  struct Description {
    std::span<_ATL_OBJMAP_ENTRY> objectMap;  // outlives the module
    WORD appIdScript;                        // number of a REGISTRY resource
    velandoc::TypeLibrary typeLibrary;       // without its path
  };
  explicit CAtlDllModule(Description description) : m_description(std::move(description)) {}

 private:
  velandoc::TypeLibrary FindTypeLibrary() const;
  HRESULT RegisterTypeLibrary() const;
  HRESULT UnregisterTypeLibrary() const;

  Description m_description;
  bool m_terminated = false;
};

/// `Class` has the static functions GetObjectMap, GetAppIdScript and GetTypeLibrary, which give the
/// description.
template <class Class>
class CAtlDllModuleT : public CAtlDllModule {
 protected:
  CAtlDllModuleT()
      : CAtlDllModule({Class::GetObjectMap(), Class::GetAppIdScript(), Class::GetTypeLibrary()}) {}
};
