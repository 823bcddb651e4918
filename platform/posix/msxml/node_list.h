// Lists of nodes: an element's children, and what a query found. Reading one item after the other
// takes constant time for each.
#pragma once

#include <string>
#include <vector>

#include "platform/posix/msxml/dom_node.h"

namespace velandoc::dom {

/// A live list of the children of `parent`, which it keeps by its object.
HRESULT GiveChildren(Tree& tree, xmlNode* parent, IXMLDOMNode* parentObject,
                     IXMLDOMNodeList** list);

/// A fixed list, in the order given.
HRESULT GiveFound(Tree& tree, std::vector<xmlNode*> nodes, IXMLDOMNodeList** list);

/// A fixed list of the elements below `root` that have this qualified name, or of all if it is "*".
HRESULT FindByTagName(Tree& tree, xmlNode* root, BSTR name, IXMLDOMNodeList** list);

}  // namespace velandoc::dom
