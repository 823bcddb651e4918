// The DOM on any text: load it, touch every node, serialize it, and read the result again. What was
// accepted once must be accepted again and come out the same.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/msxml.h"
#include "platform/owners.h"

namespace {

using velandoc::Bstr;
using velandoc::CheckResult;
using velandoc::ComPtr;
using velandoc::Variant;
using velandoc::WideString;
using velandoc::WideView;

using DocumentPtr = ComPtr<IXMLDOMDocument2>;
using NodePtr = ComPtr<IXMLDOMNode>;

DocumentPtr NewDocument(bool preserving) {
  DocumentPtr document;
  CheckResult(CoCreateInstance(CLSID_DOMDocument60, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument2,
                               document.ReceiveVoid()));
  CheckResult(document->put_preserveWhiteSpace(preserving ? VARIANT_TRUE : VARIANT_FALSE));
  return document;
}

bool Load(const DocumentPtr& document, WideView text) {
  VARIANT_BOOL success = VARIANT_FALSE;
  CheckResult(document->loadXML(Bstr(text).Get(), &success));
  return success != VARIANT_FALSE;
}

void ReadNode(const NodePtr& node) {
  Bstr text;
  CheckResult(node->get_nodeName(text.Receive()));
  CheckResult(node->get_namespaceURI(text.Receive()));
  CheckResult(node->get_text(text.Receive()));
  ComPtr<IXMLDOMNamedNodeMap> attributes;
  CheckResult(node->get_attributes(attributes.Receive()));
  LONG length = 0;
  if (attributes) CheckResult(attributes->get_length(&length));
  for (LONG i = 0; i < length; ++i) {
    NodePtr attribute;
    CheckResult(attributes->get_item(i, attribute.Receive()));
    CheckResult(attribute->get_nodeName(text.Receive()));
    CheckResult(attribute->get_text(text.Receive()));
  }
}

/// Nodes in document order, no more than keep a run short: get_text reads each subtree anew.
void ReadAll(const DocumentPtr& document) {
  constexpr int kMostNodes = 200;
  NodePtr node(document.Get());
  for (int i = 0; node && i < kMostNodes; ++i) {
    ReadNode(node);
    NodePtr next;
    CheckResult(node->get_firstChild(next.Receive()));
    while (!next && node) {
      CheckResult(node->get_nextSibling(next.Receive()));
      if (next) break;
      NodePtr parent;
      CheckResult(node->get_parentNode(parent.Receive()));
      node = parent;
    }
    node = next;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The first byte tells whether the rest is bytes, which are widened, or units, and whether white
  // space is preserved.
  if (size == 0) return 0;
  const bool isWide = (data[0] & 1) != 0;
  const bool preserving = (data[0] & 2) != 0;
  WideString text;
  if (isWide) {
    for (std::size_t i = 1; i + 1 < size; i += 2) {
      text += static_cast<OLECHAR>(data[i] | data[i + 1] << 8);
    }
  } else {
    for (std::size_t i = 1; i < size; ++i) text += static_cast<OLECHAR>(data[i]);
  }

  const DocumentPtr document = NewDocument(preserving);
  // The text also serves as a query and as a list of namespaces.
  const Bstr whole(text);
  document->setProperty(Bstr(OLESTR("SelectionNamespaces")).Get(), Variant(text).Get());
  if (!Load(document, text)) return 0;
  NodePtr found;
  document->selectSingleNode(whole.Get(), found.Receive());
  ReadAll(document);

  Bstr first;
  CheckResult(document->get_xml(first.Receive()));
  const DocumentPtr again = NewDocument(preserving);
  if (!Load(again, first.View())) std::abort();
  Bstr second;
  CheckResult(again->get_xml(second.Receive()));
  if (preserving && first.View() != second.View()) std::abort();

  // Take the tree apart while something is held.
  ComPtr<IXMLDOMElement> root;
  CheckResult(document->get_documentElement(root.Receive()));
  NodePtr child;
  CheckResult(root->get_firstChild(child.Receive()));
  CheckResult(root->put_text(Bstr(OLESTR("x")).Get()));
  if (child) ReadNode(child);
  return 0;
}
