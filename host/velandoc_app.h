// CVelandocApp, the library's application object.
#pragma once

#include "platform/mfc/win_app.h"

namespace velandoc {

/// COM objects come through CVelandocModule's object map alone, so no OLE start-up and no object
/// factories here.
class CVelandocApp : public CWinApp {
 public:
  ~CVelandocApp() override = default;
  const AFX_MSGMAP* GetMessageMap() const override;
  /// Makes the library the merged proxies' module, and a satellite that the base found ATL's
  /// resource instance too.
  BOOL InitInstance() override;
  int ExitInstance() override;
};

/// The only instance.
CVelandocApp& App();

}  // namespace velandoc
