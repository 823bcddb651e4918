// What a dialog offers to the browser control that it hosts: the place in its window, the frame,
// and the limits that a page is kept in.
#pragma once

#include "platform/atl/com_object_root.h"
#include "platform/html_document.h"

// Behind com.h, which includes windows.h.
#include <docobj.h>
#include <mshtmhst.h>
#include <servprov.h>

namespace velandoc {

/// The frame of the control's in-place activity: the dialog, without menus and tool bars.
class BrowserFrame : public CComObjectRootEx<CComSingleThreadModel>, public IOleInPlaceFrame {
 public:
  /// Before the first use.
  void SetDialog(HWND dialog) { m_dialog = dialog; }

  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;
  STDMETHODIMP GetBorder(RECT* border) override;
  STDMETHODIMP RequestBorderSpace(LPCBORDERWIDTHS widths) override;
  STDMETHODIMP SetBorderSpace(LPCBORDERWIDTHS widths) override;
  STDMETHODIMP SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR name) override;
  STDMETHODIMP InsertMenus(HMENU shared, LPOLEMENUGROUPWIDTHS widths) override;
  STDMETHODIMP SetMenu(HMENU shared, HOLEMENU menu, HWND activeObject) override;
  STDMETHODIMP RemoveMenus(HMENU shared) override;
  STDMETHODIMP SetStatusText(LPCOLESTR text) override;
  STDMETHODIMP EnableModeless(BOOL enable) override;
  STDMETHODIMP TranslateAccelerator(MSG* message, WORD id) override;

  BEGIN_COM_MAP(BrowserFrame)
  COM_INTERFACE_ENTRY(IOleInPlaceFrame)
  COM_INTERFACE_ENTRY(IOleInPlaceUIWindow)
  COM_INTERFACE_ENTRY(IOleWindow)
  END_COM_MAP()

 protected:
  ~BrowserFrame() = default;

 private:
  HWND m_dialog = nullptr;
};

/// The control's site. Its dispatch interface answers for ambient properties.
class BrowserSite : public CComObjectRootEx<CComSingleThreadModel>,
                    public IOleClientSite,
                    public IOleInPlaceSite,
                    public IOleControlSite,
                    public IDocHostUIHandler,
                    public IServiceProvider,
                    public IInternetSecurityManager,
                    public IDispatch {
 public:
  /// Before the first use. `frame` outlives the site.
  void SetDialog(HWND dialog, IOleInPlaceFrame* frame) {
    m_dialog = dialog;
    m_frame = frame;
  }
  /// Where the control is to be, in client coordinates of the dialog.
  void SetPlace(const RECT& place) { m_place = place; }

  // IOleClientSite
  STDMETHODIMP SaveObject() override;
  STDMETHODIMP GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
  STDMETHODIMP GetContainer(IOleContainer** container) override;
  STDMETHODIMP ShowObject() override;
  STDMETHODIMP OnShowWindow(BOOL show) override;
  STDMETHODIMP RequestNewObjectLayout() override;

  // IOleInPlaceSite
  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;
  STDMETHODIMP CanInPlaceActivate() override;
  STDMETHODIMP OnInPlaceActivate() override;
  STDMETHODIMP OnUIActivate() override;
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                RECT* place, RECT* clip, OLEINPLACEFRAMEINFO* info) override;
  STDMETHODIMP Scroll(SIZE extent) override;
  STDMETHODIMP OnUIDeactivate(BOOL undoable) override;
  STDMETHODIMP OnInPlaceDeactivate() override;
  STDMETHODIMP DiscardUndoState() override;
  STDMETHODIMP DeactivateAndUndo() override;
  STDMETHODIMP OnPosRectChange(const RECT* place) override;

  // IOleControlSite
  STDMETHODIMP OnControlInfoChanged() override;
  STDMETHODIMP LockInPlaceActive(BOOL lock) override;
  STDMETHODIMP GetExtendedControl(IDispatch** control) override;
  STDMETHODIMP TransformCoords(POINTL* himetric, POINTF* container, DWORD flags) override;
  STDMETHODIMP TranslateAccelerator(MSG* message, DWORD modifiers) override;
  STDMETHODIMP OnFocus(BOOL gained) override;
  STDMETHODIMP ShowPropertyFrame() override;

  // IDocHostUIHandler
  STDMETHODIMP ShowContextMenu(DWORD id, POINT* at, IUnknown* command, IDispatch* object) override;
  STDMETHODIMP GetHostInfo(DOCHOSTUIINFO* info) override;
  STDMETHODIMP ShowUI(DWORD id, IOleInPlaceActiveObject* object, IOleCommandTarget* command,
                      IOleInPlaceFrame* frame, IOleInPlaceUIWindow* document) override;
  STDMETHODIMP HideUI() override;
  STDMETHODIMP UpdateUI() override;
  STDMETHODIMP EnableModeless(BOOL enable) override;
  STDMETHODIMP OnDocWindowActivate(BOOL activate) override;
  STDMETHODIMP OnFrameWindowActivate(BOOL activate) override;
  STDMETHODIMP ResizeBorder(const RECT* border, IOleInPlaceUIWindow* window,
                            BOOL frameWindow) override;
  STDMETHODIMP TranslateAccelerator(MSG* message, const GUID* group, DWORD command) override;
  STDMETHODIMP GetOptionKeyPath(LPOLESTR* key, DWORD reserved) override;
  STDMETHODIMP GetDropTarget(IDropTarget* offered, IDropTarget** target) override;
  STDMETHODIMP GetExternal(IDispatch** external) override;
  STDMETHODIMP TranslateUrl(DWORD reserved, OLECHAR* url, OLECHAR** translated) override;
  STDMETHODIMP FilterDataObject(IDataObject* object, IDataObject** filtered) override;

  // IServiceProvider: the security manager below.
  STDMETHODIMP QueryService(REFGUID service, REFIID riid, void** object) override;

  // IInternetSecurityManager. The page is a local file with values in it that nobody has escaped,
  // and the system trusts local files: what a script could make of that, objects and downloads, is
  // refused here. Everything else is as the system has it.
  STDMETHODIMP SetSecuritySite(IInternetSecurityMgrSite* site) override;
  STDMETHODIMP GetSecuritySite(IInternetSecurityMgrSite** site) override;
  STDMETHODIMP MapUrlToZone(LPCWSTR url, DWORD* zone, DWORD flags) override;
  STDMETHODIMP GetSecurityId(LPCWSTR url, BYTE* id, DWORD* size, DWORD_PTR reserved) override;
  STDMETHODIMP ProcessUrlAction(LPCWSTR url, DWORD action, BYTE* policy, DWORD policySize,
                                BYTE* context, DWORD contextSize, DWORD flags,
                                DWORD reserved) override;
  STDMETHODIMP QueryCustomPolicy(LPCWSTR url, REFGUID key, BYTE** policy, DWORD* policySize,
                                 BYTE* context, DWORD contextSize, DWORD reserved) override;
  STDMETHODIMP SetZoneMapping(DWORD zone, LPCWSTR pattern, DWORD flags) override;
  STDMETHODIMP GetZoneMappings(DWORD zone, IEnumString** patterns, DWORD flags) override;

  // IDispatch
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID riid, LCID locale, WORD flags, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override;

  BEGIN_COM_MAP(BrowserSite)
  COM_INTERFACE_ENTRY(IOleClientSite)
  COM_INTERFACE_ENTRY(IOleInPlaceSite)
  COM_INTERFACE_ENTRY(IOleWindow)
  COM_INTERFACE_ENTRY(IOleControlSite)
  COM_INTERFACE_ENTRY(IDocHostUIHandler)
  COM_INTERFACE_ENTRY(IServiceProvider)
  COM_INTERFACE_ENTRY(IInternetSecurityManager)
  COM_INTERFACE_ENTRY(IDispatch)
  END_COM_MAP()

 protected:
  ~BrowserSite() = default;

 private:
  HWND m_dialog = nullptr;
  IOleInPlaceFrame* m_frame = nullptr;
  RECT m_place{};
};

}  // namespace velandoc
