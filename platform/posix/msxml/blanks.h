// White space between tags.
#pragma once

#include <libxml/tree.h>

namespace velandoc::dom {

/// Takes the texts of nothing but white space out of a freshly parsed tree, and notes where they
/// were. CDATA sections stay, and so does white space that was written with character references or
/// stands where xml:space is "preserve".
void StripBlanks(xmlDoc* document);

}  // namespace velandoc::dom
