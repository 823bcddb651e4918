#include "host/velandoc_app.h"

#include "platform/atl/base_module.h"
#include "platform/server_runtime.h"

namespace velandoc {

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

CVelandocApp& App() {
  static CVelandocApp app;
  return app;
}

}  // namespace velandoc
