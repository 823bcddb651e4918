// XPath queries.
#pragma once

#include <string>
#include <vector>

#include "platform/posix/msxml/tree.h"

namespace velandoc::dom {

/// All nodes that `query` finds from `context`, in document order. E_FAIL if it is no XPath
/// expression, uses a prefix that is not bound, or does not give nodes. Raises std::bad_alloc.
HRESULT Select(Tree& tree, xmlNode* context, const std::string& query,
               std::vector<xmlNode*>& found);

/// Reads "xmlns:a='...' xmlns:b=\"...\"": declarations as in a start tag, between white space.
/// False for anything else; `namespaces` is then unchanged.
bool ReadSelectionNamespaces(const std::string& text, SelectionNamespaces& namespaces);

}  // namespace velandoc::dom
