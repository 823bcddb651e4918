#include "tests/support/fault_dom.h"

#include <gtest/gtest.h>

#include "tests/support/no_enumerator.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc::testing {
namespace {

FaultDom* current = nullptr;

// Asked of a wrapper, gives the real node behind it.
constexpr IID kRealNode = {
    0x5C6E8A0D, 0x1F0B, 0x4C1E, {0x9B, 0x51, 0x0D, 0x3C, 0x27, 0x9A, 0x64, 0x11}};

#define FAIL_IF_DUE(operation) \
  if (current->Fails(operation)) return current->Error()

ComPtr<IXMLDOMNode> RealNode(IXMLDOMNode* wrapper) {
  ComPtr<IXMLDOMNode> real;
  if (wrapper != nullptr) wrapper->QueryInterface(kRealNode, real.ReceiveVoid());
  return real;
}

HRESULT WrapNode(HRESULT result, ComPtr<IXMLDOMNode> real, IXMLDOMNode** out);
HRESULT WrapList(HRESULT result, ComPtr<IXMLDOMNodeList> real, IXMLDOMNodeList** out);
HRESULT WrapMap(HRESULT result, ComPtr<IXMLDOMNamedNodeMap> real, IXMLDOMNamedNodeMap** out);
HRESULT WrapDocument(HRESULT result, IXMLDOMDocument* real, IXMLDOMDocument** out);

// Counting, and the dispatch interface that nobody uses.
template <class Interface, class Base = Interface>
class Wrapper : public Base {
 public:
  explicit Wrapper(ComPtr<Interface> below) : m_below(std::move(below)) { ++current->alive; }
  virtual ~Wrapper() { --current->alive; }

  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return E_NOTIMPL;
  }

 protected:
  HRESULT Hand(void** object) {
    AddRef();
    *object = static_cast<Interface*>(this);
    return S_OK;
  }

  ComPtr<Interface> m_below;

 private:
  ULONG m_references = 1;
};

template <class Interface>
class NodeWrapper : public Wrapper<Interface> {
 public:
  explicit NodeWrapper(ComPtr<Interface> below) : Wrapper<Interface>(std::move(below)) {
    Bstr name;
    m_below->get_nodeName(name.Receive());
    m_name = Printable(name.Text().c_str());
  }
  ~NodeWrapper() override { current->released.push_back(m_name); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    *object = nullptr;
    if (IsEqualIID(riid, kRealNode)) return m_below->QueryInterface(IID_IXMLDOMNode, object);
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IXMLDOMNode)) {
      return this->Hand(object);
    }
    return E_NOINTERFACE;
  }

  HRESULT STDMETHODCALLTYPE get_nodeName(BSTR* name) override {
    FAIL_IF_DUE("get_nodeName");
    return m_below->get_nodeName(name);
  }
  HRESULT STDMETHODCALLTYPE get_nodeType(DOMNodeType* type) override {
    FAIL_IF_DUE("get_nodeType");
    return m_below->get_nodeType(type);
  }
  HRESULT STDMETHODCALLTYPE get_childNodes(IXMLDOMNodeList** children) override {
    FAIL_IF_DUE("get_childNodes");
    ComPtr<IXMLDOMNodeList> real;
    const HRESULT result = m_below->get_childNodes(real.Receive());
    return WrapList(result, real, children);
  }
  HRESULT STDMETHODCALLTYPE get_firstChild(IXMLDOMNode** child) override {
    FAIL_IF_DUE("get_firstChild");
    ComPtr<IXMLDOMNode> real;
    const HRESULT result = m_below->get_firstChild(real.Receive());
    return WrapNode(result, real, child);
  }
  HRESULT STDMETHODCALLTYPE get_nextSibling(IXMLDOMNode** sibling) override {
    FAIL_IF_DUE("get_nextSibling");
    ComPtr<IXMLDOMNode> real;
    const HRESULT result = m_below->get_nextSibling(real.Receive());
    return WrapNode(result, real, sibling);
  }
  HRESULT STDMETHODCALLTYPE get_attributes(IXMLDOMNamedNodeMap** attributes) override {
    FAIL_IF_DUE("get_attributes");
    ComPtr<IXMLDOMNamedNodeMap> real;
    const HRESULT result = m_below->get_attributes(real.Receive());
    return WrapMap(result, real, attributes);
  }
  HRESULT STDMETHODCALLTYPE appendChild(IXMLDOMNode* child, IXMLDOMNode** appended) override {
    FAIL_IF_DUE("appendChild");
    ComPtr<IXMLDOMNode> real;
    const HRESULT result = m_below->appendChild(RealNode(child).Get(), real.Receive());
    return WrapNode(result, real, appended);
  }
  HRESULT STDMETHODCALLTYPE get_ownerDocument(IXMLDOMDocument** document) override {
    FAIL_IF_DUE("get_ownerDocument");
    ComPtr<IXMLDOMDocument> real;
    const HRESULT result = m_below->get_ownerDocument(real.Receive());
    return WrapDocument(result, real.Get(), document);
  }
  HRESULT STDMETHODCALLTYPE get_text(BSTR* text) override {
    FAIL_IF_DUE("get_text");
    return m_below->get_text(text);
  }
  HRESULT STDMETHODCALLTYPE put_text(BSTR text) override {
    FAIL_IF_DUE("put_text");
    return m_below->put_text(text);
  }
  HRESULT STDMETHODCALLTYPE get_xml(BSTR* xml) override {
    FAIL_IF_DUE("get_xml");
    return m_below->get_xml(xml);
  }
  HRESULT STDMETHODCALLTYPE selectNodes(BSTR query, IXMLDOMNodeList** list) override {
    FAIL_IF_DUE("selectNodes");
    ComPtr<IXMLDOMNodeList> real;
    const HRESULT result = m_below->selectNodes(query, real.Receive());
    return WrapList(result, real, list);
  }
  HRESULT STDMETHODCALLTYPE selectSingleNode(BSTR query, IXMLDOMNode** node) override {
    FAIL_IF_DUE("selectSingleNode");
    ComPtr<IXMLDOMNode> real;
    const HRESULT result = m_below->selectSingleNode(query, real.Receive());
    return WrapNode(result, real, node);
  }
  HRESULT STDMETHODCALLTYPE get_namespaceURI(BSTR* uri) override {
    FAIL_IF_DUE("get_namespaceURI");
    return m_below->get_namespaceURI(uri);
  }

  // clang-format off
  HRESULT STDMETHODCALLTYPE get_nodeValue(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_nodeValue(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_parentNode(IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_lastChild(IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_previousSibling(IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE insertBefore(IXMLDOMNode*, VARIANT, IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE replaceChild(IXMLDOMNode*, IXMLDOMNode*, IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE removeChild(IXMLDOMNode*, IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE hasChildNodes(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE cloneNode(VARIANT_BOOL, IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_nodeTypeString(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_specified(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_definition(IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_nodeTypedValue(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_nodeTypedValue(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_dataType(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_dataType(BSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE transformNode(IXMLDOMNode*, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_parsed(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_prefix(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_baseName(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE transformNodeToObject(IXMLDOMNode*, VARIANT) override { return E_NOTIMPL; }
  // clang-format on

 protected:
  using Wrapper<Interface>::m_below;

 private:
  std::string m_name;
};

class DocumentWrapper final : public NodeWrapper<IXMLDOMDocument2> {
 public:
  using NodeWrapper::NodeWrapper;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (IsEqualIID(riid, IID_IXMLDOMDocument2)) {
      *object = nullptr;
      FAIL_IF_DUE("QueryInterface");
      return Hand(object);
    }
    return NodeWrapper::QueryInterface(riid, object);
  }
  HRESULT STDMETHODCALLTYPE createNode(VARIANT type, BSTR name, BSTR uri,
                                       IXMLDOMNode** node) override {
    FAIL_IF_DUE("createNode");
    EXPECT_EQ(type.vt, VT_INT);
    ComPtr<IXMLDOMNode> real;
    const HRESULT result = m_below->createNode(type, name, uri, real.Receive());
    return WrapNode(result, real, node);
  }
  HRESULT STDMETHODCALLTYPE put_async(VARIANT_BOOL isAsync) override {
    FAIL_IF_DUE(isAsync ? "put_async(true)" : "put_async(false)");
    return m_below->put_async(isAsync);
  }
  HRESULT STDMETHODCALLTYPE loadXML(BSTR xml, VARIANT_BOOL* success) override {
    FAIL_IF_DUE("loadXML");
    if (current->refuseText) {
      *success = VARIANT_FALSE;
      return S_FALSE;
    }
    return m_below->loadXML(xml, success);
  }
  HRESULT STDMETHODCALLTYPE setProperty(BSTR name, VARIANT value) override {
    FAIL_IF_DUE("setProperty");
    return m_below->setProperty(name, value);
  }

  // clang-format off
  HRESULT STDMETHODCALLTYPE get_doctype(IXMLDOMDocumentType**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_implementation(IXMLDOMImplementation**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_documentElement(IXMLDOMElement**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE putref_documentElement(IXMLDOMElement*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE createElement(BSTR, IXMLDOMElement**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE createDocumentFragment(IXMLDOMDocumentFragment**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE createTextNode(BSTR, IXMLDOMText**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE createComment(BSTR, IXMLDOMComment**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE createCDATASection(BSTR, IXMLDOMCDATASection**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE createProcessingInstruction(BSTR, BSTR, IXMLDOMProcessingInstruction**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE createAttribute(BSTR, IXMLDOMAttribute**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE createEntityReference(BSTR, IXMLDOMEntityReference**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE getElementsByTagName(BSTR, IXMLDOMNodeList**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE nodeFromID(BSTR, IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE load(VARIANT, VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_readyState(LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_parseError(IXMLDOMParseError**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_url(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_async(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE abort() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE save(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_validateOnParse(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_validateOnParse(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_resolveExternals(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_resolveExternals(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_preserveWhiteSpace(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_preserveWhiteSpace(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_onreadystatechange(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_ondataavailable(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_ontransformnode(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_namespaces(IXMLDOMSchemaCollection**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_schemas(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE putref_schemas(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE validate(IXMLDOMParseError**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE getProperty(BSTR, VARIANT*) override { return E_NOTIMPL; }
  // clang-format on
};

template <class Interface>
class ListWrapper : public Wrapper<Interface, NoEnumerator<Interface>> {
 public:
  using Wrapper<Interface, NoEnumerator<Interface>>::Wrapper;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    *object = nullptr;
    return IsEqualIID(riid, IID_IUnknown) ? this->Hand(object) : E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE get_item(LONG index, IXMLDOMNode** item) override {
    FAIL_IF_DUE("get_item");
    ComPtr<IXMLDOMNode> real;
    const HRESULT result = m_below->get_item(index, real.Receive());
    return WrapNode(result, real, item);
  }
  HRESULT STDMETHODCALLTYPE get_length(LONG* length) override {
    FAIL_IF_DUE("get_length");
    return m_below->get_length(length);
  }
  HRESULT STDMETHODCALLTYPE nextNode(IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reset() override { return E_NOTIMPL; }

 protected:
  using Wrapper<Interface, NoEnumerator<Interface>>::m_below;
};

class MapWrapper final : public ListWrapper<IXMLDOMNamedNodeMap> {
 public:
  using ListWrapper::ListWrapper;

  HRESULT STDMETHODCALLTYPE getNamedItem(BSTR name, IXMLDOMNode** item) override {
    FAIL_IF_DUE("getNamedItem");
    ComPtr<IXMLDOMNode> real;
    const HRESULT result = m_below->getNamedItem(name, real.Receive());
    return WrapNode(result, real, item);
  }
  HRESULT STDMETHODCALLTYPE setNamedItem(IXMLDOMNode* item, IXMLDOMNode** set) override {
    FAIL_IF_DUE("setNamedItem");
    ComPtr<IXMLDOMNode> real;
    const HRESULT result = m_below->setNamedItem(RealNode(item).Get(), real.Receive());
    return WrapNode(result, real, set);
  }
  HRESULT STDMETHODCALLTYPE removeNamedItem(BSTR, IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE getQualifiedItem(BSTR, BSTR, IXMLDOMNode**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE removeQualifiedItem(BSTR, BSTR, IXMLDOMNode**) override {
    return E_NOTIMPL;
  }
};

HRESULT WrapNode(HRESULT result, ComPtr<IXMLDOMNode> real, IXMLDOMNode** out) {
  *out = real ? new NodeWrapper<IXMLDOMNode>(std::move(real)) : nullptr;
  return result;
}

HRESULT WrapList(HRESULT result, ComPtr<IXMLDOMNodeList> real, IXMLDOMNodeList** out) {
  *out = real ? new ListWrapper<IXMLDOMNodeList>(std::move(real)) : nullptr;
  return result;
}

HRESULT WrapMap(HRESULT result, ComPtr<IXMLDOMNamedNodeMap> real, IXMLDOMNamedNodeMap** out) {
  *out = real ? new MapWrapper(std::move(real)) : nullptr;
  return result;
}

HRESULT WrapDocument(HRESULT result, IXMLDOMDocument* real, IXMLDOMDocument** out) {
  *out = nullptr;
  if (FAILED(result) || real == nullptr) return result;
  ComPtr<IXMLDOMDocument2> document;
  result = real->QueryInterface(IID_IXMLDOMDocument2, document.ReceiveVoid());
  if (SUCCEEDED(result)) *out = new DocumentWrapper(std::move(document));
  return result;
}

class FaultClass final : public IClassFactory {
 public:
  virtual ~FaultClass() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    *object = nullptr;
    if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, IID_IClassFactory)) {
      return E_NOINTERFACE;
    }
    AddRef();
    *object = static_cast<IClassFactory*>(this);
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    *object = nullptr;
    EXPECT_EQ(outer, nullptr);
    FAIL_IF_DUE("CreateInstance");
    ComPtr<IXMLDOMDocument2> real;
    const HRESULT result =
        current->RealClass()->CreateInstance(nullptr, IID_IXMLDOMDocument2, real.ReceiveVoid());
    if (FAILED(result)) return result;
    const auto wrapper = ComPtr<DocumentWrapper>::Adopt(new DocumentWrapper(std::move(real)));
    return wrapper->QueryInterface(riid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  ULONG m_references = 1;
};

}  // namespace

ComScope::ComScope() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }

ComScope::~ComScope() { CoUninitialize(); }

FaultDom::FaultDom(int failAt, HRESULT error) : m_failAt(failAt), m_error(error) {
  current = this;
  EXPECT_EQ(CoGetClassObject(CLSID_DOMDocument60, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                             m_realClass.ReceiveVoid()),
            S_OK);
  const auto faultClass = ComPtr<IClassFactory>::Adopt(new FaultClass);
  EXPECT_EQ(CoRegisterClassObject(CLSID_DOMDocument60, faultClass.Get(), CLSCTX_INPROC_SERVER,
                                  REGCLS_MULTIPLEUSE, &m_cookie),
            S_OK);
}

FaultDom::~FaultDom() {
  EXPECT_EQ(CoRevokeClassObject(m_cookie), S_OK);
  EXPECT_EQ(alive, 0) << "objects of the DOM are still held";
  current = nullptr;
}

bool FaultDom::Fails(const char* operation) {
  operations.emplace_back(operation);
  return Count() == m_failAt;
}

}  // namespace velandoc::testing
