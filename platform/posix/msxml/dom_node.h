// What the objects of all kinds of nodes do alike: IXMLDOMNode without its virtual table.
#pragma once

#include "platform/posix/msxml/msxml.h"
#include "platform/posix/msxml/tree.h"
#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

/// QueryInterface with this id gives the DomNode of one of our own node objects, uncounted; a
/// foreign object knows nothing of it.
inline constexpr IID IID_DomNode = {
    0x7A1C3E52, 0x0B7D, 0x4F4E, {0x9A, 0x31, 0x5D, 0x60, 0xE2, 0x18, 0xC4, 0x97}};

/// The operations of IXMLDOMNode by their COM names; see msxml.h for what holds for all of them.
class DomNode {
 public:
  HRESULT get_nodeName(BSTR* name);
  /// VT_NULL and S_FALSE for nodes without a value: elements and documents.
  HRESULT get_nodeValue(VARIANT* value);
  /// E_FAIL for nodes without a value; the value is converted to text.
  HRESULT put_nodeValue(const VARIANT& value);
  HRESULT get_nodeType(DOMNodeType* type);
  HRESULT get_nodeTypeString(BSTR* type);
  HRESULT get_parentNode(IXMLDOMNode** parent);
  /// The list is live: it always shows the children that there are.
  HRESULT get_childNodes(IXMLDOMNodeList** children);
  HRESULT get_firstChild(IXMLDOMNode** child);
  HRESULT get_lastChild(IXMLDOMNode** child);
  HRESULT get_previousSibling(IXMLDOMNode** sibling);
  HRESULT get_nextSibling(IXMLDOMNode** sibling);
  /// S_FALSE and null for anything but an element. The map is live.
  HRESULT get_attributes(IXMLDOMNamedNodeMap** attributes);
  /// E_FAIL where XML allows no such child (an attribute, a second element in a document, text in a
  /// document, a node in its own subtree), E_INVALIDARG for a null or foreign node, or one of
  /// another document or an earlier load.
  HRESULT insertBefore(IXMLDOMNode* child, const VARIANT& before, IXMLDOMNode** inserted);
  HRESULT replaceChild(IXMLDOMNode* child, IXMLDOMNode* old, IXMLDOMNode** replaced);
  /// E_INVALIDARG if `child` is no child of this node.
  HRESULT removeChild(IXMLDOMNode* child, IXMLDOMNode** removed);
  HRESULT appendChild(IXMLDOMNode* child, IXMLDOMNode** appended);
  HRESULT hasChildNodes(VARIANT_BOOL* has);
  HRESULT get_ownerDocument(IXMLDOMDocument** document);
  /// The copy hangs nowhere; of an element it has the attributes, and all below it if `deep`.
  /// E_NOTIMPL for documents.
  HRESULT cloneNode(VARIANT_BOOL deep, IXMLDOMNode** clone);
  HRESULT get_text(BSTR* text);
  /// An element's children are replaced by one text, or by nothing if `text` is empty or null.
  /// E_FAIL for a document; E_INVALIDARG where the text cannot stand, as "--" in a comment.
  HRESULT put_text(BSTR text);
  HRESULT get_nodeTypedValue(VARIANT* value);
  HRESULT get_xml(BSTR* xml);
  /// XPath 1.0 from this node, whose prefixes are those of SelectionNamespaces. E_FAIL for an
  /// expression that is none or does not give nodes. The nodes found come in document order and are
  /// fixed: a later change does not show.
  HRESULT selectNodes(BSTR query, IXMLDOMNodeList** result);
  HRESULT selectSingleNode(BSTR query, IXMLDOMNode** result);
  HRESULT get_namespaceURI(BSTR* uri);
  HRESULT get_prefix(BSTR* prefix);
  HRESULT get_baseName(BSTR* name);

  Tree& GetTree() const { return *m_tree; }
  xmlNode* Get() const { return m_node; }

 protected:
  DomNode() = default;
  DomNode(Tree& tree, xmlNode* node) : m_tree(&tree), m_node(node) {}
  ~DomNode() = default;
  DomNode(const DomNode&) = delete;
  DomNode& operator=(const DomNode&) = delete;

  void Bind(Tree& tree, xmlNode* node) {
    m_tree = &tree;
    m_node = node;
  }

 private:
  Tree* m_tree = nullptr;
  xmlNode* m_node = nullptr;
};

/// Our own node behind an interface; null for a null or foreign one.
DomNode* FindDomNode(IUnknown* object);

/// The object for a node, made if there is none, with a reference for the caller; for a null node,
/// S_FALSE and null. `owner` is the element of a namespace declaration, null for one that has none,
/// and null for all other nodes.
HRESULT GiveNode(Tree& tree, xmlNode* node, IXMLDOMNode** out, xmlNode* owner = nullptr);

/// As GiveNode for a node of a known kind, under the interface of that kind.
template <class Interface>
HRESULT GiveNodeAs(Tree& tree, xmlNode* node, Interface** out) {
  IXMLDOMNode* object = nullptr;
  const HRESULT result = GiveNode(tree, node, &object);
  // The kinds' interfaces derive from IXMLDOMNode in a single line.
  *out = static_cast<Interface*>(object);
  return result;
}

}  // namespace velandoc::dom
