#include "platform/windows/browser_control.h"

// Behind com.h, which includes windows.h.
#include <shlwapi.h>

namespace velandoc {
namespace {

/// A counted object of a class of ours.
template <class Object>
ComPtr<CComObject<Object>> Make() {
  CComObject<Object>* made = nullptr;
  CheckResult(CComObject<Object>::CreateInstance(&made));
  return ComPtr<CComObject<Object>>(made);
}

template <class Interface>
ComPtr<Interface> As(IUnknown* object, REFIID riid) {
  ComPtr<Interface> found;
  if (object != nullptr) object->QueryInterface(riid, found.ReceiveVoid());
  return found;
}

/// Connects `sink` to the events `riid` of `source`; nothing if that has none.
ComPtr<IConnectionPoint> AdviseSink(IUnknown* source, REFIID riid, IDispatch* sink, DWORD& cookie) {
  ComPtr<IConnectionPoint> point;
  const auto container = As<IConnectionPointContainer>(source, IID_IConnectionPointContainer);
  if (container) container->FindConnectionPoint(riid, point.Receive());
  if (point && FAILED(point->Advise(sink, &cookie))) point.Reset();
  return point;
}

void UnadviseSink(ComPtr<IConnectionPoint>& point, DWORD cookie) {
  if (point) point->Unadvise(cookie);
  point.Reset();
}

constexpr WideView kFileScheme = L"file://";

/// A path behind "file://" as a URL whose escapes stand for the path's own letters; any other URL
/// as it is; empty if the path can't be made one.
WideString PageUrl(WideView url) {
  if (!url.starts_with(kFileScheme)) return WideString(url);
  const WideString path(url.substr(kFileScheme.size()));
  const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  WideString full(size, L'\0');
  full.resize(GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
  if (full.empty()) return {};
  // Three letters for each of the path's at the most, and the scheme.
  WideString text(full.size() * 3 + 16, L'\0');
  auto length = static_cast<DWORD>(text.size());
  if (FAILED(UrlCreateFromPathW(full.c_str(), text.data(), &length, 0))) return {};
  text.resize(length);
  return text;
}

}  // namespace

std::unique_ptr<BrowserControl> BrowserControl::Create(HWND dialog, UINT completed,
                                                       const RECT& place,
                                                       std::span<const ElementEvent> wanted,
                                                       BrowserEvents& events) {
  std::unique_ptr<BrowserControl> control(new BrowserControl(dialog));
  if (!control->Open(completed, place, wanted, events)) return nullptr;
  return control;
}

bool BrowserControl::Open(UINT completed, const RECT& place, std::span<const ElementEvent> wanted,
                          BrowserEvents& events) {
  m_events = &events;
  m_frame = Make<BrowserFrame>();
  m_frame->SetDialog(m_dialog);
  m_site = Make<BrowserSite>();
  m_site->SetDialog(m_dialog, m_frame.Get());
  m_site->SetPlace(place);
  m_browserSink = Make<BrowserSink>();
  m_browserSink->Connect(m_dialog, completed);
  m_pageSink = Make<PageSink>();
  m_pageSink->Connect(wanted, &events);

  if (FAILED(CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER, IID_IOleObject,
                              m_object.ReceiveVoid())) ||
      FAILED(m_object->SetClientSite(m_site.Get()))) {
    return false;
  }
  m_browser = As<IWebBrowser2>(m_object.Get(), IID_IWebBrowser2);
  m_inPlace = As<IOleInPlaceObject>(m_object.Get(), IID_IOleInPlaceObject);
  m_active = As<IOleInPlaceActiveObject>(m_object.Get(), IID_IOleInPlaceActiveObject);
  if (!m_browser || !m_inPlace || !m_active ||
      FAILED(
          m_object->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, m_site.Get(), 0, m_dialog, &place)) ||
      FAILED(m_inPlace->GetWindow(&m_window)) || m_window == nullptr) {
    return false;
  }
  m_browser->put_RegisterAsDropTarget(VARIANT_FALSE);
  m_browserPoint =
      AdviseSink(m_object.Get(), DIID_DWebBrowserEvents2, m_browserSink.Get(), m_browserCookie);
  if (!m_browserPoint) return false;

  // A stop of the Tab key, and as the topmost of the dialog's windows the first.
  SetWindowLongPtrW(m_window, GWL_STYLE, GetWindowLongPtrW(m_window, GWL_STYLE) | WS_TABSTOP);
  ::SetWindowPos(m_window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  Place(place);
  return true;
}

BrowserControl::~BrowserControl() {
  if (m_browserSink) m_browserSink->Disconnect();
  if (m_pageSink) m_pageSink->Disconnect();
  UnadviseSink(m_pagePoint, m_pageCookie);
  UnadviseSink(m_browserPoint, m_browserCookie);
  if (!m_object) return;
  m_object->Close(OLECLOSE_NOSAVE);
  m_object->SetClientSite(nullptr);
}

bool BrowserControl::HoldsFocus() const {
  const HWND focus = GetFocus();
  return focus != nullptr && (focus == m_window || IsChild(m_window, focus));
}

void BrowserControl::Place(const RECT& place) {
  m_site->SetPlace(place);
  m_inPlace->SetObjectRects(&place, &place);
  // Not every version of the control moves its window by itself.
  ::MoveWindow(m_window, place.left, place.top, place.right - place.left, place.bottom - place.top,
               TRUE);
}

BOOL BrowserControl::Navigate(LPCWSTR url) {
  const WideString page = PageUrl(ViewOf(url));
  if (page.empty()) return FALSE;
  Variant target{WideView(page)};
  Variant none;
  m_browserSink->AllowNavigation();
  return SUCCEEDED(
      m_browser->Navigate2(&target.Get(), &none.Get(), &none.Get(), &none.Get(), &none.Get()));
}

void BrowserControl::DeliverDocument() {
  ComPtr<IDispatch> held;
  m_browser->get_Document(held.Receive());
  const auto document = As<IHTMLDocument2>(held.Get(), IID_IHTMLDocument2);
  if (!document) return;
  UnadviseSink(m_pagePoint, m_pageCookie);
  m_pagePoint = AdviseSink(document.Get(), kDocumentEvents, m_pageSink.Get(), m_pageCookie);
  m_events->OnDocumentComplete(document.Get());
}

bool BrowserControl::TranslateKey(MSG& message) {
  return m_active->TranslateAccelerator(&message) == S_OK;
}

void BrowserControl::TakeFocus(MSG& message) {
  RECT place{};
  ::GetWindowRect(m_window, &place);
  MapWindowPoints(nullptr, m_dialog, reinterpret_cast<POINT*>(&place), 2);
  m_object->DoVerb(OLEIVERB_UIACTIVATE, &message, m_site.Get(), 0, m_dialog, &place);
  if (!HoldsFocus()) SetFocus(m_window);
}

void BrowserControl::OnActivate(bool active) { m_active->OnFrameWindowActivate(active); }

}  // namespace velandoc
