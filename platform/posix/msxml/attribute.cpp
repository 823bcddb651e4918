#include "platform/posix/msxml/attribute.h"

#include <new>

namespace velandoc::dom {

template <>
bool AnswersTo<IXMLDOMAttribute>(REFIID riid) {
  return riid == IID_IXMLDOMAttribute;
}

Declaration::~Declaration() {
  if (m_element == nullptr) GetTree().KeepNamespace(AsDeclaration(Get()));
}

void Declaration::SetValue(const std::string& uri) {
  xmlNs* const old = AsDeclaration(Get());
  xmlNs* const made = xmlNewNs(nullptr, XmlText(uri), old->prefix);
  if (made == nullptr) throw std::bad_alloc();
  // Nodes point at the old one and keep their namespace: the new one only takes its place in the
  // element's list.
  if (m_element != nullptr) {
    xmlNs** link = &m_element->nsDef;
    while (*link != old) link = &(*link)->next;
    made->next = old->next;
    *link = made;
  }
  SetObject(AsNode(old), nullptr);
  SetObject(AsNode(made), static_cast<IXMLDOMNode*>(this));
  GetTree().KeepNamespace(old);
  Bind(GetTree(), AsNode(made));
}

Declaration* ObjectOf(xmlNs* declared) {
  return static_cast<Declaration*>(static_cast<IXMLDOMNode*>(HeldObject(AsNode(declared))));
}

void UnlinkDeclaration(Tree& tree, xmlNode* element, xmlNs* declared) {
  xmlNs** link = &element->nsDef;
  while (*link != declared) link = &(*link)->next;
  *link = declared->next;
  declared->next = nullptr;
  tree.NoteChange();
  if (Declaration* object = ObjectOf(declared)) {
    object->SetElement(nullptr);
  } else {
    tree.KeepNamespace(declared);
  }
}

void LinkDeclaration(Tree& tree, xmlNode* element, xmlNs* declared) {
  for (xmlNs* other = element->nsDef; other != nullptr; other = other->next) {
    if (View(other->prefix) != View(declared->prefix)) continue;
    UnlinkDeclaration(tree, element, other);
    break;
  }
  xmlNs** link = &element->nsDef;
  while (*link != nullptr) link = &(*link)->next;
  *link = declared;
  declared->next = nullptr;
  tree.NoteChange();
  if (Declaration* object = ObjectOf(declared)) object->SetElement(element);
}

}  // namespace velandoc::dom
