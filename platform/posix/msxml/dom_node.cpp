#include "platform/posix/msxml/dom_node.h"

#include "platform/owners.h"
#include "platform/posix/msxml/attribute.h"
#include "platform/posix/msxml/character_data.h"
#include "platform/posix/msxml/element.h"
#include "platform/posix/msxml/guard.h"
#include "platform/posix/msxml/named_node_map.h"
#include "platform/posix/msxml/node_factory.h"
#include "platform/posix/msxml/node_list.h"
#include "platform/posix/msxml/node_name.h"
#include "platform/posix/msxml/node_text.h"
#include "platform/posix/msxml/selection.h"
#include "platform/posix/msxml/serializer.h"

namespace velandoc::dom {
namespace {

DOMNodeType TypeOf(const xmlNode* node) {
  switch (node->type) {
    case XML_ELEMENT_NODE:
      return NODE_ELEMENT;
    case XML_ATTRIBUTE_NODE:
    case XML_NAMESPACE_DECL:
      return NODE_ATTRIBUTE;
    case XML_TEXT_NODE:
      return NODE_TEXT;
    case XML_CDATA_SECTION_NODE:
      return NODE_CDATA_SECTION;
    case XML_COMMENT_NODE:
      return NODE_COMMENT;
    case XML_PI_NODE:
      return NODE_PROCESSING_INSTRUCTION;
    case XML_DOCUMENT_NODE:
      return NODE_DOCUMENT;
    default:
      return NODE_INVALID;
  }
}

bool IsAttribute(const xmlNode* node) { return TypeOf(node) == NODE_ATTRIBUTE; }

IXMLDOMNode* MakeObject(Tree& tree, xmlNode* node, xmlNode* owner) {
  switch (node->type) {
    case XML_ELEMENT_NODE:
      return new Element(tree, node);
    case XML_ATTRIBUTE_NODE:
      return new Attribute(tree, node);
    case XML_NAMESPACE_DECL:
      return new Declaration(tree, AsDeclaration(node), owner);
    case XML_TEXT_NODE:
      return new Text(tree, node);
    case XML_CDATA_SECTION_NODE:
      return new Section(tree, node);
    case XML_COMMENT_NODE:
      return new Comment(tree, node);
    case XML_PI_NODE:
      return new Instruction(tree, node);
    default:
      return nullptr;
  }
}

/// The text, or nothing and S_FALSE if it is empty.
HRESULT GiveTextOrNothing(BSTR* out, std::string_view text) {
  return text.empty() ? GiveNothing(out) : GiveText(out, text);
}

}  // namespace

DomNode* FindDomNode(IUnknown* object) {
  void* node = nullptr;
  if (object == nullptr || FAILED(object->QueryInterface(IID_DomNode, &node))) return nullptr;
  return static_cast<DomNode*>(node);
}

HRESULT GiveNode(Tree& tree, xmlNode* node, IXMLDOMNode** out, xmlNode* owner) {
  *out = nullptr;
  if (node == nullptr) return S_FALSE;
  if (node->type == XML_DOCUMENT_NODE) {
    // The object shows the document's present content; nodes of an earlier one have no document
    // node above them.
    if (!tree.IsCurrent()) return S_FALSE;
    *out = tree.Document();
    (*out)->AddRef();
    return S_OK;
  }
  if (void* object = HeldObject(node)) {
    *out = static_cast<IXMLDOMNode*>(object);
    (*out)->AddRef();
    return S_OK;
  }
  return Guarded([&] {
    *out = MakeObject(tree, node, owner);
    return *out != nullptr ? S_OK : E_UNEXPECTED;
  });
}

HRESULT DomNode::get_nodeName(BSTR* name) {
  const bool isNamed = m_node->type == XML_ELEMENT_NODE || m_node->type == XML_ATTRIBUTE_NODE;
  if (isNamed && NodePrefix(m_node).empty()) return GiveText(name, View(m_node->name));
  return Guarded([&] { return GiveText(name, NodeName(m_node)); });
}

HRESULT DomNode::get_nodeValue(VARIANT* value) {
  if (value == nullptr) return E_INVALIDARG;
  VariantInit(value);
  if (IsParent(m_node)) {
    value->vt = VT_NULL;
    return S_FALSE;
  }
  if (!IsAttribute(m_node)) return GiveText(value, View(m_node->content));
  return Guarded([&] {
    value->bstrVal = GetNodeText(m_node, true);
    value->vt = VT_BSTR;
    return S_OK;
  });
}

HRESULT DomNode::put_nodeValue(const VARIANT& value) {
  if (IsParent(m_node)) return E_FAIL;
  Variant text;
  const HRESULT result = VariantChangeType(text.Receive(), &value, 0, VT_BSTR);
  return FAILED(result) ? result : put_text(text.Get().bstrVal);
}

HRESULT DomNode::get_nodeType(DOMNodeType* type) { return Give(type, TypeOf(m_node)); }

HRESULT DomNode::get_nodeTypeString(BSTR* type) {
  return GiveText(type, NodeTypeName(TypeOf(m_node)));
}

HRESULT DomNode::get_parentNode(IXMLDOMNode** parent) {
  if (parent == nullptr) return E_INVALIDARG;
  // An attribute has an element, but no parent.
  return GiveNode(*m_tree, IsAttribute(m_node) ? nullptr : m_node->parent, parent);
}

HRESULT DomNode::get_childNodes(IXMLDOMNodeList** children) {
  if (children == nullptr) return E_INVALIDARG;
  *children = nullptr;
  if (IsDeclaration(m_node)) return GiveFound(*m_tree, {}, children);
  return Guarded([&] {
    ComPtr<IXMLDOMNode> self;
    CheckResult(GiveNode(*m_tree, m_node, self.Receive()));
    return GiveChildren(*m_tree, m_node, self.Get(), children);
  });
}

HRESULT DomNode::get_firstChild(IXMLDOMNode** child) {
  if (child == nullptr) return E_INVALIDARG;
  return GiveNode(*m_tree, IsDeclaration(m_node) ? nullptr : m_node->children, child);
}

HRESULT DomNode::get_lastChild(IXMLDOMNode** child) {
  if (child == nullptr) return E_INVALIDARG;
  return GiveNode(*m_tree, IsDeclaration(m_node) ? nullptr : m_node->last, child);
}

HRESULT DomNode::get_previousSibling(IXMLDOMNode** sibling) {
  if (sibling == nullptr) return E_INVALIDARG;
  return GiveNode(*m_tree, IsAttribute(m_node) ? nullptr : m_node->prev, sibling);
}

HRESULT DomNode::get_nextSibling(IXMLDOMNode** sibling) {
  if (sibling == nullptr) return E_INVALIDARG;
  return GiveNode(*m_tree, IsAttribute(m_node) ? nullptr : m_node->next, sibling);
}

HRESULT DomNode::get_attributes(IXMLDOMNamedNodeMap** attributes) {
  if (attributes == nullptr) return E_INVALIDARG;
  *attributes = nullptr;
  if (m_node->type != XML_ELEMENT_NODE) return S_FALSE;
  return Guarded([&] {
    ComPtr<IXMLDOMNode> self;
    CheckResult(GiveNode(*m_tree, m_node, self.Receive()));
    return GiveAttributes(*m_tree, m_node, self.Get(), attributes);
  });
}

HRESULT DomNode::hasChildNodes(VARIANT_BOOL* has) {
  if (has == nullptr) return E_INVALIDARG;
  const bool hasChild = !IsDeclaration(m_node) && m_node->children != nullptr;
  *has = hasChild ? VARIANT_TRUE : VARIANT_FALSE;
  return hasChild ? S_OK : S_FALSE;
}

HRESULT DomNode::get_ownerDocument(IXMLDOMDocument** document) {
  if (document == nullptr) return E_INVALIDARG;
  *document = nullptr;
  if (m_node->type == XML_DOCUMENT_NODE) return S_FALSE;
  *document = m_tree->Document();
  (*document)->AddRef();
  return S_OK;
}

HRESULT DomNode::get_text(BSTR* text) {
  if (text == nullptr) return E_INVALIDARG;
  *text = nullptr;
  return Guarded([&] {
    VARIANT_BOOL preserving = VARIANT_FALSE;
    if (!IsAttribute(m_node)) m_tree->Document()->get_preserveWhiteSpace(&preserving);
    *text = GetNodeText(m_node, preserving != VARIANT_FALSE);
    return S_OK;
  });
}

HRESULT DomNode::get_nodeTypedValue(VARIANT* value) {
  if (value == nullptr) return E_INVALIDARG;
  VariantInit(value);
  if (m_node->type != XML_ELEMENT_NODE) return get_nodeValue(value);
  const HRESULT result = get_text(&value->bstrVal);
  if (result == S_OK) value->vt = VT_BSTR;
  return result;
}

HRESULT DomNode::get_xml(BSTR* xml) {
  if (xml == nullptr) return E_INVALIDARG;
  *xml = nullptr;
  return Guarded([&] { return GiveText(xml, Serialize(m_node)); });
}

HRESULT DomNode::selectNodes(BSTR query, IXMLDOMNodeList** result) {
  if (query == nullptr || result == nullptr) return E_INVALIDARG;
  *result = nullptr;
  if (IsDeclaration(m_node)) return E_FAIL;
  return Guarded([&] {
    std::vector<xmlNode*> found;
    CheckResult(Select(*m_tree, m_node, Encode(query), found));
    return GiveFound(*m_tree, std::move(found), result);
  });
}

HRESULT DomNode::selectSingleNode(BSTR query, IXMLDOMNode** result) {
  if (query == nullptr || result == nullptr) return E_INVALIDARG;
  *result = nullptr;
  if (IsDeclaration(m_node)) return E_FAIL;
  return Guarded([&] {
    std::vector<xmlNode*> found;
    CheckResult(Select(*m_tree, m_node, Encode(query), found));
    return GiveNode(*m_tree, found.empty() ? nullptr : found.front(), result);
  });
}

HRESULT DomNode::get_namespaceURI(BSTR* uri) {
  return GiveTextOrNothing(uri, NodeNamespace(m_node));
}

HRESULT DomNode::get_prefix(BSTR* prefix) { return GiveTextOrNothing(prefix, NodePrefix(m_node)); }

HRESULT DomNode::get_baseName(BSTR* name) { return GiveTextOrNothing(name, NodeBaseName(m_node)); }

}  // namespace velandoc::dom
