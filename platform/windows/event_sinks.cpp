#include "platform/windows/event_sinks.h"

#include "platform/owners.h"

// Behind com.h, which includes windows.h.
#include <exdispid.h>

namespace velandoc {
namespace {

/// An argument, counted from the end as they lie; null if there are fewer or it is of another type.
const VARIANT* Argument(const DISPPARAMS* params, UINT index, VARTYPE type) {
  if (params == nullptr || index >= params->cArgs) return nullptr;
  const VARIANT& argument = params->rgvarg[index];
  return argument.vt == type ? &argument : nullptr;
}

void SetFlag(const DISPPARAMS* params, UINT index) {
  if (const VARIANT* flag = Argument(params, index, VT_BOOL | VT_BYREF)) {
    *flag->pboolVal = VARIANT_TRUE;
  }
}

}  // namespace

// --- EventSink ----------------------------------------------------------------------------------

STDMETHODIMP EventSink::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}
STDMETHODIMP EventSink::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  *info = nullptr;
  return E_NOTIMPL;
}
STDMETHODIMP EventSink::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
  return DISP_E_UNKNOWNNAME;
}

// --- BrowserSink --------------------------------------------------------------------------------

STDMETHODIMP BrowserSink::Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*,
                                 EXCEPINFO*, UINT*) {
  constexpr UINT kNavigateCancel = 0;
  constexpr UINT kNewWindowCancel = 0;
  constexpr UINT kNewWindow3Cancel = 3;
  constexpr UINT kErrorCancel = 0;
  switch (member) {
    case DISPID_BEFORENAVIGATE2:
      if (!m_allowed) SetFlag(params, kNavigateCancel);
      m_allowed = false;
      return S_OK;
    case DISPID_NEWWINDOW2:
      SetFlag(params, kNewWindowCancel);
      return S_OK;
    case DISPID_NEWWINDOW3:
      SetFlag(params, kNewWindow3Cancel);
      return S_OK;
    case DISPID_NAVIGATEERROR:
      // Without the flag the control would show a page of its own about the error, and that one
      // would be complete.
      m_failed = true;
      SetFlag(params, kErrorCancel);
      return S_OK;
    case DISPID_DOCUMENTCOMPLETE:
      if (!m_failed && m_dialog != nullptr) PostMessageW(m_dialog, m_message, 0, 0);
      return S_OK;
    default:
      return DISP_E_MEMBERNOTFOUND;
  }
}

// --- PageSink -----------------------------------------------------------------------------------

STDMETHODIMP PageSink::Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*,
                              EXCEPINFO*, UINT*) {
  const VARIANT* argument = Argument(params, 0, VT_DISPATCH);
  if (argument == nullptr || argument->pdispVal == nullptr) return S_OK;
  ComPtr<IHTMLEventObj> event;
  argument->pdispVal->QueryInterface(IID_IHTMLEventObj, event.ReceiveVoid());
  ComPtr<IHTMLElement> element;
  if (event) event->get_srcElement(element.Receive());
  while (element && m_events != nullptr) {
    Bstr id;
    element->get_id(id.Receive());
    for (const ElementEvent& wanted : m_wanted) {
      if (wanted.event != member || id.View() != ViewOf(wanted.element)) continue;
      m_events->OnElementEvent(wanted);
      return S_OK;
    }
    ComPtr<IHTMLElement> parent;
    element->get_parentElement(parent.Receive());
    element = std::move(parent);
  }
  return S_OK;
}

}  // namespace velandoc
