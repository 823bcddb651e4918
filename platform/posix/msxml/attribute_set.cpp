#include "platform/posix/msxml/attribute_set.h"

#include "platform/posix/msxml/attribute.h"
#include "platform/posix/msxml/node_name.h"

namespace velandoc::dom {

xmlNode* FirstAttribute(xmlNode* element) {
  return element->nsDef != nullptr ? AsNode(element->nsDef) : AsNode(element->properties);
}

xmlNode* NextAttribute(xmlNode* element, xmlNode* attribute) {
  if (!IsDeclaration(attribute)) return attribute->next;
  const xmlNs* declared = AsDeclaration(attribute);
  return declared->next != nullptr ? AsNode(declared->next) : AsNode(element->properties);
}

xmlNode* FindAttribute(xmlNode* element, std::string_view qualifiedName) {
  for (xmlNode* each = FirstAttribute(element); each != nullptr;
       each = NextAttribute(element, each)) {
    if (HasName(each, qualifiedName)) return each;
  }
  return nullptr;
}

xmlNode* FindAttribute(xmlNode* element, std::string_view baseName, std::string_view uri) {
  for (xmlNode* each = FirstAttribute(element); each != nullptr;
       each = NextAttribute(element, each)) {
    if (NodeBaseName(each) == baseName && NodeNamespace(each) == uri) return each;
  }
  return nullptr;
}

HRESULT SetAttribute(Tree& tree, xmlNode* element, IXMLDOMNode* item) {
  const DomNode* const node = FindDomNode(item);
  if (node == nullptr || &node->GetTree() != &tree) return E_INVALIDARG;
  xmlNode* const attribute = node->Get();
  if (IsDeclaration(attribute)) {
    if (ObjectOf(AsDeclaration(attribute))->Element() != nullptr) return E_FAIL;
    LinkDeclaration(tree, element, AsDeclaration(attribute));
    return S_OK;
  }
  if (attribute->type != XML_ATTRIBUTE_NODE) return E_INVALIDARG;
  if (attribute->parent != nullptr) return E_FAIL;

  xmlNode* const old = FindAttribute(element, NodeBaseName(attribute), NodeNamespace(attribute));
  xmlAttr* next = element->properties;
  if (old != nullptr) {
    next = AsAttribute(old->next);
    RemoveAttribute(tree, element, old);
  } else {
    next = nullptr;
  }
  tree.AdoptOrphan(attribute);
  xmlAttr* last = element->properties;
  while (last != nullptr && last->next != next) last = last->next;
  attribute->parent = element;
  attribute->prev = AsNode(last);
  attribute->next = AsNode(next);
  (last != nullptr ? last->next : element->properties) = AsAttribute(attribute);
  if (next != nullptr) next->prev = AsAttribute(attribute);
  tree.NoteChange();
  return S_OK;
}

void RemoveAttribute(Tree& tree, xmlNode* element, xmlNode* attribute) {
  if (IsDeclaration(attribute)) {
    UnlinkDeclaration(tree, element, AsDeclaration(attribute));
    return;
  }
  xmlUnlinkNode(attribute);
  tree.NoteChange();
  tree.Discard(attribute);
}

}  // namespace velandoc::dom
