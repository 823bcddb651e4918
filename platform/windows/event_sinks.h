// The receivers of the browser control's events: one for the control, one for the page.
//
// Both live as long as somebody holds them and are told when their dialog goes: from Disconnect on
// they hear nothing any more.
#pragma once

#include <span>

#include "platform/atl/com_object_root.h"
#include "platform/dialog_host.h"

// Behind com.h, which includes windows.h.
#include <exdisp.h>

namespace velandoc {

/// What a set of events needs of IDispatch: Invoke alone.
class EventSink : public CComObjectRootEx<CComSingleThreadModel>, public IDispatch {
 public:
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;

 protected:
  ~EventSink() = default;
};

/// DWebBrowserEvents2. Lets the one navigation pass that has been allowed, and nothing else: no
/// other page, frame or window.
class BrowserSink : public EventSink {
 public:
  /// `dialog` is sent `message` once the page is complete: not within the event, which may come
  /// while the control is still in Navigate.
  void Connect(HWND dialog, UINT message) {
    m_dialog = dialog;
    m_message = message;
  }
  void Disconnect() { m_dialog = nullptr; }
  /// The next navigation is the page's own.
  void AllowNavigation() { m_allowed = true; }

  STDMETHODIMP Invoke(DISPID member, REFIID riid, LCID locale, WORD flags, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override;

  BEGIN_COM_MAP(BrowserSink)
  COM_INTERFACE_ENTRY(IDispatch)
  COM_INTERFACE_ENTRY_IID(DIID_DWebBrowserEvents2, IDispatch)
  END_COM_MAP()

 protected:
  ~BrowserSink() = default;

 private:
  HWND m_dialog = nullptr;
  UINT m_message = 0;
  bool m_allowed = false;
  bool m_failed = false;
};

// {3050F613-98B5-11CF-BB82-00AA00BDCE0B}; the compiler's libraries lack it.
inline constexpr IID kDocumentEvents = {
    0x3050F613, 0x98B5, 0x11CF, {0xBB, 0x82, 0x00, 0xAA, 0x00, 0xBD, 0xCE, 0x0B}};

/// HTMLDocumentEvents2: the events of all elements, as they rise to the document. So an element
/// that comes into the page later is heard too; an event that does not rise is not.
class PageSink : public EventSink {
 public:
  void Connect(std::span<const ElementEvent> wanted, BrowserEvents* events) {
    m_wanted = wanted;
    m_events = events;
  }
  void Disconnect() { m_events = nullptr; }

  STDMETHODIMP Invoke(DISPID member, REFIID riid, LCID locale, WORD flags, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override;

  BEGIN_COM_MAP(PageSink)
  COM_INTERFACE_ENTRY(IDispatch)
  COM_INTERFACE_ENTRY_IID(kDocumentEvents, IDispatch)
  END_COM_MAP()

 protected:
  ~PageSink() = default;

 private:
  std::span<const ElementEvent> m_wanted;
  BrowserEvents* m_events = nullptr;
};

}  // namespace velandoc
