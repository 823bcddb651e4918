#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

void LinkNode(xmlNode* parent, xmlNode* node, xmlNode* before) {
  xmlNode* previous = before != nullptr ? before->prev : parent->last;
  node->parent = parent;
  node->prev = previous;
  node->next = before;
  (previous != nullptr ? previous->next : parent->children) = node;
  (before != nullptr ? before->prev : parent->last) = node;
}

bool KeepsWhiteSpace(const xmlNode* node) {
  for (; node != nullptr; node = node->parent) {
    if (node->type != XML_ELEMENT_NODE) continue;
    for (const xmlAttr* attribute = node->properties; attribute != nullptr;
         attribute = attribute->next) {
      if (attribute->ns == nullptr || View(attribute->name) != "space") continue;
      if (View(attribute->ns->href) != View(XML_XML_NAMESPACE)) continue;
      const xmlNode* value = attribute->children;
      return value != nullptr && View(value->content) == "preserve";
    }
  }
  return false;
}

}  // namespace velandoc::dom
