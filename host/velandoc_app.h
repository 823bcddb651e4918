// CVelandocApp, the library's application object.
#pragma once

#include "host/satellite_search.h"
#include "platform/mfc/win_app.h"

namespace velandoc {

/// COM objects come through CVelandocModule's object map alone, so no OLE start-up and no object
/// factories here.
class CVelandocApp : public CWinApp {
 public:
  explicit CVelandocApp(SatelliteSearch& search = ProcessSatelliteSearch()) : m_search(search) {}
  ~CVelandocApp() override = default;
  const AFX_MSGMAP* GetMessageMap() const override;
  /// Makes the library the merged proxies' module, and a satellite that the base found ATL's
  /// resource instance too.
  BOOL InitInstance() override;
  int ExitInstance() override;
  /// The user's language's satellite of the library, opened for its resources alone, or null. Those
  /// of the extension libraries become their resources on the way. No failure is told: what can't
  /// be found or opened stays English.
  HINSTANCE LoadAppLangResourceDLL() override;

 private:
  HINSTANCE LoadSatellite(HINSTANCE module);

  SatelliteSearch& m_search;
};

/// The only instance.
CVelandocApp& App();

}  // namespace velandoc
