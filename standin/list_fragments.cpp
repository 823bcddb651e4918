#include "standin/list_fragments.h"

#include <algorithm>

namespace velandoc::standin {
namespace {

bool IsAllIn(const XmlElement& element, std::string_view wanted) {
  return element.elementNamespace == wanted &&
         std::all_of(element.children.begin(), element.children.end(),
                     [wanted](const XmlElement& child) { return IsAllIn(child, wanted); });
}

// Exactly this name, number of children and, if there is one, attribute with its value.
bool Is(const XmlElement& element, std::string_view name, std::size_t children,
        std::string_view attribute = {}, std::string_view value = {}) {
  if (element.name != name || element.children.size() != children) return false;
  if (attribute.empty()) return element.attributes.empty();
  const std::string* found = element.Attribute(attribute);
  return element.attributes.size() == 1 && found && *found == value;
}

}  // namespace

const XmlElement* FragmentRoot(const XmlElement& parameter, std::string_view name) {
  if (parameter.children.size() != 1 || !parameter.attributes.empty()) return nullptr;
  const XmlElement& root = parameter.children.front();
  const bool isRight =
      root.name == name && (IsAllIn(root, {}) || IsAllIn(root, parameter.elementNamespace));
  return isRight ? &root : nullptr;
}

std::optional<std::string> ReadUniqueIdQuery(const XmlElement& query) {
  const XmlElement* root = FragmentRoot(query, "Query");
  if (!root || !Is(*root, "Query", 1)) return std::nullopt;
  const XmlElement& where = root->children[0];
  if (!Is(where, "Where", 1) || !Is(where.children[0], "Eq", 2)) return std::nullopt;
  const XmlElement& column = where.children[0].children[0];
  const XmlElement& value = where.children[0].children[1];
  if (!Is(column, "FieldRef", 0, "Name", "UniqueId") || !Is(value, "Value", 0, "Type", "string"))
    return std::nullopt;
  return value.text;
}

std::optional<bool> ReadScope(const XmlElement* options) {
  if (!options) return false;
  const XmlElement* root = FragmentRoot(*options, "QueryOptions");
  if (!root || !root->attributes.empty()) return std::nullopt;
  if (root->children.empty()) return false;
  if (!Is(*root, "QueryOptions", 1) ||
      !Is(root->children[0], "ViewAttributes", 0, "Scope", "Recursive"))
    return std::nullopt;
  return true;
}

std::optional<std::vector<std::string>> ReadViewFields(const XmlElement& viewFields) {
  const XmlElement* root = FragmentRoot(viewFields, "ViewFields");
  if (!root || !root->attributes.empty()) return std::nullopt;
  std::vector<std::string> names;
  for (const XmlElement& column : root->children) {
    const std::string* name = column.Attribute("Name");
    if (column.name != "FieldRef" || !name || column.attributes.size() != 1 ||
        !column.children.empty())
      return std::nullopt;
    names.push_back(*name);
  }
  return names;
}

}  // namespace velandoc::standin
