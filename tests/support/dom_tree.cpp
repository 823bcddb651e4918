#include "tests/support/dom_tree.h"

#include "platform/owners.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc::testing {
namespace {

std::string NameOf(IXMLDOMNode* node) {
  Bstr name;
  CheckResult(node->get_nodeName(name.Receive()));
  Bstr uri;
  CheckResult(node->get_namespaceURI(uri.Receive()));
  std::string text = Printable(name.Text().c_str());
  if (!uri.View().empty()) {
    text += '{';
    text += Printable(uri.Text().c_str());
    text += '}';
  }
  return text;
}

std::string ValueOf(IXMLDOMNode* node) {
  Bstr value;
  CheckResult(node->get_text(value.Receive()));
  return Printable(value.Text().c_str());
}

}  // namespace

std::string ChildrenOf(IXMLDOMNode* node) {
  std::string text;
  ComPtr<IXMLDOMNode> child;
  CheckResult(node->get_firstChild(child.Receive()));
  while (child) {
    const std::string tree = TreeOf(child.Get());
    if (!text.empty() && !tree.empty()) text += ' ';
    text += tree;
    ComPtr<IXMLDOMNode> next;
    CheckResult(child->get_nextSibling(next.Receive()));
    child = next;
  }
  return text;
}

std::string TreeOf(IXMLDOMNode* node) {
  DOMNodeType type = NODE_INVALID;
  CheckResult(node->get_nodeType(&type));
  std::string text;
  if (type == NODE_TEXT) {
    text += '\'';
    text += ValueOf(node);
    text += '\'';
    return text;
  }
  if (type != NODE_ELEMENT) return text;
  text = NameOf(node);
  ComPtr<IXMLDOMNamedNodeMap> attributes;
  CheckResult(node->get_attributes(attributes.Receive()));
  LONG count = 0;
  CheckResult(attributes->get_length(&count));
  for (LONG index = 0; index < count; ++index) {
    ComPtr<IXMLDOMNode> attribute;
    // Wine cannot hand out the declaration of a default namespace; declarations are left out
    // anyway.
    if (FAILED(attributes->get_item(index, attribute.Receive()))) continue;
    const std::string name = NameOf(attribute.Get());
    if (name.rfind("xmlns", 0) == 0) continue;
    text += ' ';
    text += name;
    text += "=\"";
    text += ValueOf(attribute.Get());
    text += '"';
  }
  const std::string children = ChildrenOf(node);
  if (!children.empty()) {
    text += " ( ";
    text += children;
    text += " )";
  }
  return text;
}

std::string TreeOfText(const WideString& xml) {
  ComPtr<IXMLDOMDocument2> document;
  CheckResult(CoCreateInstance(CLSID_DOMDocument60, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument2,
                               document.ReceiveVoid()));
  CheckResult(document->put_async(VARIANT_FALSE));
  VARIANT_BOOL parsed = VARIANT_FALSE;
  CheckResult(document->loadXML(Bstr(xml).Get(), &parsed));
  return parsed == VARIANT_FALSE ? "no XML" : ChildrenOf(document.Get());
}

}  // namespace velandoc::testing
