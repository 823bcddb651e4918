#include "platform/posix/msxml/node_name.h"

namespace velandoc::dom {
namespace {

const xmlNs* DeclarationOf(const xmlNode* node) { return reinterpret_cast<const xmlNs*>(node); }

bool IsNamed(const xmlNode* node) {
  return node->type == XML_ELEMENT_NODE || node->type == XML_ATTRIBUTE_NODE;
}

bool IsNcName(const std::string& text) { return xmlValidateNCName(XmlText(text), 0) == 0; }

}  // namespace

bool SplitName(const std::string& text, QualifiedName& name) {
  QualifiedName split;
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) {
    split.local = text;
  } else {
    split.prefix = text.substr(0, colon);
    split.local = text.substr(colon + 1);
    if (!IsNcName(split.prefix)) return false;
  }
  if (!IsNcName(split.local)) return false;
  name = std::move(split);
  return true;
}

std::string NodeName(const xmlNode* node) {
  switch (node->type) {
    case XML_TEXT_NODE:
      return "#text";
    case XML_CDATA_SECTION_NODE:
      return "#cdata-section";
    case XML_COMMENT_NODE:
      return "#comment";
    case XML_DOCUMENT_NODE:
      return "#document";
    case XML_PI_NODE:
      return std::string(View(node->name));
    default: {
      const std::string_view prefix = NodePrefix(node);
      const std::string_view base = NodeBaseName(node);
      std::string name(prefix);
      if (!prefix.empty() && !base.empty()) name += ':';
      name += base;
      return name;
    }
  }
}

std::string_view NodePrefix(const xmlNode* node) {
  if (IsDeclaration(node)) return "xmlns";
  return IsNamed(node) && node->ns != nullptr ? View(node->ns->prefix) : std::string_view();
}

std::string_view NodeBaseName(const xmlNode* node) {
  if (IsDeclaration(node)) return View(DeclarationOf(node)->prefix);
  return IsNamed(node) || node->type == XML_PI_NODE ? View(node->name) : std::string_view();
}

std::string_view NodeNamespace(const xmlNode* node) {
  if (IsDeclaration(node)) return kDeclarationNamespace;
  return IsNamed(node) && node->ns != nullptr ? View(node->ns->href) : std::string_view();
}

bool HasName(const xmlNode* node, std::string_view qualifiedName) {
  const std::string_view prefix = NodePrefix(node);
  const std::string_view base = NodeBaseName(node);
  if (prefix.empty()) return base == qualifiedName;
  if (base.empty()) return prefix == qualifiedName;  // the declaration "xmlns"
  return qualifiedName.size() == prefix.size() + 1 + base.size() &&
         qualifiedName.starts_with(prefix) && qualifiedName[prefix.size()] == ':' &&
         qualifiedName.ends_with(base);
}

}  // namespace velandoc::dom
