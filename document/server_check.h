// CServerCheck, the coclass ServerCheck: does a SharePoint server answer at a URL?
//
// Stateless, apartment-threaded. A call blocks its thread for one request, credentials and
// certificate dialogs included.
#pragma once

#include "platform/atl/com_class_factory.h"
#include "platform/dispatch_impl.h"
#include "velandoc_idl.h"

namespace velandoc {

class CServerCheck
    : public IDispatchImpl<IServerCheck, &IID_IServerCheck, &LIBID_VelandocLib, 1, 0>,
      public CComObjectRootEx<CComSingleThreadModel>,
      public CComCoClass<CServerCheck, &CLSID_ServerCheck> {
 public:
  BEGIN_COM_MAP(CServerCheck)
  COM_INTERFACE_ENTRY(IServerCheck)
  COM_INTERFACE_ENTRY(IDispatch)
  END_COM_MAP()

  /// `ServerName` is a URL with a scheme, in spite of its name; its path and its port are dropped.
  /// Always S_OK, with VARIANT_TRUE if the server's lists service answered as SharePoint's does,
  /// VARIANT_FALSE otherwise and after any failure. `IsServer` is not tested for null.
  STDMETHODIMP Check(BSTR ServerName, VARIANT_BOOL* IsServer) override;

 protected:
  ~CServerCheck() = default;
};

}  // namespace velandoc
