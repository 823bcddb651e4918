#include "platform/posix/msxml/blanks.h"

#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {
namespace {

/// Looks no further than the first character that counts: texts can be long.
bool IsBlankText(const xmlChar* text) {
  if (text == nullptr) return true;
  while (IsBlank(static_cast<char>(*text))) ++text;
  return *text == 0;
}

bool IsStrippable(const xmlNode* node) {
  return node->type == XML_TEXT_NODE && (node->extra & kSignificant) == 0 &&
         IsBlankText(node->content);
}

void StripChildren(xmlNode* element) {
  xmlNode* child = element->children;
  while (child != nullptr) {
    xmlNode* const next = child->next;
    if (IsStrippable(child)) {
      if (next != nullptr) {
        next->extra |= kBlankBefore;
      } else {
        element->extra |= kBlankAtEnd;
      }
      xmlUnlinkNode(child);
      xmlFreeNode(child);
    }
    child = next;
  }
}

}  // namespace

void StripBlanks(xmlDoc* document) {
  xmlNode* const root = xmlDocGetRootElement(document);
  // Nobody wrote xml:space if the prefix "xml" was never used.
  const bool mayKeep = document->oldNs != nullptr;
  for (xmlNode* node = root; node != nullptr; node = NextInSubtree(node, root)) {
    if (node->type != XML_ELEMENT_NODE) continue;
    if (mayKeep && KeepsWhiteSpace(node)) continue;
    StripChildren(node);
  }
}

}  // namespace velandoc::dom
