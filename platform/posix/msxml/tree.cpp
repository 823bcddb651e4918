#include "platform/posix/msxml/tree.h"

#include <new>

#include "platform/posix/msxml/node_slot.h"

namespace velandoc::dom {
namespace {

bool HasObject(xmlAttr* attribute) {
  if (HeldObject(AsNode(attribute)) != nullptr) return true;
  for (xmlNode* value = attribute->children; value != nullptr; value = value->next) {
    if (HeldObject(value) != nullptr) return true;
  }
  return false;
}

/// True if anybody holds an object for `root`, an attribute or a node, or for anything below it.
bool IsHeld(xmlNode* root) {
  if (root->type == XML_ATTRIBUTE_NODE) return HasObject(AsAttribute(root));
  for (xmlNode* node = root; node != nullptr; node = NextInSubtree(node, root)) {
    if (HeldObject(node) != nullptr) return true;
    if (node->type != XML_ELEMENT_NODE) continue;
    for (xmlAttr* attribute = node->properties; attribute != nullptr; attribute = attribute->next) {
      if (HasObject(attribute)) return true;
    }
    for (xmlNs* declared = node->nsDef; declared != nullptr; declared = declared->next) {
      if (HeldObject(AsNode(declared)) != nullptr) return true;
    }
  }
  return false;
}

}  // namespace

Tree::~Tree() {
  // Not through Free: what the namespaces would be kept for goes too.
  for (xmlNode* orphan : m_orphans) {
    if (orphan->type == XML_ATTRIBUTE_NODE) {
      xmlFreeProp(AsAttribute(orphan));
    } else {
      xmlFreeNode(orphan);
    }
  }
  xmlFreeNsList(m_keptNamespaces);
}

void Tree::Use() {
  if (m_uses++ == 0) m_document->AddRef();
}

void Tree::EndUse() {
  if (--m_uses != 0) return;
  IXMLDOMDocument2* const document = m_document;
  if (!m_isCurrent) delete this;
  // Its last reference may end the document, and with it a tree that is current.
  document->Release();
}

void Tree::GiveUp() {
  m_isCurrent = false;
  m_selectionNamespaces = nullptr;
  if (m_uses == 0) delete this;
}

void Tree::Free(xmlNode* root) {
  if (root->type == XML_ATTRIBUTE_NODE) {
    xmlFreeProp(AsAttribute(root));
    return;
  }
  for (xmlNode* node = root; node != nullptr; node = NextInSubtree(node, root)) {
    if (node->type != XML_ELEMENT_NODE) continue;
    while (xmlNs* declared = node->nsDef) {
      node->nsDef = declared->next;
      KeepNamespace(declared);
    }
  }
  xmlFreeNode(root);
}

void Tree::Discard(xmlNode* node) {
  if (m_foundLists != 0 || IsHeld(node)) {
    AddOrphan(node);
  } else {
    Free(node);
  }
}

void Tree::NoteReleased(xmlNode* node) {
  if (node->parent != nullptr || m_foundLists != 0 || IsHeld(node)) return;
  if (m_orphans.erase(node) != 0) Free(node);
}

xmlNs* Tree::Namespace(const std::string& prefix, const std::string& uri) {
  if (uri == View(XML_XML_NAMESPACE)) {
    xmlNs* const xml = xmlSearchNs(Doc(), AsNode(Doc()), XmlText("xml"));
    if (xml == nullptr) throw std::bad_alloc();
    return xml;
  }
  for (xmlNs* kept = m_keptNamespaces; kept != nullptr; kept = kept->next) {
    if (View(kept->prefix) == prefix && View(kept->href) == uri) return kept;
  }
  xmlNs* made = xmlNewNs(nullptr, XmlText(uri), prefix.empty() ? nullptr : XmlText(prefix));
  if (made == nullptr) throw std::bad_alloc();
  KeepNamespace(made);
  return made;
}

void Tree::KeepNamespace(xmlNs* declaration) {
  declaration->next = m_keptNamespaces;
  m_keptNamespaces = declaration;
}

void Tree::SetSelectionNamespaces(const SelectionNamespaces* namespaces) {
  m_selectionNamespaces = namespaces;
  DropXPathContext();
}

xmlXPathContext* Tree::XPathContext() {
  if (m_xpath) return m_xpath.get();
  XPathContextOwner context(xmlXPathNewContext(Doc()));
  if (!context) throw std::bad_alloc();
  // The type of the second parameter gains a "const" in newer releases of libxml2.
  context->error = [](void*, auto*) {};
  if (m_selectionNamespaces != nullptr) {
    for (const auto& [prefix, uri] : *m_selectionNamespaces) {
      // XPath 1.0 has no default namespace: names without a prefix stay in none.
      if (prefix.empty()) continue;
      if (xmlXPathRegisterNs(context.get(), XmlText(prefix), XmlText(uri)) != 0)
        throw std::bad_alloc();
    }
  }
  m_xpath = std::move(context);
  return m_xpath.get();
}

}  // namespace velandoc::dom
