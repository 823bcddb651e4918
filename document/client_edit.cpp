// CClient: the fields in the user's hands.
#include <span>

#include "document/client.h"
#include "document/edit_fields_dlg.h"
#include "fields/form_generator.h"
#include "platform/html_document.h"
#include "platform/mfc/module_state.h"
#include "platform/owners.h"
#include "soap/list_items.h"

namespace velandoc {
namespace {

/// Calls a function of the page, `arguments` being its last argument first. False if the page has
/// no such function or the call fails; `result` may be null.
bool CallScript(IDispatch& script, LPCWSTR function, std::span<VARIANT> arguments,
                VARIANT* result) {
  auto* name = const_cast<LPOLESTR>(function);
  DISPID id = 0;
  if (FAILED(script.GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id))) return false;
  DISPPARAMS params{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  return SUCCEEDED(script.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params,
                                 result, nullptr, nullptr));
}

bool CallGetFieldValue(IDispatch& script, const CFieldRecord& field, WideString& value) {
  const Variant name(field.m_name);
  const Variant required(field.m_required ? VARIANT_TRUE : VARIANT_FALSE, VT_I2);
  VARIANT arguments[] = {required.Get(), name.Get()};
  Variant result;
  result.Get() = VARIANT{};
  if (!CallScript(script, OLESTR("GetFieldValue"), arguments, &result.Get())) return false;
  // Whatever its type: the script gives nothing but strings, and an empty result reads as empty
  // text.
  value = ViewOf(result.Get().bstrVal);
  return true;
}

/// False once the page is gone, which fails every call. Where the window answers during a call, as
/// on Linux, Cancel can be the reason: then what was read so far is not to be sent.
bool HasScript(IHTMLDocument2& document) {
  ComPtr<IDispatch> script;
  document.get_Script(script.Receive());
  return static_cast<bool>(script);
}

/// With one argument, where the function has two parameters: what it says ends with "undefined".
/// Users know it so.
void CallAlertRequired(IDispatch& script, const CFieldRecord& field) {
  const Variant label(field.m_displayName);
  VARIANT arguments[] = {label.Get()};
  CallScript(script, OLESTR("AlertRequired"), arguments, nullptr);
}

}  // namespace

STDMETHODIMP CClient::EditFields(VARIANT_BOOL* /*HasUnfilledFields*/) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  CEditFieldsDlg dialog(this);
  dialog.DoModal();
  return S_OK;
}

WideString CClient::BuildFieldsForm() const { return velandoc::BuildFieldsForm(m_fields); }

bool CClient::ReadFormValues(IHTMLDocument2* document, std::list<WideString>& values) const {
  values.clear();
  if (document == nullptr) return false;
  ComPtr<IDispatch> script;
  document->get_Script(script.Receive());
  if (!script) return false;
  for (const CFieldRecord& field : m_fields) {
    WideString value;
    // Without a place for the one that could not be read, those behind it move up. An update pairs
    // by place.
    if (!CallGetFieldValue(*script, field, value)) {
      if (!HasScript(*document)) return false;
      continue;
    }
    values.push_back(value);
    if (value.empty() && field.m_required) {
      CallAlertRequired(*script, field);
      return false;
    }
  }
  return true;
}

void CClient::UpdateFields(const std::list<WideString>& values) {
  std::list<WideString> names;
  for (const CFieldRecord& field : m_fields) names.push_back(field.m_name);
  RowAttributes row;
  if (!UpdateListItems(m_documentUrl.c_str(), m_webUrl.c_str(), m_listId.c_str(),
                       LookupItemAttribute(OLESTR("ows_ID")).c_str(), names, values, row)) {
    return;
  }
  OverlayRow(row, m_fields);
}

}  // namespace velandoc
