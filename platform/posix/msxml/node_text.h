// What get_text reads.
#pragma once

#include <string_view>

#include "platform/posix/com/com.h"
#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

/// The value of an attribute as one piece; `storage` holds it if it is in several.
std::string_view AttributeValue(const xmlAttr* attribute, std::string& storage);

/// A new BSTR. For an element or a document: the texts and CDATA sections below it, one blank where
/// white space between tags was stripped, and no white space at either end, unless xml:space or
/// `preserveWhiteSpace` keeps it. A text node by itself is trimmed likewise. For an attribute, a
/// comment or an instruction: its value as it stands. Raises std::bad_alloc.
BSTR GetNodeText(xmlNode* node, bool preserveWhiteSpace);

}  // namespace velandoc::dom
