#include "tests/unit/document/windows/played_page.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "platform/html_document.h"
#include "platform/owners.h"
#include "tests/support/script_runner.h"
#include "tests/support/windows/inert_html_document.h"
#include "tests/unit/platform/windows/interface_double.h"
// Behind com.h, which includes windows.h.
#include <exdisp.h>
#include <exdispid.h>
#include <shlwapi.h>

namespace velandoc::testing {
namespace {

/// What a browser gives the form's script, made of the generator's own fragments: text boxes,
/// lists (their chosen entry, else the first), check boxes.
constexpr char kBrowser[] = R"js(
  var alerts = [], elements = {};
  function alert(text) { alerts.push(String(text)); }
  var document = {getElementsByName: function (name) { return elements[name] || []; }};
  function add(name, value, checked) {
    (elements[name] = elements[name] || []).push({value: value, checked: checked, focus: 0});
  }
  function chosen(options) {
    var option = /<option value='([^']*)'( selected)?>/g, first = null, m;
    while ((m = option.exec(options)) != null) {
      if (m[2]) return m[1];
      if (first == null) first = m[1];
    }
    return first == null ? '' : first;
  }
  function load(page) {
    var controls = new RegExp("<input type='text' name='([^']*)' value='([^']*)'>" +
                              "|<select name='([^']*)'>(.*?)</select>" +
                              "|<input type='checkbox' name='([^']*)' value='([^']*)'" +
                              "( checked='1')? />", "g"), m;
    while ((m = controls.exec(page)) != null) {
      if (m[1]) add(m[1], m[2], false);
      else if (m[3]) add(m[3], chosen(m[4]), false);
      else if (m[5]) add(m[5], m[6], m[7] ? true : false);
    }
  }
)js";

/// A string literal of JavaScript in ASCII.
std::string Literal(const std::wstring& text) {
  std::string literal = "'";
  for (const wchar_t unit : text) {
    char escape[8];
    std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(unit));
    literal += escape;
  }
  return literal + "'";
}

/// The text of a UTF-16 file behind its mark; a file without one is a failure.
std::wstring ReadPage(const std::wstring& url) {
  wchar_t path[MAX_PATH] = {};
  DWORD length = MAX_PATH;
  EXPECT_EQ(PathCreateFromUrlW(url.c_str(), path, &length, 0), S_OK);
  const std::string name = [&] {
    char narrow[MAX_PATH] = {};
    WideCharToMultiByte(CP_ACP, 0, path, -1, narrow, MAX_PATH, nullptr, nullptr);
    return std::string(narrow);
  }();
  std::ifstream file(name, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  EXPECT_TRUE(bytes.starts_with("\xFF\xFE")) << name;
  std::wstring text(bytes.size() / 2, L'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * 2);
  return text.substr(text.empty() ? 0 : 1);
}

/// The document of the page in the script engine. It outlives the dialogs that hold it.
class PageDocument final : public InertHtmlDocument {
 public:
  ~PageDocument() { EXPECT_EQ(m_references, 0U) << "references are left"; }

  void Load(const std::wstring& page) {
    m_runner = std::make_unique<ScriptRunner>();
    m_runner->Run(kBrowser);
    m_runner->Run("load(" + Literal(page) + ");");
    const std::size_t begin = page.find(L"<script>") + 8;
    const std::wstring script = page.substr(begin, page.find(L"</script>", begin) - begin);
    m_runner->Run(std::string(script.begin(), script.end()));
  }
  ScriptRunner& Runner() { return *m_runner; }

  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    const bool known = IsEqualIID(riid, IID_IHTMLDocument2) || IsEqualIID(riid, IID_IDispatch) ||
                       IsEqualIID(riid, IID_IUnknown);
    *object = known ? this : nullptr;
    if (known) ++m_references;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override { return --m_references; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP get_Script(IDispatch** script) override {
    *script = m_runner->Script().Detach();
    return *script != nullptr ? S_OK : E_FAIL;
  }

 private:
  std::unique_ptr<ScriptRunner> m_runner;
  ULONG m_references = 0;
};

template <class Interface>
ComPtr<Interface> As(IUnknown* object) {
  ComPtr<Interface> found;
  CheckResult(object->QueryInterface(__uuidof(Interface), found.ReceiveVoid()));
  return found;
}

ComPtr<IConnectionPoint> EventsOf(IUnknown* control) {
  ComPtr<IConnectionPoint> point;
  CheckResult(As<IConnectionPointContainer>(control)->FindConnectionPoint(DIID_DWebBrowserEvents2,
                                                                          point.Receive()));
  return point;
}

ComPtr<IUnknown> NewControl() {
  ComPtr<IUnknown> control;
  CheckResult(CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               control.ReceiveVoid()));
  return control;
}

}  // namespace

struct PlayedPage::Impl {
  Impl() { s_current = this; }
  ~Impl() { s_current = nullptr; }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  static HRESULT Navigate2(IWebBrowser2*, VARIANT* url, VARIANT*, VARIANT*, VARIANT*, VARIANT*) {
    return s_current->Navigate(url->bstrVal);
  }
  /// Notes who listens: what the control's own list gives out is of no use under Wine.
  static HRESULT Advise(IConnectionPoint* point, IUnknown* sink, DWORD* cookie) {
    ComPtr<IDispatch> listener;
    if (SUCCEEDED(sink->QueryInterface(DIID_DWebBrowserEvents2, listener.ReceiveVoid()))) {
      s_current->listener = listener.Get();
    }
    using Operation = HRESULT(IConnectionPoint*, IUnknown*, DWORD*);
    return s_current->advise.Original<Operation>()(point, sink, cookie);
  }
  void Tell(DISPID event, DISPPARAMS& params) {
    ASSERT_NE(listener, nullptr) << "nobody listens to the control";
    listener->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr,
                     nullptr, nullptr);
  }
  static HRESULT GetDocument(IWebBrowser2*, IDispatch** document) {
    *document = s_current->loaded ? &s_current->document : nullptr;
    if (*document == nullptr) return S_FALSE;
    (*document)->AddRef();
    return S_OK;
  }
  static HRESULT TranslateKey(IOleInPlaceActiveObject*, MSG* message) {
    if (message->message != WM_KEYDOWN) return S_FALSE;
    s_current->keys.push_back(message->wParam);
    if (message->wParam != VK_TAB || s_current->fields == 0) return S_FALSE;
    --s_current->fields;
    return S_OK;
  }

  /// All of it at once, as early as the events could come.
  HRESULT Navigate(const std::wstring& url) {
    urls.push_back(url);
    loaded = false;
    VARIANT_BOOL cancelled = VARIANT_FALSE;
    VARIANT arguments[7] = {};
    arguments[0].vt = VT_BOOL | VT_BYREF;
    arguments[0].pboolVal = &cancelled;
    DISPPARAMS params{arguments, nullptr, 7, 0};
    Tell(DISPID_BEFORENAVIGATE2, params);
    EXPECT_EQ(cancelled, VARIANT_FALSE) << "the dialog's own page";
    Tell(DISPID_BEFORENAVIGATE2, params);
    EXPECT_NE(cancelled, VARIANT_FALSE) << "any other";
    if (!completes) return S_OK;
    document.Load(ReadPage(url));
    loaded = true;
    VARIANT completed[2] = {};
    DISPPARAMS page{completed, nullptr, 2, 0};
    Tell(DISPID_DOCUMENTCOMPLETE, page);
    return S_OK;
  }

  static inline Impl* s_current = nullptr;

  bool completes = true;
  bool loaded = false;
  int fields = 0;
  std::vector<std::wstring> urls;
  std::vector<WPARAM> keys;
  /// The latest dialog's, which outlives every use of it here.
  IDispatch* listener = nullptr;
  PageDocument document;

  // All controls share their tables with this one.
  const ComPtr<IUnknown> control = NewControl();
  const ComPtr<IWebBrowser2> browser = As<IWebBrowser2>(control.Get());
  const ComPtr<IOleInPlaceActiveObject> active = As<IOleInPlaceActiveObject>(control.Get());
  const ComPtr<IConnectionPoint> point = EventsOf(control.Get());
  const test::ReplacedOperation<IConnectionPoint> advise{point.Get(), &IConnectionPoint::Advise,
                                                         &Advise};
  const test::ReplacedOperation<IWebBrowser2> navigate{browser.Get(), &IWebBrowser2::Navigate2,
                                                       &Navigate2};
  const test::ReplacedOperation<IWebBrowser2> getDocument{
      browser.Get(), &IWebBrowser2::get_Document, &GetDocument};
  const test::ReplacedOperation<IOleInPlaceActiveObject> translate{
      active.Get(), &IOleInPlaceActiveObject::TranslateAccelerator, &TranslateKey};
};

PlayedPage::PlayedPage() : m_impl(std::make_unique<Impl>()) {}
PlayedPage::~PlayedPage() = default;

void PlayedPage::SetCompletes(bool completes) { m_impl->completes = completes; }
void PlayedPage::SetFields(int fields) { m_impl->fields = fields; }
std::vector<std::wstring> PlayedPage::Urls() const { return m_impl->urls; }
std::vector<WPARAM> PlayedPage::Keys() const { return m_impl->keys; }

void PlayedPage::Enter(const std::string& name, const std::string& value) {
  m_impl->document.Runner().Run("elements['" + name + "'][0].value = '" + value + "';");
}
void PlayedPage::Tick(const std::string& name, int index, bool ticked) {
  m_impl->document.Runner().Run("elements['" + name + "'][" + std::to_string(index) +
                                "].checked = " + (ticked ? "true;" : "false;"));
}
std::string PlayedPage::Evaluate(const std::string& expression) {
  return m_impl->document.Runner().Evaluate(expression);
}
std::string PlayedPage::Alerts() { return Evaluate("alerts.join('|')"); }

}  // namespace velandoc::testing
