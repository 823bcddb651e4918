// New nodes.
#pragma once

#include <string>

#include "platform/posix/msxml/msxml.h"
#include "platform/posix/msxml/tree.h"

namespace velandoc::dom {

/// A node that hangs nowhere. `name` is a qualified name for elements, attributes and instructions
/// and is not looked at for the other kinds; `uri` counts for elements and attributes. A prefix
/// that comes without a namespace is dropped together with it, but for "xml", which always means
/// its own; an attribute "xmlns" or "xmlns:p" becomes a namespace declaration, whatever `uri` is.
/// E_FAIL for a name that XML does not allow, E_NOTIMPL for a document or fragment, E_INVALIDARG
/// for the kinds that cannot be made. `*node` is null on failure.
HRESULT CreateNode(Tree& tree, DOMNodeType type, const std::string& name, const std::string& uri,
                   IXMLDOMNode** node);

/// A copy of an element, attribute, text, section, comment or instruction that hangs nowhere yet
/// and belongs to the caller. Raises std::bad_alloc.
xmlNode* CopyNode(const xmlNode* node, bool deep);

/// The type code that createNode was given: a number, or a kind's name. NODE_INVALID for anything
/// else.
DOMNodeType NodeTypeOf(const VARIANT& type);

/// "element", "attribute" and so on.
const char* NodeTypeName(DOMNodeType type);

}  // namespace velandoc::dom
