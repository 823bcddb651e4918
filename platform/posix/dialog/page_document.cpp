#include "platform/posix/dialog/page_document.h"

#include <new>
#include <vector>

#include "platform/posix/com/counted.h"
#include "platform/posix/dialog/script_literal.h"

namespace velandoc {
namespace {

using Outcome = ConfinedPage::Outcome;

/// What both objects share: an IDispatch that knows no member. For one thread.
template <class Interface>
class PageObject : public Counted<ULONG, Interface> {
 public:
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return DISP_E_BADINDEX;
  }

 protected:
  HRESULT Query(std::initializer_list<const GUID*> known, REFIID riid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    for (const GUID* iid : known) {
      if (!IsEqualIID(riid, *iid)) continue;
      this->AddRef();
      *object = static_cast<Interface*>(this);
      return S_OK;
    }
    return E_NOINTERFACE;
  }
};

/// An argument as a literal of the script; empty for a kind that nobody passes.
std::string ArgumentLiteral(const VARIANT& argument) {
  switch (argument.vt) {
    case VT_BSTR:
      return ScriptLiteral(WideView(argument.bstrVal, SysStringLen(argument.bstrVal)));
    case VT_I2:
      return std::to_string(argument.iVal);
    case VT_I4:
      return std::to_string(argument.lVal);
    case VT_BOOL:
      return argument.boolVal != VARIANT_FALSE ? "true" : "false";
    case VT_NULL:
      return "null";
    case VT_EMPTY:
      return "undefined";
    default:
      return {};
  }
}

class PageScript final : public PageObject<IDispatch> {
 public:
  explicit PageScript(std::weak_ptr<ConfinedPage> page) : m_page(std::move(page)) {}

  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    return Query({&IID_IUnknown, &IID_IDispatch}, riid, object);
  }

  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    const std::shared_ptr<ConfinedPage> page = m_page.lock();
    if (!page || page->IsGone()) return E_FAIL;
    const std::string name = ScriptLiteral(ViewOf(names[0]));
    WideString text;
    bool isFunction = false;
    // Only a text tells itself apart from all other values.
    const Outcome outcome = page->Run(
        "return typeof globalThis[" + name + "] === 'function' ? '' : 0", text, isFunction);
    if (outcome == Outcome::kGone) return E_FAIL;
    if (outcome != Outcome::kValue || !isFunction) return DISP_E_UNKNOWNNAME;
    m_names.push_back(name);
    ids[0] = static_cast<DISPID>(m_names.size());
    // The names of a script's parameters are not to be had.
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  }

  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                      EXCEPINFO*, UINT* argErr) override {
    if (params == nullptr) return E_INVALIDARG;
    if (member < 1 || static_cast<std::size_t>(member) > m_names.size() ||
        (flags & DISPATCH_METHOD) == 0) {
      return DISP_E_MEMBERNOTFOUND;
    }
    if (params->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
    std::string body =
        "const value = globalThis[" + m_names[static_cast<std::size_t>(member) - 1] + "](";
    for (UINT i = params->cArgs; i-- > 0;) {
      const std::string argument = ArgumentLiteral(params->rgvarg[i]);
      if (argument.empty()) {
        if (argErr != nullptr) *argErr = i;
        return DISP_E_TYPEMISMATCH;
      }
      body += argument;
      if (i != 0) body += ',';
    }
    // Only texts come back: any other value may have no form outside the page.
    body += "); return typeof value === 'string' ? value : 0";
    const std::shared_ptr<ConfinedPage> page = m_page.lock();
    if (!page || page->IsGone()) return E_FAIL;
    WideString text;
    bool isText = false;
    const Outcome outcome = page->Run(body, text, isText);
    if (outcome == Outcome::kGone) return E_FAIL;
    if (outcome == Outcome::kThrew) return DISP_E_EXCEPTION;
    if (result == nullptr) return S_OK;
    Variant value;
    if (isText) value = Variant(text);
    *result = value.Get();
    VariantInit(&value.Get());
    return S_OK;
  }

 private:
  std::weak_ptr<ConfinedPage> m_page;
  std::vector<std::string> m_names;  // literals; an id is an index and 1
};

class PageDocument final : public PageObject<IHTMLDocument2> {
 public:
  explicit PageDocument(std::weak_ptr<ConfinedPage> page) : m_page(std::move(page)) {}

  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    return Query({&IID_IUnknown, &IID_IDispatch, &IID_IHTMLDocument, &IID_IHTMLDocument2}, riid,
                 object);
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) override {
    if (ids == nullptr) return E_INVALIDARG;
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }
  STDMETHODIMP get_Script(IDispatch** script) override {
    if (script == nullptr) return E_POINTER;
    *script = nullptr;
    const std::shared_ptr<ConfinedPage> page = m_page.lock();
    if (!page || page->IsGone()) return E_FAIL;
    *script = new (std::nothrow) PageScript(m_page);
    return *script != nullptr ? S_OK : E_OUTOFMEMORY;
  }

 private:
  std::weak_ptr<ConfinedPage> m_page;
};

}  // namespace

ComPtr<IHTMLDocument2> MakePageDocument(const std::shared_ptr<ConfinedPage>& page) {
  return ComPtr<IHTMLDocument2>::Adopt(new PageDocument(page));
}

}  // namespace velandoc
