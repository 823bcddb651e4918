#include "platform/mfc/win_app.h"

CWinApp::CWinApp() : m_services(velandoc::CurrentPort<velandoc::ModuleServices>()) {
  AFX_MODULE_STATE* state = AfxGetStaticModuleState();
  m_hInstance = state->m_hCurrentInstanceHandle;
  state->m_pCurrentWinApp = this;
}

CWinApp::~CWinApp() {
  AFX_MODULE_STATE* state = AfxGetStaticModuleState();
  if (state->m_pCurrentWinApp == this) state->m_pCurrentWinApp = nullptr;
  if (m_hLangResourceDLL == nullptr) return;
  if (state->m_hCurrentResourceHandle == m_hLangResourceDLL) {
    state->m_hCurrentResourceHandle = state->m_hCurrentInstanceHandle;
  }
  m_services.FreeLibrary(m_hLangResourceDLL);
}

const AFX_MSGMAP* CWinApp::GetMessageMap() const {
  static constexpr AFX_MSGMAP kEmpty{};
  return &kEmpty;
}

BOOL CWinApp::InitInstance() {
  m_hLangResourceDLL = LoadAppLangResourceDLL();
  if (m_hLangResourceDLL != nullptr) {
    AfxGetStaticModuleState()->m_hCurrentResourceHandle = m_hLangResourceDLL;
  }
  return TRUE;
}

int CWinApp::ExitInstance() { return 0; }

HINSTANCE CWinApp::LoadAppLangResourceDLL() { return nullptr; }
