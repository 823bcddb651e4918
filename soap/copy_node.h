// Copies a tree from one document into another: a node of one document cannot be appended in
// another one.
#pragma once

#include "platform/msxml.h"

namespace velandoc {

/// Appends a copy of `source` and of all below it to `destination`, in the document of
/// `destination`. With `isRoot` the copy of `source` itself, and its attributes, come out in no
/// namespace; everything below keeps its own.
///
/// For fragments that hold elements only, or one text: text beside elements raises, a lone comment
/// or section is dropped. Raises `_com_error` for a failing DOM call; `destination` is then as it
/// was.
void CopyNode(IXMLDOMNode* destination, IXMLDOMNode* source, bool isRoot);

}  // namespace velandoc
