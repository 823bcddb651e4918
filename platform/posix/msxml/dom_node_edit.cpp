// The part of DomNode that changes trees.

#include <new>

#include "platform/owners.h"
#include "platform/posix/msxml/attribute.h"
#include "platform/posix/msxml/dom_node.h"
#include "platform/posix/msxml/guard.h"
#include "platform/posix/msxml/node_factory.h"
#include "platform/posix/msxml/node_slot.h"

namespace velandoc::dom {
namespace {

/// Whether XML allows `child` below `parent`; `replaced` is the child whose place it is to take, or
/// null.
bool MayContain(const xmlNode* parent, const xmlNode* child, const xmlNode* replaced) {
  switch (child->type) {
    case XML_ELEMENT_NODE:
    case XML_COMMENT_NODE:
    case XML_PI_NODE:
      break;
    case XML_TEXT_NODE:
    case XML_CDATA_SECTION_NODE:
      return parent->type == XML_ELEMENT_NODE;
    default:
      return false;
  }
  if (!IsParent(parent)) return false;
  if (parent->type == XML_DOCUMENT_NODE && child->type == XML_ELEMENT_NODE) {
    const xmlNode* root = xmlDocGetRootElement(parent->doc);
    if (root != nullptr && root != child && root != replaced) return false;
  }
  if (parent == child) return false;
  // A node without children is above nobody; asking so keeps building from the outside in linear.
  if (child->type != XML_ELEMENT_NODE || child->children == nullptr) return true;
  for (const xmlNode* above = parent; above != nullptr; above = above->parent) {
    if (above == child) return false;
  }
  return true;
}

/// After this the node hangs nowhere, and the caller must give it a place.
void Detach(Tree& tree, xmlNode* node) {
  if (node->parent != nullptr) {
    xmlUnlinkNode(node);
  } else {
    tree.AdoptOrphan(node);
  }
  DropNote(node, kBlankBefore);
  tree.NoteChange();
}

void GiveBack(IXMLDOMNode* node, IXMLDOMNode** out) {
  if (out == nullptr) return;
  node->AddRef();
  *out = node;
}

/// True if `text` can be the content of this kind of node without ending it early.
bool CanHold(const xmlNode* node, const std::string& text) {
  if (node->type == XML_COMMENT_NODE) {
    return text.find("--") == std::string::npos && !text.ends_with('-');
  }
  if (node->type == XML_PI_NODE) return text.find("?>") == std::string::npos;
  return true;
}

void ReplaceChildren(Tree& tree, xmlNode* parent, const std::string& text) {
  xmlNode* made = nullptr;
  if (!text.empty()) {
    made = xmlNewDocText(parent->doc, XmlText(text));
    if (made == nullptr) throw std::bad_alloc();
  }
  while (xmlNode* child = parent->children) {
    xmlUnlinkNode(child);
    tree.Discard(child);
  }
  DropNote(parent, kBlankAtEnd);
  if (made != nullptr) LinkNode(parent, made, nullptr);
  tree.NoteChange();
}

}  // namespace

HRESULT DomNode::insertBefore(IXMLDOMNode* child, const VARIANT& before, IXMLDOMNode** inserted) {
  if (inserted != nullptr) *inserted = nullptr;
  IUnknown* reference = nullptr;
  if (before.vt == VT_DISPATCH || before.vt == VT_UNKNOWN) {
    reference = before.punkVal;
  } else if (before.vt != VT_EMPTY && before.vt != VT_NULL && before.vt != VT_ERROR) {
    return E_INVALIDARG;
  }
  return Guarded([&] {
    const DomNode* const node = FindDomNode(child);
    if (node == nullptr || node->m_tree != m_tree) return E_INVALIDARG;
    xmlNode* place = nullptr;
    if (reference != nullptr) {
      const DomNode* const sibling = FindDomNode(reference);
      if (sibling == nullptr || IsDeclaration(sibling->m_node)) return E_INVALIDARG;
      place = sibling->m_node;
      if (place->parent != m_node || place->type == XML_ATTRIBUTE_NODE) return E_INVALIDARG;
    }
    if (!MayContain(m_node, node->m_node, nullptr)) return E_FAIL;
    if (place != node->m_node) {
      Detach(*m_tree, node->m_node);
      LinkNode(m_node, node->m_node, place);
    }
    GiveBack(child, inserted);
    return S_OK;
  });
}

HRESULT DomNode::appendChild(IXMLDOMNode* child, IXMLDOMNode** appended) {
  return insertBefore(child, Variant().Get(), appended);
}

HRESULT DomNode::replaceChild(IXMLDOMNode* child, IXMLDOMNode* old, IXMLDOMNode** replaced) {
  if (replaced != nullptr) *replaced = nullptr;
  return Guarded([&] {
    const DomNode* const node = FindDomNode(child);
    const DomNode* const gone = FindDomNode(old);
    if (node == nullptr || gone == nullptr || node->m_tree != m_tree) return E_INVALIDARG;
    xmlNode* const out = gone->m_node;
    if (IsDeclaration(out) || out->type == XML_ATTRIBUTE_NODE || out->parent != m_node) {
      return E_INVALIDARG;
    }
    if (!MayContain(m_node, node->m_node, out)) return E_FAIL;
    if (node->m_node != out) {
      Detach(*m_tree, node->m_node);
      LinkNode(m_node, node->m_node, out);
      xmlUnlinkNode(out);
      m_tree->AddOrphan(out);
    }
    GiveBack(old, replaced);
    return S_OK;
  });
}

HRESULT DomNode::removeChild(IXMLDOMNode* child, IXMLDOMNode** removed) {
  if (removed != nullptr) *removed = nullptr;
  return Guarded([&] {
    const DomNode* const node = FindDomNode(child);
    if (node == nullptr || IsDeclaration(node->m_node)) return E_INVALIDARG;
    if (node->m_node->parent != m_node || node->m_node->type == XML_ATTRIBUTE_NODE) {
      return E_INVALIDARG;
    }
    m_tree->AddOrphan(node->m_node);
    xmlUnlinkNode(node->m_node);
    m_tree->NoteChange();
    GiveBack(child, removed);
    return S_OK;
  });
}

HRESULT DomNode::cloneNode(VARIANT_BOOL deep, IXMLDOMNode** clone) {
  if (clone == nullptr) return E_INVALIDARG;
  *clone = nullptr;
  if (m_node->type == XML_DOCUMENT_NODE) return E_NOTIMPL;
  return Guarded([&] {
    if (IsDeclaration(m_node)) {
      const xmlNs* declared = AsDeclaration(m_node);
      xmlNs* made = xmlNewNs(nullptr, declared->href, declared->prefix);
      if (made == nullptr) throw std::bad_alloc();
      return GiveNode(*m_tree, AsNode(made), clone);
    }
    xmlNode* const copy = CopyNode(m_node, deep != VARIANT_FALSE);
    m_tree->AddOrphan(copy);
    return GiveNode(*m_tree, copy, clone);
  });
}

HRESULT DomNode::put_text(BSTR text) {
  if (m_node->type == XML_DOCUMENT_NODE) return E_FAIL;
  return Guarded([&] {
    const std::string content = Encode(text);
    if (IsDeclaration(m_node)) {
      ObjectOf(AsDeclaration(m_node))->SetValue(content);
      return S_OK;
    }
    if (m_node->type == XML_ELEMENT_NODE || m_node->type == XML_ATTRIBUTE_NODE) {
      ReplaceChildren(*m_tree, m_node, content);
      return S_OK;
    }
    if (!CanHold(m_node, content)) return E_INVALIDARG;
    // xmlNodeSetContent is documented to read references in its text, xmlNodeAddContent to take raw
    // text.
    xmlNodeSetContent(m_node, XmlText(""));
    xmlNodeAddContent(m_node, XmlText(content));
    if (View(m_node->content) != content.c_str()) throw std::bad_alloc();
    return S_OK;
  });
}

}  // namespace velandoc::dom
