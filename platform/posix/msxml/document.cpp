#include "platform/posix/msxml/document.h"

#include <mutex>

#include "platform/owners.h"
#include "platform/posix/msxml/node_factory.h"
#include "platform/posix/msxml/node_list.h"
#include "platform/posix/msxml/parse_error.h"
#include "platform/posix/msxml/selection.h"

namespace velandoc::dom {

template <>
bool AnswersTo<IXMLDOMDocument2>(REFIID riid) {
  return riid == IID_IXMLDOMDocument2 || riid == IID_IXMLDOMDocument;
}

namespace {

constexpr LONG kReadyStateComplete = 4;

XmlDocOwner EmptyDoc() {
  // Must precede all other uses of libxml2 where threads share it. Each begins with a document.
  static std::once_flag initialized;
  std::call_once(initialized, [] { xmlInitParser(); });
  XmlDocOwner doc(xmlNewDoc(XmlText("1.0")));
  if (!doc) throw std::bad_alloc();
  return doc;
}

}  // namespace

Document::Document() { ReplaceTree(EmptyDoc()); }

Document::~Document() { GetTree().GiveUp(); }

void Document::ReplaceTree(XmlDocOwner doc) {
  xmlDoc* const root = doc.get();
  Tree* const made = new Tree(std::move(doc), this);
  if (Get() != nullptr) GetTree().GiveUp();
  Bind(*made, AsNode(root));
  made->SetSelectionNamespaces(&m_selectionNamespaces);
}

HRESULT Document::loadXML(BSTR xml, VARIANT_BOOL* success) {
  if (success != nullptr) *success = VARIANT_FALSE;
  return Guarded([&] {
    const WideView text = xml == nullptr ? WideView() : WideView(xml, SysStringLen(xml));
    ParseFailure failure;
    XmlDocOwner doc = Parse(text, m_preserveWhiteSpace != VARIANT_FALSE, failure);
    const bool isParsed = doc != nullptr;
    ReplaceTree(isParsed ? std::move(doc) : EmptyDoc());
    m_failure = std::move(failure);
    if (success != nullptr && isParsed) *success = VARIANT_TRUE;
    return isParsed ? S_OK : S_FALSE;
  });
}

HRESULT Document::get_parseError(IXMLDOMParseError** error) {
  return GiveParseError(m_failure, error);
}

HRESULT Document::get_readyState(LONG* state) { return Give(state, kReadyStateComplete); }

HRESULT Document::get_documentElement(IXMLDOMElement** element) {
  if (element == nullptr) return E_INVALIDARG;
  return GiveNodeAs(GetTree(), xmlDocGetRootElement(GetTree().Doc()), element);
}

HRESULT Document::putref_documentElement(IXMLDOMElement* element) {
  return Guarded([&] {
    ComPtr<IXMLDOMElement> root;
    CheckResult(get_documentElement(root.Receive()));
    if (element == nullptr) return root ? removeChild(root.Get(), nullptr) : S_OK;
    return root ? replaceChild(element, root.Get(), nullptr) : appendChild(element, nullptr);
  });
}

template <class Interface>
HRESULT Document::Create(DOMNodeType type, BSTR name, BSTR data, Interface** node) {
  if (node == nullptr) return E_INVALIDARG;
  *node = nullptr;
  return Guarded([&] {
    ComPtr<IXMLDOMNode> made;
    CheckResult(CreateNode(GetTree(), type, Encode(name), {}, made.Receive()));
    if (data != nullptr) CheckResult(made->put_text(data));
    *node = static_cast<Interface*>(made.Detach());
    return S_OK;
  });
}

HRESULT Document::createElement(BSTR name, IXMLDOMElement** element) {
  return Create(NODE_ELEMENT, name, nullptr, element);
}

HRESULT Document::createTextNode(BSTR data, IXMLDOMText** text) {
  return Create(NODE_TEXT, nullptr, data, text);
}

HRESULT Document::createComment(BSTR data, IXMLDOMComment** comment) {
  return Create(NODE_COMMENT, nullptr, data, comment);
}

HRESULT Document::createCDATASection(BSTR data, IXMLDOMCDATASection** section) {
  return Create(NODE_CDATA_SECTION, nullptr, data, section);
}

HRESULT Document::createProcessingInstruction(BSTR target, BSTR data,
                                              IXMLDOMProcessingInstruction** instruction) {
  return Create(NODE_PROCESSING_INSTRUCTION, target, data, instruction);
}

HRESULT Document::createAttribute(BSTR name, IXMLDOMAttribute** attribute) {
  return Create(NODE_ATTRIBUTE, name, nullptr, attribute);
}

HRESULT Document::getElementsByTagName(BSTR name, IXMLDOMNodeList** result) {
  return FindByTagName(GetTree(), Get(), name, result);
}

HRESULT Document::createNode(VARIANT type, BSTR name, BSTR namespaceUri, IXMLDOMNode** node) {
  if (node == nullptr) return E_INVALIDARG;
  *node = nullptr;
  return Guarded([&] {
    return CreateNode(GetTree(), NodeTypeOf(type), Encode(name), Encode(namespaceUri), node);
  });
}

HRESULT Document::setProperty(BSTR name, VARIANT value) {
  return Guarded([&] {
    const std::string property = Encode(name);
    if (property == "ProhibitDTD") {
      return value.vt == VT_BOOL && value.boolVal != VARIANT_FALSE ? S_OK : E_FAIL;
    }
    const bool isNamespaces = property == "SelectionNamespaces";
    if (!isNamespaces && property != "SelectionLanguage") return E_FAIL;
    if (value.vt != VT_BSTR) return E_INVALIDARG;
    const std::string text = Encode(value.bstrVal);
    if (!isNamespaces) return text == "XPath" ? S_OK : E_FAIL;
    SelectionNamespaces namespaces;
    if (!ReadSelectionNamespaces(text, namespaces)) return E_FAIL;
    m_selectionNamespaces = std::move(namespaces);
    m_selectionNamespacesText = text;
    GetTree().SetSelectionNamespaces(&m_selectionNamespaces);
    return S_OK;
  });
}

HRESULT Document::getProperty(BSTR name, VARIANT* value) {
  if (value == nullptr) return E_INVALIDARG;
  VariantInit(value);
  return Guarded([&] {
    const std::string property = Encode(name);
    if (property == "SelectionNamespaces") return GiveText(value, m_selectionNamespacesText);
    if (property == "SelectionLanguage") return GiveText(value, "XPath");
    if (property == "ProhibitDTD") {
      value->vt = VT_BOOL;
      value->boolVal = VARIANT_TRUE;
    } else if (property == "MaxElementDepth") {
      value->vt = VT_I4;
      value->lVal = kMaxDepth;
    } else {
      return E_FAIL;
    }
    return S_OK;
  });
}

}  // namespace velandoc::dom
