#include "platform/posix/msxml/node_factory.h"

#include <iterator>
#include <new>
#include <string_view>

#include "platform/owners.h"
#include "platform/posix/msxml/attribute.h"
#include "platform/posix/msxml/guard.h"
#include "platform/posix/msxml/node_name.h"
#include "platform/posix/msxml/node_slot.h"

namespace velandoc::dom {
namespace {

/// Indexed by DOMNodeType.
constexpr const char* kTypeNames[] = {"",
                                      "element",
                                      "attribute",
                                      "text",
                                      "cdatasection",
                                      "entityreference",
                                      "entity",
                                      "processinginstruction",
                                      "comment",
                                      "document",
                                      "documenttype",
                                      "documentfragment",
                                      "notation"};

void CheckMemory(const void* made) {
  if (made == nullptr) throw std::bad_alloc();
}

HRESULT GiveNew(Tree& tree, xmlNode* made, IXMLDOMNode** node) {
  CheckMemory(made);
  tree.AddOrphan(made);
  return GiveNode(tree, made, node);
}

HRESULT CreateNamed(Tree& tree, DOMNodeType type, const std::string& name, const std::string& uri,
                    IXMLDOMNode** node) {
  QualifiedName parts;
  if (!SplitName(name, parts)) return E_FAIL;
  if (type == NODE_PROCESSING_INSTRUCTION) {
    if (!parts.prefix.empty()) return E_FAIL;
    return GiveNew(tree, xmlNewDocPI(tree.Doc(), XmlText(name), nullptr), node);
  }
  if (parts.IsDeclaration()) {
    if (type != NODE_ATTRIBUTE) return E_FAIL;
    xmlNs* made =
        xmlNewNs(nullptr, XmlText(""), parts.prefix.empty() ? nullptr : XmlText(parts.local));
    CheckMemory(made);
    auto* object = new (std::nothrow) Declaration(tree, made, nullptr);
    if (object == nullptr) {
      xmlFreeNs(made);
      throw std::bad_alloc();
    }
    *node = object;
    return S_OK;
  }
  xmlNs* ns = nullptr;
  if (parts.prefix == "xml") {
    ns = tree.Namespace(parts.prefix, std::string(View(XML_XML_NAMESPACE)));
  } else if (!uri.empty()) {
    ns = tree.Namespace(parts.prefix, uri);
  }
  xmlNode* made = nullptr;
  if (type == NODE_ELEMENT) {
    made = xmlNewDocNode(tree.Doc(), ns, XmlText(parts.local), nullptr);
  } else {
    made = AsNode(xmlNewDocProp(tree.Doc(), XmlText(parts.local), nullptr));
    CheckMemory(made);
    made->ns = ns;
  }
  return GiveNew(tree, made, node);
}

xmlNode* CopyOne(const xmlNode* node);

void CopyAttributes(xmlNode* copy, const xmlNode* node) {
  xmlNs** link = &copy->nsDef;
  for (const xmlNs* declared = node->nsDef; declared != nullptr; declared = declared->next) {
    xmlNs* made = xmlNewNs(nullptr, declared->href, declared->prefix);
    CheckMemory(made);
    *link = made;
    link = &made->next;
  }
  xmlAttr* last = nullptr;
  for (xmlAttr* attribute = node->properties; attribute != nullptr; attribute = attribute->next) {
    xmlNode* made = CopyOne(AsNode(attribute));
    made->parent = copy;
    made->prev = AsNode(last);
    (last != nullptr ? last->next : copy->properties) = AsAttribute(made);
    last = AsAttribute(made);
  }
}

/// Without children, but with attributes and their values.
xmlNode* CopyOne(const xmlNode* node) {
  xmlNode* copy = nullptr;
  switch (node->type) {
    case XML_ELEMENT_NODE:
      copy = xmlNewDocNode(node->doc, node->ns, node->name, nullptr);
      break;
    case XML_ATTRIBUTE_NODE: {
      copy = AsNode(xmlNewDocProp(node->doc, node->name, nullptr));
      CheckMemory(copy);
      copy->ns = node->ns;
      for (const xmlNode* value = node->children; value != nullptr; value = value->next) {
        xmlNode* text = xmlNewDocText(node->doc, value->content);
        CheckMemory(text);
        LinkNode(copy, text, nullptr);
      }
      break;
    }
    case XML_TEXT_NODE:
      copy = xmlNewDocText(node->doc, node->content);
      break;
    case XML_CDATA_SECTION_NODE:
      copy = xmlNewCDataBlock(node->doc, node->content, xmlStrlen(node->content));
      break;
    case XML_COMMENT_NODE:
      copy = xmlNewDocComment(node->doc, node->content);
      break;
    default:
      copy = xmlNewDocPI(node->doc, node->name, node->content);
      break;
  }
  CheckMemory(copy);
  CopyNotes(copy, node);
  return copy;
}

}  // namespace

HRESULT CreateNode(Tree& tree, DOMNodeType type, const std::string& name, const std::string& uri,
                   IXMLDOMNode** node) {
  *node = nullptr;
  return Guarded([&] {
    switch (type) {
      case NODE_ELEMENT:
      case NODE_ATTRIBUTE:
      case NODE_PROCESSING_INSTRUCTION:
        return CreateNamed(tree, type, name, uri, node);
      case NODE_TEXT:
        return GiveNew(tree, xmlNewDocText(tree.Doc(), XmlText("")), node);
      case NODE_CDATA_SECTION:
        return GiveNew(tree, xmlNewCDataBlock(tree.Doc(), XmlText(""), 0), node);
      case NODE_COMMENT:
        return GiveNew(tree, xmlNewDocComment(tree.Doc(), XmlText("")), node);
      case NODE_DOCUMENT:
      case NODE_DOCUMENT_FRAGMENT:
      case NODE_ENTITY_REFERENCE:
        return E_NOTIMPL;
      default:
        return E_INVALIDARG;
    }
  });
}

xmlNode* CopyNode(const xmlNode* root, bool deep) {
  xmlNode* const copy = CopyOne(root);
  if (copy->type != XML_ELEMENT_NODE) return copy;
  try {
    CopyAttributes(copy, root);
    const xmlNode* from = root;
    xmlNode* to = copy;
    while (deep) {
      if (IsParent(from) && from->children != nullptr) {
        from = from->children;
      } else {
        while (from != root && from->next == nullptr) {
          from = from->parent;
          to = to->parent;
        }
        if (from == root) break;
        from = from->next;
        to = to->parent;
      }
      xmlNode* const next = CopyOne(from);
      LinkNode(to, next, nullptr);
      if (next->type == XML_ELEMENT_NODE) CopyAttributes(next, from);
      to = next;
    }
  } catch (const std::bad_alloc&) {
    xmlFreeNode(copy);
    throw;
  }
  return copy;
}

DOMNodeType NodeTypeOf(const VARIANT& type) {
  if (type.vt == VT_BSTR) {
    const std::string name = Encode(type.bstrVal);
    for (std::size_t i = 1; i < std::size(kTypeNames); ++i) {
      if (name == kTypeNames[i]) return static_cast<DOMNodeType>(i);
    }
    return NODE_INVALID;
  }
  Variant number;
  if (FAILED(VariantChangeType(number.Receive(), &type, 0, VT_I4))) return NODE_INVALID;
  const LONG value = number.Get().lVal;
  if (value <= NODE_INVALID || value > NODE_NOTATION) return NODE_INVALID;
  return static_cast<DOMNodeType>(value);
}

const char* NodeTypeName(DOMNodeType type) { return kTypeNames[type]; }

}  // namespace velandoc::dom
