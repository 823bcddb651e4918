// A bound on the attributes of one start tag.
#pragma once

#include <cstddef>
#include <string_view>

namespace velandoc::dom {

/// libxml2 compares every attribute of a start tag with all in front of it, so the time of one tag
/// grows with the square of their number; this many keep it at the cost of reading their text.
inline constexpr std::size_t kMaxAttributes = 2048;

/// True if some start tag of `xml` has more than kMaxAttributes attributes (declarations of
/// namespaces count). Takes any bytes, in one pass.
bool HasOversizedStartTag(std::string_view xml);

}  // namespace velandoc::dom
