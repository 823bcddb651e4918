#include "platform/dom.h"

namespace velandoc {
namespace {

template <class Interface>
Interface* Require(Interface* object) {
  if (object == nullptr) _com_issue_error(E_POINTER);
  return object;
}

template <class Sequence>
LONG LengthOf(Sequence* sequence) {
  LONG length = 0;
  CheckResult(Require(sequence)->get_length(&length));
  return length;
}

template <class Sequence>
ComPtr<IXMLDOMNode> ItemOf(Sequence* sequence, LONG index) {
  ComPtr<IXMLDOMNode> item;
  CheckResult(Require(sequence)->get_item(index, item.Receive()));
  Require(item.Get());
  return item;
}

}  // namespace

HRESULT CreateDomDocument(ComPtr<IXMLDOMDocument2>& document) {
  document.Reset();
  ComPtr<IUnknown> object;
  HRESULT result = CoCreateInstance(CLSID_DOMDocument60, nullptr, CLSCTX_ALL, IID_IUnknown,
                                    object.ReceiveVoid());
  if (FAILED(result)) return result;
  result = OleRun(object.Get());
  if (FAILED(result)) return result;
  return object->QueryInterface(IID_IXMLDOMDocument2, document.ReceiveVoid());
}

HRESULT LoadDomDocument(const Bstr& xml, ComPtr<IXMLDOMDocument2>& document) {
  ComPtr<IXMLDOMDocument2> loaded;
  HRESULT result = CreateDomDocument(loaded);
  if (FAILED(result)) return result;
  CheckResult(loaded->put_async(VARIANT_FALSE));
  VARIANT_BOOL parsed = VARIANT_FALSE;
  result = loaded->loadXML(xml.Get(), &parsed);
  if (FAILED(result)) return result;
  if (parsed == VARIANT_FALSE) return E_FAIL;
  document = std::move(loaded);
  return S_OK;
}

ComPtr<IXMLDOMNode> CreateDomNode(IXMLDOMDocument2* document, DOMNodeType type, WideView name,
                                  WideView namespaceUri) {
  Require(document);
  ComPtr<IXMLDOMNode> node;
  CheckResult(document->createNode(Variant(type, VT_INT).Get(), Bstr(name).Get(),
                                   Bstr(namespaceUri).Get(), node.Receive()));
  return node;
}

WideString GetNodeName(IXMLDOMNode* node) {
  Bstr name;
  CheckResult(Require(node)->get_nodeName(name.Receive()));
  return name.Text();
}

WideString GetNodeNamespace(IXMLDOMNode* node) {
  Bstr uri;
  CheckResult(Require(node)->get_namespaceURI(uri.Receive()));
  return uri.Text();
}

DOMNodeType GetNodeType(IXMLDOMNode* node) {
  DOMNodeType type = NODE_INVALID;
  CheckResult(Require(node)->get_nodeType(&type));
  return type;
}

WideString GetNodeText(IXMLDOMNode* node) {
  Bstr text;
  CheckResult(Require(node)->get_text(text.Receive()));
  return text.Text();
}

void PutNodeText(IXMLDOMNode* node, WideView text) {
  CheckResult(Require(node)->put_text(Bstr(text).Get()));
}

WideString GetNodeXml(IXMLDOMNode* node) {
  Bstr xml;
  CheckResult(Require(node)->get_xml(xml.Receive()));
  return xml.Text();
}

ComPtr<IXMLDOMNode> GetFirstChild(IXMLDOMNode* node) {
  ComPtr<IXMLDOMNode> child;
  CheckResult(Require(node)->get_firstChild(child.Receive()));
  return child;
}

ComPtr<IXMLDOMNode> GetNextSibling(IXMLDOMNode* node) {
  ComPtr<IXMLDOMNode> sibling;
  CheckResult(Require(node)->get_nextSibling(sibling.Receive()));
  return sibling;
}

void AppendNode(IXMLDOMNode* parent, IXMLDOMNode* child) {
  ComPtr<IXMLDOMNode> appended;
  CheckResult(Require(parent)->appendChild(Require(child), appended.Receive()));
}

ComPtr<IXMLDOMNode> SelectSingleNode(IXMLDOMNode* node, WideView xpath) {
  ComPtr<IXMLDOMNode> found;
  CheckResult(Require(node)->selectSingleNode(Bstr(xpath).Get(), found.Receive()));
  return found;
}

ComPtr<IXMLDOMNodeList> SelectNodes(IXMLDOMNode* node, WideView xpath) {
  ComPtr<IXMLDOMNodeList> found;
  CheckResult(Require(node)->selectNodes(Bstr(xpath).Get(), found.Receive()));
  return found;
}

void SetSelectionNamespaces(IXMLDOMDocument2* document, WideView declarations) {
  CheckResult(Require(document)->setProperty(Bstr(OLESTR("SelectionNamespaces")).Get(),
                                             Variant(declarations).Get()));
}

ComPtr<IXMLDOMNamedNodeMap> GetNodeAttributes(IXMLDOMNode* node) {
  ComPtr<IXMLDOMNamedNodeMap> attributes;
  CheckResult(Require(node)->get_attributes(attributes.Receive()));
  return attributes;
}

ComPtr<IXMLDOMNode> GetNamedItem(IXMLDOMNamedNodeMap* map, WideView name) {
  ComPtr<IXMLDOMNode> item;
  CheckResult(Require(map)->getNamedItem(Bstr(name).Get(), item.Receive()));
  return item;
}

LONG GetLength(IXMLDOMNodeList* list) { return LengthOf(list); }

LONG GetLength(IXMLDOMNamedNodeMap* map) { return LengthOf(map); }

ComPtr<IXMLDOMNode> GetItem(IXMLDOMNodeList* list, LONG index) { return ItemOf(list, index); }

ComPtr<IXMLDOMNode> GetItem(IXMLDOMNamedNodeMap* map, LONG index) { return ItemOf(map, index); }

}  // namespace velandoc
