// From UTF-16 text to a tree, by MSXML 6's rules.
#pragma once

#include <string>
#include <string_view>

#include "platform/posix/com/com.h"
#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

/// Elements may be nested this deep.
inline constexpr int kMaxDepth = 256;
/// So many namespace declarations may be in force at one place: libxml2 looks a prefix up one by
/// one.
inline constexpr int kMaxNamespacesInScope = 1024;

/// A text may hold this many different names (of elements, attributes, namespaces, targets):
/// libxml2's table of them does not grow enough for more.
inline constexpr int kMaxNames = 100'000;

/// A text may hold this many nodes, attributes aside: a query that looks at all of them gathers
/// them in a set, and libxml2's sets grow to ten million. Half of that is a tree of about a
/// gigabyte, and enough for a page of a million pairs.
inline constexpr int kMaxNodes = 5'000'000;

/// Why and where a text was refused. All zero and empty when it was not.
struct ParseFailure {
  LONG code = 0;
  std::string reason;  // UTF-8
  LONG line = 0;       // from 1
  LONG column = 0;     // from 1
  LONG offset = 0;     // in the UTF-8 form of the text
};

/// Parses `text` up to its first zero unit, as MSXML reads a BSTR. The encoding that an XML
/// declaration tells is ignored: the text is UTF-16. The declaration itself becomes the document's
/// first child, an instruction named "xml". White space between tags is stripped unless
/// `preserveWhiteSpace` or an xml:space attribute keeps it.
///
/// Null, with `failure` filled, for a text that is not well-formed and namespace-well-formed
/// XML 1.0, and besides for any DOCTYPE, nesting deeper than kMaxDepth, more than kMaxAttributes
/// attributes in a tag, more than kMaxNamespacesInScope declarations in force, more than kMaxNames
/// names, more than kMaxNodes nodes, an unpaired surrogate, and text of 2 GiB or more. Nothing is
/// ever loaded from outside, and there are no entities but XML's own five. Takes time in proportion
/// to the text, and memory of the text twice over besides the tree. Raises std::bad_alloc.
XmlDocOwner Parse(std::u16string_view text, bool preserveWhiteSpace, ParseFailure& failure);

}  // namespace velandoc::dom
