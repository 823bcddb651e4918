// The attributes of one element as the DOM counts them: its namespace declarations first, then the
// others in the order of the text.
#pragma once

#include <string_view>

#include "platform/posix/msxml/tree.h"

namespace velandoc::dom {

/// Null if there is none of this qualified name; "xmlns" and "xmlns:p" name declarations.
xmlNode* FindAttribute(xmlNode* element, std::string_view qualifiedName);
xmlNode* FindAttribute(xmlNode* element, std::string_view baseName, std::string_view uri);

/// The first of the set, and the one behind another; null at the end.
xmlNode* FirstAttribute(xmlNode* element);
xmlNode* NextAttribute(xmlNode* element, xmlNode* attribute);

/// Puts `item` into the set, in place of the one with the same name and namespace. E_INVALIDARG for
/// anything but an attribute of this tree, E_FAIL for one that an element has already (itself
/// included).
HRESULT SetAttribute(Tree& tree, xmlNode* element, IXMLDOMNode* item);

/// Takes one out of the set and frees it unless somebody holds it.
void RemoveAttribute(Tree& tree, xmlNode* element, xmlNode* attribute);

}  // namespace velandoc::dom
