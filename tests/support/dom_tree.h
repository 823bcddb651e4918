// A DOM tree as one line of text, so that trees can be compared in both homes, whose serializers
// differ.
#pragma once

#include <string>

#include "platform/msxml.h"
#include "platform/text.h"

namespace velandoc::testing {

/// The children of a node, in the form `name{namespace} attribute{namespace}="value" ( children )`:
/// braces only round a namespace that there is, parentheses only round children, a text as 'text'.
/// Namespace declarations are left out, and so are comments; the attributes stand in the order of
/// the map.
std::string ChildrenOf(IXMLDOMNode* node);
std::string TreeOf(IXMLDOMNode* node);

/// The same of a text; "no XML" if it does not parse.
std::string TreeOfText(const WideString& xml);

}  // namespace velandoc::testing
