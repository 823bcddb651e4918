#include "platform/posix/msxml/node_text.h"

#include <string>

#include "platform/posix/msxml/node_slot.h"
#include "platform/posix/msxml/text_encoding.h"

namespace velandoc::dom {
namespace {

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// Gathers the texts below one node.
class TextReader {
 public:
  void Read(xmlNode* root) {
    xmlNode* node = root;
    while (true) {
      if (node != root && HasNote(node, kBlankBefore)) m_isBlankDue = true;
      if (IsText(node)) Append(View(node->content));
      if (IsParent(node) && node->children != nullptr) {
        node = node->children;
        continue;
      }
      while (true) {
        if (node->type == XML_ELEMENT_NODE && HasNote(node, kBlankAtEnd)) m_isBlankDue = true;
        if (node == root) return;
        if (node->next != nullptr) break;
        node = node->parent;
      }
      node = node->next;
    }
  }
  const std::string& Text() const { return m_text; }

 private:
  void Append(std::string_view text) {
    if (m_isBlankDue && !m_text.empty()) m_text += ' ';
    m_isBlankDue = false;
    m_text += text;
  }

  std::string m_text;
  bool m_isBlankDue = false;
};

}  // namespace

std::string_view AttributeValue(const xmlAttr* attribute, std::string& storage) {
  const xmlNode* value = attribute->children;
  if (value == nullptr) return {};
  if (value->next == nullptr) return View(value->content);
  for (; value != nullptr; value = value->next) storage += View(value->content);
  return storage;
}

BSTR GetNodeText(xmlNode* node, bool preserveWhiteSpace) {
  if (IsDeclaration(node)) return Decode(View(AsDeclaration(node)->href));
  if (node->type == XML_ATTRIBUTE_NODE) {
    std::string storage;
    return Decode(AttributeValue(AsAttribute(node), storage));
  }
  if (!IsParent(node) && !IsText(node)) return Decode(View(node->content));

  TextReader reader;
  std::string_view text;
  const xmlNode* only = IsParent(node) ? node->children : node;
  if (only == nullptr) {
    // Empty.
  } else if (IsText(only) && (only == node || only->next == nullptr)) {
    text = View(only->content);  // read where it lies: it may be 100 MB
  } else {
    reader.Read(node);
    text = reader.Text();
  }
  return Decode(preserveWhiteSpace || KeepsWhiteSpace(node) ? text : Trim(text));
}

}  // namespace velandoc::dom
