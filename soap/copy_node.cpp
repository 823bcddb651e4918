#include "soap/copy_node.h"

#include "platform/dom.h"

namespace velandoc {
namespace {

ComPtr<IXMLDOMDocument2> OwnerDocument(IXMLDOMNode* node) {
  ComPtr<IXMLDOMDocument> owner;
  CheckResult(node->get_ownerDocument(owner.Receive()));
  ComPtr<IXMLDOMDocument2> document;
  CheckResult(owner->QueryInterface(IID_IXMLDOMDocument2, document.ReceiveVoid()));
  return document;
}

WideString TargetNamespace(IXMLDOMNode* source, bool isRoot) {
  return isRoot ? WideString() : GetNodeNamespace(source);
}

void CopyAttributes(IXMLDOMDocument2* document, IXMLDOMNode* target, IXMLDOMNode* source,
                    bool isRoot) {
  const auto from = GetNodeAttributes(source);
  const auto to = GetNodeAttributes(target);
  const LONG count = GetLength(from.Get());
  for (LONG index = 0; index < count; ++index) {
    const ComPtr<IXMLDOMNode> attribute = GetItem(from.Get(), index);
    const ComPtr<IXMLDOMNode> copy =
        CreateDomNode(document, NODE_ATTRIBUTE, GetNodeName(attribute.Get()),
                      TargetNamespace(attribute.Get(), isRoot));
    PutNodeText(copy.Get(), GetNodeText(attribute.Get()));
    ComPtr<IXMLDOMNode> set;
    CheckResult(to->setNamedItem(copy.Get(), set.Receive()));
  }
}

void CopyChildren(IXMLDOMNode* target, IXMLDOMNode* source) {
  ComPtr<IXMLDOMNodeList> children;
  CheckResult(source->get_childNodes(children.Receive()));
  const LONG count = GetLength(children.Get());
  for (LONG index = 0; index < count; ++index) {
    const ComPtr<IXMLDOMNode> child = GetItem(children.Get(), index);
    // Only a lone child is looked at. Among several, a text is taken for an element like the rest,
    // and making an element of the name "#text" fails.
    const DOMNodeType type = count == 1 ? GetNodeType(child.Get()) : NODE_ELEMENT;
    if (type == NODE_ELEMENT) CopyNode(target, child.Get(), false);
    if (type == NODE_TEXT) PutNodeText(target, GetNodeText(source));
  }
}

}  // namespace

void CopyNode(IXMLDOMNode* destination, IXMLDOMNode* source, bool isRoot) {
  if (destination == nullptr || source == nullptr) _com_issue_error(E_POINTER);
  const ComPtr<IXMLDOMDocument2> document = OwnerDocument(destination);
  const ComPtr<IXMLDOMNode> copy = CreateDomNode(document.Get(), NODE_ELEMENT, GetNodeName(source),
                                                 TargetNamespace(source, isRoot));
  if (!copy) _com_issue_error(E_POINTER);
  CopyAttributes(document.Get(), copy.Get(), source, isRoot);
  CopyChildren(copy.Get(), source);
  AppendNode(destination, copy.Get());
}

}  // namespace velandoc
