// The module state: which module's resources the calling thread works with, and the guard that
// every automation method and export enters first.
//
//   STDMETHODIMP CServerCheck::Check(...) {
//     AFX_MANAGE_STATE(AfxGetStaticModuleState());
//     ...
#pragma once

#include <atomic>
#include <vector>

#include "platform/com.h"

class CDynLinkLibrary;
class CWinApp;

struct AFX_MODULE_STATE {
  HINSTANCE m_hCurrentInstanceHandle = nullptr;
  /// Where strings and dialogs are loaded from: the instance, or a language's satellite.
  HINSTANCE m_hCurrentResourceHandle = nullptr;
  CWinApp* m_pCurrentWinApp = nullptr;
  /// Objects that keep the module loaded, counted by AfxOleLockApp and AfxOleUnlockApp. Any thread
  /// may count.
  std::atomic<LONG> m_nObjectCount{0};
  /// The extension libraries, in the order in which they came. Read and changed under
  /// AfxLockGlobals(CRIT_DYNLINKLIST) (platform/mfc/extension_library.h).
  std::vector<CDynLinkLibrary*> m_libraryList;
};

/// This library's state. It lives as long as the library.
AFX_MODULE_STATE* AfxGetStaticModuleState();

/// The calling thread's current state: the one selected last, or that of the process's program.
/// Never null.
AFX_MODULE_STATE* AfxGetModuleState();

/// Selects `state` for the calling thread; null stands for the program's. The one that was
/// selected, null for none.
AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state);

/// Of the current state.
HINSTANCE AfxGetInstanceHandle();
HINSTANCE AfxGetResourceHandle();
void AfxSetResourceHandle(HINSTANCE resources);
CWinApp* AfxGetApp();

void AfxOleLockApp();
void AfxOleUnlockApp();
/// S_OK if nothing keeps the current state's module loaded, else S_FALSE.
HRESULT AfxDllCanUnloadNow();

/// Selects a state for its scope, and the caller's again behind it.
class AFX_MAINTAIN_STATE2 {
 public:
  explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) : m_previous(AfxSetModuleState(state)) {}
  ~AFX_MAINTAIN_STATE2() { AfxSetModuleState(m_previous); }
  AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
  AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;

 private:
  AFX_MODULE_STATE* m_previous;
};

#define AFX_MANAGE_STATE(state) const AFX_MAINTAIN_STATE2 _moduleState(state)
