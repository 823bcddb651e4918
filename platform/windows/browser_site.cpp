#include "platform/windows/browser_site.h"

// Behind com.h, which includes windows.h.
#include <mshtmdid.h>
#include <urlmon.h>

namespace velandoc {

// --- BrowserFrame -------------------------------------------------------------------------------

STDMETHODIMP BrowserFrame::GetWindow(HWND* window) {
  *window = m_dialog;
  return S_OK;
}
STDMETHODIMP BrowserFrame::ContextSensitiveHelp(BOOL) { return E_NOTIMPL; }
STDMETHODIMP BrowserFrame::GetBorder(RECT*) { return INPLACE_E_NOTOOLSPACE; }
STDMETHODIMP BrowserFrame::RequestBorderSpace(LPCBORDERWIDTHS) { return INPLACE_E_NOTOOLSPACE; }
STDMETHODIMP BrowserFrame::SetBorderSpace(LPCBORDERWIDTHS) { return S_OK; }
// The dialog gives its keys to the control, which knows its active object itself.
STDMETHODIMP BrowserFrame::SetActiveObject(IOleInPlaceActiveObject*, LPCOLESTR) { return S_OK; }
STDMETHODIMP BrowserFrame::InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) { return E_NOTIMPL; }
STDMETHODIMP BrowserFrame::SetMenu(HMENU, HOLEMENU, HWND) { return S_OK; }
STDMETHODIMP BrowserFrame::RemoveMenus(HMENU) { return S_OK; }
STDMETHODIMP BrowserFrame::SetStatusText(LPCOLESTR) { return S_OK; }
STDMETHODIMP BrowserFrame::EnableModeless(BOOL) { return S_OK; }
STDMETHODIMP BrowserFrame::TranslateAccelerator(MSG*, WORD) { return S_FALSE; }

// --- IOleClientSite -----------------------------------------------------------------------------

STDMETHODIMP BrowserSite::SaveObject() { return E_NOTIMPL; }
STDMETHODIMP BrowserSite::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  *moniker = nullptr;
  return E_NOTIMPL;
}
STDMETHODIMP BrowserSite::GetContainer(IOleContainer** container) {
  *container = nullptr;
  return E_NOINTERFACE;
}
STDMETHODIMP BrowserSite::ShowObject() { return S_OK; }
STDMETHODIMP BrowserSite::OnShowWindow(BOOL) { return S_OK; }
STDMETHODIMP BrowserSite::RequestNewObjectLayout() { return E_NOTIMPL; }

// --- IOleInPlaceSite ----------------------------------------------------------------------------

STDMETHODIMP BrowserSite::GetWindow(HWND* window) {
  *window = m_dialog;
  return S_OK;
}
STDMETHODIMP BrowserSite::ContextSensitiveHelp(BOOL) { return E_NOTIMPL; }
STDMETHODIMP BrowserSite::CanInPlaceActivate() { return S_OK; }
STDMETHODIMP BrowserSite::OnInPlaceActivate() { return S_OK; }
STDMETHODIMP BrowserSite::OnUIActivate() { return S_OK; }
STDMETHODIMP BrowserSite::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                           RECT* place, RECT* clip, OLEINPLACEFRAMEINFO* info) {
  m_frame->AddRef();
  *frame = m_frame;
  *document = nullptr;
  *place = m_place;
  *clip = m_place;
  // The structure's size is the control's.
  info->fMDIApp = FALSE;
  info->hwndFrame = m_dialog;
  info->haccel = nullptr;
  info->cAccelEntries = 0;
  return S_OK;
}
STDMETHODIMP BrowserSite::Scroll(SIZE) { return E_NOTIMPL; }
STDMETHODIMP BrowserSite::OnUIDeactivate(BOOL) { return S_OK; }
STDMETHODIMP BrowserSite::OnInPlaceDeactivate() { return S_OK; }
STDMETHODIMP BrowserSite::DiscardUndoState() { return E_NOTIMPL; }
STDMETHODIMP BrowserSite::DeactivateAndUndo() { return E_NOTIMPL; }
// The dialog alone says where the control is.
STDMETHODIMP BrowserSite::OnPosRectChange(const RECT*) { return S_OK; }

// --- IOleControlSite ----------------------------------------------------------------------------

STDMETHODIMP BrowserSite::OnControlInfoChanged() { return E_NOTIMPL; }
STDMETHODIMP BrowserSite::LockInPlaceActive(BOOL) { return E_NOTIMPL; }
STDMETHODIMP BrowserSite::GetExtendedControl(IDispatch** control) {
  *control = nullptr;
  return E_NOTIMPL;
}
STDMETHODIMP BrowserSite::TransformCoords(POINTL*, POINTF*, DWORD) { return E_NOTIMPL; }
// A Tab behind the last element comes back to the dialog as a key that nobody wanted.
STDMETHODIMP BrowserSite::TranslateAccelerator(MSG*, DWORD) { return S_FALSE; }
STDMETHODIMP BrowserSite::OnFocus(BOOL) { return S_OK; }
STDMETHODIMP BrowserSite::ShowPropertyFrame() { return E_NOTIMPL; }

// --- IDocHostUIHandler --------------------------------------------------------------------------

STDMETHODIMP BrowserSite::ShowContextMenu(DWORD id, POINT*, IUnknown*, IDispatch*) {
  // Text has its menu (cut, copy, paste). The page's own one offers to go back, to load it again
  // and to see its source.
  return id == CONTEXT_MENU_CONTROL || id == CONTEXT_MENU_TEXTSELECT ? S_FALSE : S_OK;
}
STDMETHODIMP BrowserSite::GetHostInfo(DOCHOSTUIINFO* info) {
  info->dwFlags = DOCHOSTUIFLAG_THEME | DOCHOSTUIFLAG_NO3DBORDER;
  info->dwDoubleClick = DOCHOSTUIDBLCLK_DEFAULT;
  return S_OK;
}
STDMETHODIMP BrowserSite::ShowUI(DWORD, IOleInPlaceActiveObject*, IOleCommandTarget*,
                                 IOleInPlaceFrame*, IOleInPlaceUIWindow*) {
  return S_FALSE;
}
STDMETHODIMP BrowserSite::HideUI() { return S_OK; }
STDMETHODIMP BrowserSite::UpdateUI() { return S_OK; }
STDMETHODIMP BrowserSite::EnableModeless(BOOL) { return S_OK; }
STDMETHODIMP BrowserSite::OnDocWindowActivate(BOOL) { return S_OK; }
STDMETHODIMP BrowserSite::OnFrameWindowActivate(BOOL) { return S_OK; }
STDMETHODIMP BrowserSite::ResizeBorder(const RECT*, IOleInPlaceUIWindow*, BOOL) { return S_OK; }
STDMETHODIMP BrowserSite::TranslateAccelerator(MSG* message, const GUID*, DWORD) {
  // The browser's shortcuts that would lose what has been typed, or open a window.
  if (message->message != WM_KEYDOWN) return S_FALSE;
  if (message->wParam == VK_F5) return S_OK;
  if (GetKeyState(VK_CONTROL) >= 0) return S_FALSE;
  switch (message->wParam) {
    case 'F':
    case 'L':
    case 'N':
    case 'O':
    case 'P':
    case 'R':
      return S_OK;
    default:
      return S_FALSE;
  }
}
STDMETHODIMP BrowserSite::GetOptionKeyPath(LPOLESTR* key, DWORD) {
  *key = nullptr;
  return S_FALSE;
}
STDMETHODIMP BrowserSite::GetDropTarget(IDropTarget*, IDropTarget** target) {
  *target = nullptr;
  return E_NOTIMPL;
}
STDMETHODIMP BrowserSite::GetExternal(IDispatch** external) {
  *external = nullptr;
  return S_FALSE;
}
STDMETHODIMP BrowserSite::TranslateUrl(DWORD, OLECHAR*, OLECHAR** translated) {
  *translated = nullptr;
  return S_FALSE;
}
STDMETHODIMP BrowserSite::FilterDataObject(IDataObject*, IDataObject** filtered) {
  *filtered = nullptr;
  return S_FALSE;
}

// --- IServiceProvider ---------------------------------------------------------------------------

STDMETHODIMP BrowserSite::QueryService(REFGUID service, REFIID riid, void** object) {
  *object = nullptr;
  if (!IsEqualGUID(service, IID_IInternetSecurityManager)) return E_NOINTERFACE;
  return InternalQueryInterface(this, _GetEntries(), riid, object);
}

// --- IInternetSecurityManager -------------------------------------------------------------------

STDMETHODIMP BrowserSite::SetSecuritySite(IInternetSecurityMgrSite*) {
  return INET_E_DEFAULT_ACTION;
}
STDMETHODIMP BrowserSite::GetSecuritySite(IInternetSecurityMgrSite**) {
  return INET_E_DEFAULT_ACTION;
}
STDMETHODIMP BrowserSite::MapUrlToZone(LPCWSTR, DWORD*, DWORD) { return INET_E_DEFAULT_ACTION; }
STDMETHODIMP BrowserSite::GetSecurityId(LPCWSTR, BYTE*, DWORD*, DWORD_PTR) {
  return INET_E_DEFAULT_ACTION;
}
STDMETHODIMP BrowserSite::ProcessUrlAction(LPCWSTR, DWORD action, BYTE* policy, DWORD policySize,
                                           BYTE*, DWORD, DWORD, DWORD) {
  const bool refused = (action >= URLACTION_DOWNLOAD_MIN && action <= URLACTION_DOWNLOAD_MAX) ||
                       (action >= URLACTION_ACTIVEX_MIN && action <= URLACTION_ACTIVEX_MAX) ||
                       (action >= URLACTION_JAVA_MIN && action <= URLACTION_JAVA_MAX);
  if (!refused) return INET_E_DEFAULT_ACTION;
  if (policySize >= sizeof(DWORD)) *reinterpret_cast<DWORD*>(policy) = URLPOLICY_DISALLOW;
  return S_FALSE;
}
STDMETHODIMP BrowserSite::QueryCustomPolicy(LPCWSTR, REFGUID, BYTE**, DWORD*, BYTE*, DWORD, DWORD) {
  return INET_E_DEFAULT_ACTION;
}
STDMETHODIMP BrowserSite::SetZoneMapping(DWORD, LPCWSTR, DWORD) { return INET_E_DEFAULT_ACTION; }
STDMETHODIMP BrowserSite::GetZoneMappings(DWORD, IEnumString**, DWORD) {
  return INET_E_DEFAULT_ACTION;
}

// --- IDispatch ----------------------------------------------------------------------------------

STDMETHODIMP BrowserSite::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}
STDMETHODIMP BrowserSite::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  *info = nullptr;
  return E_NOTIMPL;
}
STDMETHODIMP BrowserSite::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
  return DISP_E_UNKNOWNNAME;
}
STDMETHODIMP BrowserSite::Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result,
                                 EXCEPINFO*, UINT*) {
  if (member != DISPID_AMBIENT_DLCONTROL || result == nullptr) return DISP_E_MEMBERNOTFOUND;
  // What is not named is off: images, sounds and films.
  result->vt = VT_I4;
  result->lVal =
      DLCTL_NO_JAVA | DLCTL_NO_DLACTIVEXCTLS | DLCTL_NO_RUNACTIVEXCTLS | DLCTL_NO_FRAMEDOWNLOAD;
  return S_OK;
}

}  // namespace velandoc
