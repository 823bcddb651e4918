// Names of nodes, qualified and in parts. All text is UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

inline constexpr std::string_view kDeclarationNamespace = "http://www.w3.org/2000/xmlns/";

/// "prefix:name" in its parts.
struct QualifiedName {
  std::string prefix;
  std::string local;

  std::string Text() const { return prefix.empty() ? local : prefix + ':' + local; }
  /// True for "xmlns" and for the prefix "xmlns".
  bool IsDeclaration() const { return prefix == "xmlns" || (prefix.empty() && local == "xmlns"); }
};

/// False if `text` is no qualified name of XML; `name` is then unchanged.
bool SplitName(const std::string& text, QualifiedName& name);

/// What get_nodeName, get_prefix, get_baseName and get_namespaceURI say; empty for none.
std::string NodeName(const xmlNode* node);
std::string_view NodePrefix(const xmlNode* node);
std::string_view NodeBaseName(const xmlNode* node);
std::string_view NodeNamespace(const xmlNode* node);

/// True if `node`, an element, attribute or declaration, has this qualified name.
bool HasName(const xmlNode* node, std::string_view qualifiedName);

}  // namespace velandoc::dom
