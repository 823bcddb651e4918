// The live map of an element's attributes.
#pragma once

#include "platform/posix/msxml/dom_node.h"

namespace velandoc::dom {

/// Declarations of namespaces come first, then the other attributes in the order of the text.
/// `object` is the element's; the map keeps it.
HRESULT GiveAttributes(Tree& tree, xmlNode* element, IXMLDOMNode* object,
                       IXMLDOMNamedNodeMap** map);

}  // namespace velandoc::dom
