#include "hosts/component_library.h"

#include <functional>

#include "platform/shared_library.h"

namespace velandoc {

ComponentLibrary::ComponentLibrary()
    : m_path(ComponentLibraryPath()), m_library(LoadSharedLibrary(m_path, m_problem)) {}

template <class Function, class... Arguments>
HRESULT ComponentLibrary::Call(const char* name, Arguments... arguments) const {
  if (!Loaded()) return E_NOTIMPL;
  const auto function = reinterpret_cast<Function>(FindExport(m_library, name));
  return function != nullptr ? function(arguments...) : E_NOTIMPL;
}

HRESULT ComponentLibrary::DllRegisterServer() const {
  return Call<HRESULT(STDAPICALLTYPE*)()>("DllRegisterServer");
}

HRESULT ComponentLibrary::DllUnregisterServer() const {
  return Call<HRESULT(STDAPICALLTYPE*)()>("DllUnregisterServer");
}

HRESULT ComponentLibrary::DllInstall(BOOL install, LPCWSTR commandLine) const {
  return Call<HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR)>("DllInstall", install, commandLine);
}

HRESULT ComponentLibrary::DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) const {
  using Export = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return Call<Export>("DllGetClassObject", std::cref(clsid), std::cref(iid), object);
}

}  // namespace velandoc
