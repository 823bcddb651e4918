// CWinApp, the application object of the library.
#pragma once

#include "platform/mfc/message_map.h"
#include "platform/mfc/module_state.h"
#include "platform/module_services.h"

/// One exists in a library, as a global. Its construction makes it the application of the library's
/// module state, its destruction ends that and lets the satellite go.
class CWinApp {
 public:
  CWinApp();
  CWinApp(const CWinApp&) = delete;
  CWinApp& operator=(const CWinApp&) = delete;
  virtual ~CWinApp();

  /// The map that an application object has to have. The library's handles no message.
  virtual const AFX_MSGMAP* GetMessageMap() const;
  /// When the library has been loaded. Asks LoadAppLangResourceDLL for a satellite and, if there is
  /// one, makes it the module state's resource instance. FALSE keeps the library from being loaded.
  virtual BOOL InitInstance();
  /// Before the library is unloaded. The result has no effect.
  virtual int ExitInstance();
  /// The handle of the language's satellite, null for none, which the base always says.
  virtual HINSTANCE LoadAppLangResourceDLL();

  HINSTANCE m_hInstance = nullptr;
  /// What LoadAppLangResourceDLL gave. Unloaded by the destructor.
  HINSTANCE m_hLangResourceDLL = nullptr;

 private:
  /// Asked for before this object is complete, so that it outlives it.
  velandoc::ModuleServices& m_services;
};
