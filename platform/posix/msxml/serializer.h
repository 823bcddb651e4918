// What get_xml writes.
#pragma once

#include <string>

#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

/// The UTF-8 text of a node and all below it. Read again, it gives every element and attribute the
/// namespace that it has in the tree, whatever declarations the tree holds: those that an element
/// or attribute needs and that are not in force are written, `xmlns=""` among them, and those that
/// contradict the element's own name are left out. Of an XML declaration the encoding is left out,
/// as the text is not in it. The children of a document end with a line break (CR LF) each. An
/// attribute or a declaration is written as name="value". Raises std::bad_alloc.
std::string Serialize(xmlNode* node);

}  // namespace velandoc::dom
