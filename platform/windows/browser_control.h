// The system's browser control in a dialog: made, placed, sent to a page, given its keys, closed.
//
// It is used on the dialog's thread, on which OLE has been started, and closed before the dialog's
// window goes.
#pragma once

#include <memory>
#include <span>

#include "platform/atl/com_object.h"
#include "platform/owners.h"
#include "platform/windows/browser_site.h"
#include "platform/windows/event_sinks.h"

namespace velandoc {

class BrowserControl {
 public:
  /// Null if the system has no such control or it refuses to work in a dialog. `completed` is the
  /// message that `dialog` gets when a page is there; it answers with DeliverDocument.
  static std::unique_ptr<BrowserControl> Create(HWND dialog, UINT completed, const RECT& place,
                                                std::span<const ElementEvent> wanted,
                                                BrowserEvents& events);
  ~BrowserControl();
  BrowserControl(const BrowserControl&) = delete;
  BrowserControl& operator=(const BrowserControl&) = delete;

  HWND GetWindow() const { return m_window; }
  bool HoldsFocus() const;
  void Place(const RECT& place);
  /// `url` as DialogHost::Navigate has it. FALSE if it can't be begun.
  BOOL Navigate(LPCWSTR url);
  /// Hands the page's document to the events, if there is one.
  void DeliverDocument();
  /// True if the page has used the key: `message` is then done with.
  bool TranslateKey(MSG& message);
  /// Gives the page the focus. `message` is the Tab key that came here: backwards it is the last
  /// element's.
  void TakeFocus(MSG& message);
  /// The dialog's window has become the active one, or another.
  void OnActivate(bool active);

 private:
  using Site = CComObject<BrowserSite>;
  using Frame = CComObject<BrowserFrame>;

  explicit BrowserControl(HWND dialog) : m_dialog(dialog) {}
  bool Open(UINT completed, const RECT& place, std::span<const ElementEvent> wanted,
            BrowserEvents& events);

  const HWND m_dialog;
  HWND m_window = nullptr;
  BrowserEvents* m_events = nullptr;
  ComPtr<Frame> m_frame;
  ComPtr<Site> m_site;
  ComPtr<CComObject<BrowserSink>> m_browserSink;
  ComPtr<CComObject<PageSink>> m_pageSink;
  ComPtr<IOleObject> m_object;
  ComPtr<IWebBrowser2> m_browser;
  ComPtr<IOleInPlaceObject> m_inPlace;
  ComPtr<IOleInPlaceActiveObject> m_active;
  ComPtr<IConnectionPoint> m_browserPoint;
  DWORD m_browserCookie = 0;
  ComPtr<IConnectionPoint> m_pagePoint;
  DWORD m_pageCookie = 0;
};

}  // namespace velandoc
