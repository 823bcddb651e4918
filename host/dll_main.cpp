#include "host/dll_main.h"

#include "host/velandoc_app.h"
#include "host/velandoc_module.h"

STDAPI_ENTRY DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID /*reserved*/) {
  // The application object knows its module by itself.
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      // The two global objects come into being here, the module first, so that it outlives the
      // application.
      velandoc::Module();
      return velandoc::App().InitInstance();
    case DLL_PROCESS_DETACH:
      velandoc::App().ExitInstance();
      return TRUE;
    default:
      return TRUE;
  }
}
