// White space between tags, which never becomes part of the tree.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velandoc::dom {

/// Decides about each piece of text while a parser reports it. Text of nothing but white space
/// between two tags is held back and dropped; CDATA sections are tags here. White space that was
/// written with character references, or stands where xml:space is "preserve", is text like any
/// other. All operations may raise std::bad_alloc.
class BlankFilter {
 public:
  explicit BlankFilter(bool keepsAll) : m_keepsAll(keepsAll) {}

  /// True if `text` is to go into the tree now, and `held`, if not empty, in front of it.
  bool Pass(std::string_view text, bool isReference, std::string& held);

  /// Any other markup than text begins or ends. True if white space was dropped in front of it.
  bool EndText();

  enum class Space { kInherited, kDefault, kPreserve };
  /// Behind EndText for a start tag, whose xml:space is told; and before that for an end tag.
  void BeginElement(Space space);
  void EndElement();

 private:
  const bool m_keepsAll;
  bool m_isInText = false;  // the text that is read has passed already
  std::string m_held;
  std::vector<bool> m_preserving;  // of each open element
};

}  // namespace velandoc::dom
