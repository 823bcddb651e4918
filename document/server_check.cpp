#include "document/server_check.h"

#include "platform/mfc/module_state.h"
#include "soap/lists_service.h"

namespace velandoc {

STDMETHODIMP CServerCheck::Check(BSTR ServerName, VARIANT_BOOL* IsServer) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  // A null BSTR is empty text.
  const LPCWSTR url = ServerName != nullptr ? ServerName : OLESTR("");
  *IsServer = GetListCollection(url) ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

}  // namespace velandoc
