#include "platform/mfc/module_state.h"

#include "platform/module_path.h"
#include "platform/thread_slot.h"

namespace {

velandoc::ThreadSlot& Selected() {
  static velandoc::ThreadSlot slot;
  return slot;
}

/// The state of a program that has none of its own: nobody's resources.
AFX_MODULE_STATE& ProgramState() {
  static AFX_MODULE_STATE state;
  return state;
}

}  // namespace

AFX_MODULE_STATE* AfxGetStaticModuleState() {
  static AFX_MODULE_STATE state;
  static const bool filled = [] {
    state.m_hCurrentInstanceHandle = velandoc::GetModuleInstance();
    state.m_hCurrentResourceHandle = state.m_hCurrentInstanceHandle;
    return true;
  }();
  static_cast<void>(filled);
  return &state;
}

AFX_MODULE_STATE* AfxGetModuleState() {
  void* selected = Selected().Get();
  return selected != nullptr ? static_cast<AFX_MODULE_STATE*>(selected) : &ProgramState();
}

AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state) {
  void* previous = Selected().Get();
  Selected().Set(state);
  return static_cast<AFX_MODULE_STATE*>(previous);
}

HINSTANCE AfxGetInstanceHandle() { return AfxGetModuleState()->m_hCurrentInstanceHandle; }
HINSTANCE AfxGetResourceHandle() { return AfxGetModuleState()->m_hCurrentResourceHandle; }
void AfxSetResourceHandle(HINSTANCE resources) {
  AfxGetModuleState()->m_hCurrentResourceHandle = resources;
}
CWinApp* AfxGetApp() { return AfxGetModuleState()->m_pCurrentWinApp; }

void AfxOleLockApp() { AfxGetModuleState()->m_nObjectCount.fetch_add(1); }
void AfxOleUnlockApp() { AfxGetModuleState()->m_nObjectCount.fetch_sub(1); }
HRESULT AfxDllCanUnloadNow() {
  return AfxGetModuleState()->m_nObjectCount.load() == 0 ? S_OK : S_FALSE;
}
