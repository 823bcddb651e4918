#include "host/velandoc_app.h"

#include <new>

#include "platform/atl/base_module.h"
#include "platform/mfc/extension_library.h"
#include "platform/server_runtime.h"

namespace velandoc {
namespace {

class LibraryListLock {
 public:
  LibraryListLock() { AfxLockGlobals(CRIT_DYNLINKLIST); }
  ~LibraryListLock() { AfxUnlockGlobals(CRIT_DYNLINKLIST); }
  LibraryListLock(const LibraryListLock&) = delete;
  LibraryListLock& operator=(const LibraryListLock&) = delete;
};

}  // namespace

const AFX_MSGMAP* CVelandocApp::GetMessageMap() const {
  static constexpr AFX_MSGMAP kEmpty{};
  return &kEmpty;
}

BOOL CVelandocApp::InitInstance() {
  CurrentPort<ServerRuntime>().SetProxyModule(m_hInstance);
  const BOOL result = CWinApp::InitInstance();
  if (result && m_hLangResourceDLL != nullptr) {
    AtlBaseModule().SetResourceInstance(m_hLangResourceDLL);
  }
  return result;
}

int CVelandocApp::ExitInstance() { return CWinApp::ExitInstance(); }

HINSTANCE CVelandocApp::LoadSatellite(HINSTANCE module) try {
  WideString path;
  if (!m_search.FindSatelliteDll(module, path)) return nullptr;
  return CurrentPort<ModuleServices>().LoadLibraryExW(
      path.c_str(), nullptr, LOAD_LIBRARY_AS_IMAGE_RESOURCE | LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE);
} catch (const std::bad_alloc&) {
  // The loader, from which this is called, knows no exceptions.
  return nullptr;
}

HINSTANCE CVelandocApp::LoadAppLangResourceDLL() {
  const HINSTANCE satellite = LoadSatellite(m_hInstance);
  const LibraryListLock lock;
  for (CDynLinkLibrary* library : AfxGetModuleState()->m_libraryList) {
    // One that has other resources by now has been through this, or knows better.
    if (library->m_hResource != library->m_hModule) continue;
    if (const HINSTANCE found = LoadSatellite(library->m_hModule)) library->m_hResource = found;
  }
  return satellite;
}

CVelandocApp& App() {
  static CVelandocApp app;
  return app;
}

}  // namespace velandoc
