// Class objects: the table of the process, and the order in which a class is looked for.
#include "platform/posix/com/activation.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "platform/owners.h"
#include "platform/posix/com/builtin_classes.h"
#include "platform/posix/com/class_registry.h"
#include "platform/posix/com/server_library.h"
#include "platform/posix/com/utf8.h"

namespace velandoc {
namespace {

struct RegisteredClass {
  DWORD cookie;
  CLSID clsid;
  ComPtr<IUnknown> object;
};
std::mutex classesMutex;
DWORD lastCookie = 0;
std::vector<RegisteredClass>& Classes() {
  // Never destroyed: what a program forgot to revoke must not be released after its library's end.
  static auto* const classes = new std::vector<RegisteredClass>;
  return *classes;
}

ComPtr<IUnknown> FindClassOfProcess(REFCLSID clsid) {
  const std::lock_guard lock(classesMutex);
  for (const RegisteredClass& registered : Classes()) {
    if (registered.clsid == clsid) return registered.object;
  }
  return nullptr;
}

HRESULT FindClassObject(REFCLSID clsid, REFIID riid, void** object) {
  if (const ComPtr<IUnknown> own = FindClassOfProcess(clsid)) {
    return own->QueryInterface(riid, object);
  }
  HRESULT result = GetBuiltinClassObject(clsid, riid, object);
  if (result != REGDB_E_CLASSNOTREG) return result;
  WideString registered;
  result = FindRegisteredServer(clsid, registered);
  if (SUCCEEDED(result)) return GetClassObjectOf(WideToUtf8(registered), clsid, riid, object);
  if (result != REGDB_E_KEYMISSING) return result;
  if (!IsComponentClass(clsid)) return REGDB_E_CLASSNOTREG;
  const std::string library = FindComponentLibrary();
  if (library.empty()) return REGDB_E_CLASSNOTREG;
  result = GetClassObjectOf(library, clsid, riid, object);
  return result == CLASS_E_CLASSNOTAVAILABLE ? REGDB_E_CLASSNOTREG : result;
}

}  // namespace
}  // namespace velandoc

STDAPI CoGetClassObject(REFCLSID clsid, DWORD context, LPVOID, REFIID riid, LPVOID* object) try {
  if (object == nullptr) return E_INVALIDARG;
  *object = nullptr;
  // There are no servers in other processes here.
  if ((context & CLSCTX_INPROC_SERVER) == 0) return REGDB_E_CLASSNOTREG;
  return velandoc::FindClassObject(clsid, riid, object);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

STDAPI CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID riid,
                        LPVOID* object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  // Who aggregates an object owns it by its IUnknown and by nothing else.
  if (outer != nullptr && riid != IID_IUnknown) return CLASS_E_NOAGGREGATION;
  velandoc::ComPtr<IClassFactory> factory;
  const HRESULT result =
      CoGetClassObject(clsid, context, nullptr, IID_IClassFactory, factory.ReceiveVoid());
  if (FAILED(result)) return result;
  return factory->CreateInstance(outer, riid, object);
}

STDAPI CoRegisterClassObject(REFCLSID clsid, IUnknown* object, DWORD, DWORD, DWORD* cookie) try {
  if (object == nullptr || cookie == nullptr) return E_INVALIDARG;
  const std::lock_guard lock(velandoc::classesMutex);
  velandoc::Classes().push_back({velandoc::lastCookie + 1, clsid, object});
  *cookie = ++velandoc::lastCookie;
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

STDAPI CoRevokeClassObject(DWORD cookie) {
  velandoc::ComPtr<IUnknown> revoked;  // released behind the lock
  const std::lock_guard lock(velandoc::classesMutex);
  auto& classes = velandoc::Classes();
  const auto found = std::find_if(classes.begin(), classes.end(),
                                  [cookie](const auto& entry) { return entry.cookie == cookie; });
  if (found == classes.end()) return E_INVALIDARG;
  revoked = found->object;
  classes.erase(found);
  return S_OK;
}
