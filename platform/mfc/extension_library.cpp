#include "platform/mfc/extension_library.h"

#include <algorithm>

#include "platform/atl/threading.h"
#include "platform/mfc/module_state.h"

namespace {

CComCriticalSection& ListLock() {
  static CComCriticalSection lock;
  return lock;
}

}  // namespace

void AfxLockGlobals(int /*lock*/) { ListLock().lock(); }
void AfxUnlockGlobals(int /*lock*/) { ListLock().unlock(); }

CDynLinkLibrary::CDynLinkLibrary(HINSTANCE module) : m_hModule(module), m_hResource(module) {
  const std::lock_guard lock(ListLock());
  AfxGetStaticModuleState()->m_libraryList.push_back(this);
}

CDynLinkLibrary::~CDynLinkLibrary() {
  const std::lock_guard lock(ListLock());
  std::erase(AfxGetStaticModuleState()->m_libraryList, this);
}
