// CDHtmlDialog, a dialog with a page in a browser control above its push buttons.
//
// The system's part is the DialogHost port (platform/dialog_host.h); this class is the same in both
// homes. What a derived class finds:
//
//   OnInitDialog    makes the browser over the whole client area and begins to load
//                   m_strCurrentUrl. A page among the resources (m_nHtmlResID other than 0) is not
//                   loaded by this class: such a dialog stays without a page.
//   m_spHtmlDoc     null until the page is complete, then its document until the window is gone.
//   GetDHtmlEventMap  which events of which elements reach which handlers.
#pragma once

#include <span>
#include <vector>

#include "platform/mfc/dialog.h"
#include "platform/owners.h"

/// The way from an event of the page to its handler.
class CDHtmlSinkHandler {
 protected:
  ~CDHtmlSinkHandler() = default;
};

class CDHtmlEventSink;
/// Calls the handler of the class that the map belongs to. Not a pointer to a member, which would
/// have to be turned into one of the base in the middle of the object.
using DHEVTFUNC = HRESULT (*)(CDHtmlEventSink&);

enum DHtmlEventMapEntryType {
  DHTMLEVENTMAPENTRY_NAME,  // an event of the element whose id is szName
};

struct DHtmlEventMapEntry {
  DHtmlEventMapEntryType nType;
  DISPID dispId;
  LPCWSTR szName;
  DHEVTFUNC pfnEventFunc;
};

class CDHtmlEventSink : public CDHtmlSinkHandler {
 protected:
  ~CDHtmlEventSink() = default;

  /// Lives as long as the program.
  virtual std::span<const DHtmlEventMapEntry> GetDHtmlEventMap();
};

class CDHtmlDialog : public CDialog, public CDHtmlEventSink, private velandoc::BrowserEvents {
 public:
  static const CRuntimeClass classCDHtmlDialog;

  CDHtmlDialog(UINT nIDTemplate, UINT nHtmlResID, CWnd* parent = nullptr);

  const CRuntimeClass* GetRuntimeClass() const override;

  /// The page to begin with; empty for none.
  velandoc::WideString m_strCurrentUrl;
  UINT m_nHtmlResID;
  velandoc::ComPtr<IHTMLDocument2> m_spHtmlDoc;
  /// The browser is a control of the template, so that this class neither makes nor moves it. There
  /// is no such template here.
  bool m_bAttachedControl = false;
  CWnd m_wndBrowser;

 protected:
  const AFX_MSGMAP* GetMessageMap() const override;
  BOOL OnInitDialog() override;
  void OnDialogGone() override;
  /// The browser takes the whole client area.
  void OnSize(UINT type, int cx, int cy);

 private:
  void OnDocumentComplete(IHTMLDocument2* document) noexcept override;
  void OnElementEvent(const velandoc::ElementEvent& event) noexcept override;

  std::vector<velandoc::ElementEvent> m_wanted;
};
