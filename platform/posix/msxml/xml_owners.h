// Owners of what libxml2 allocates, and its spelling of characters.
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include <memory>
#include <string>
#include <string_view>

namespace velandoc::dom {

template <auto free>
struct XmlDeleter {
  template <class Object>
  void operator()(Object* object) const {
    free(object);
  }
};

using XmlDocOwner = std::unique_ptr<xmlDoc, XmlDeleter<xmlFreeDoc>>;
using XPathContextOwner = std::unique_ptr<xmlXPathContext, XmlDeleter<xmlXPathFreeContext>>;
using XPathExpressionOwner = std::unique_ptr<xmlXPathCompExpr, XmlDeleter<xmlXPathFreeCompExpr>>;
using XPathObjectOwner = std::unique_ptr<xmlXPathObject, XmlDeleter<xmlXPathFreeObject>>;

inline const xmlChar* XmlText(const char* text) { return reinterpret_cast<const xmlChar*>(text); }
inline const xmlChar* XmlText(const std::string& text) { return XmlText(text.c_str()); }

/// Empty for a null text, which is how libxml2 spells "none".
inline std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

inline xmlNode* AsNode(xmlAttr* attribute) { return reinterpret_cast<xmlNode*>(attribute); }
inline xmlNode* AsNode(xmlDoc* document) { return reinterpret_cast<xmlNode*>(document); }
/// A namespace declaration shares nothing with a node but the place of its type; ask for that
/// before anything else.
inline xmlNode* AsNode(xmlNs* declaration) { return reinterpret_cast<xmlNode*>(declaration); }
inline bool IsDeclaration(const xmlNode* node) { return node->type == XML_NAMESPACE_DECL; }
inline xmlNs* AsDeclaration(xmlNode* node) { return reinterpret_cast<xmlNs*>(node); }
inline xmlAttr* AsAttribute(xmlNode* node) { return reinterpret_cast<xmlAttr*>(node); }

inline bool IsText(const xmlNode* node) {
  return node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
}
/// Only these have children that are nodes of their own in the tree of elements.
inline bool IsParent(const xmlNode* node) {
  return node->type == XML_ELEMENT_NODE || node->type == XML_DOCUMENT_NODE;
}

/// The next node in document order within `root`'s subtree, attributes left out; null at its end.
inline xmlNode* NextInSubtree(xmlNode* node, const xmlNode* root) {
  if (IsParent(node) && node->children != nullptr) return node->children;
  while (node != root && node->next == nullptr) node = node->parent;
  return node == root ? nullptr : node->next;
}

inline bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
inline bool IsBlank(std::string_view text) {
  return text.find_first_not_of(" \t\n\r") == std::string_view::npos;
}

/// Appends `node`, which has no parent, as `parent`'s child in front of `before`, or last if that
/// is null. libxml2's own function would merge neighbouring texts and free one of them under its
/// owner's hands.
void LinkNode(xmlNode* parent, xmlNode* node, xmlNode* before);

/// True if white space below `node`, or in it, is to be kept: its nearest xml:space says so.
bool KeepsWhiteSpace(const xmlNode* node);

}  // namespace velandoc::dom
