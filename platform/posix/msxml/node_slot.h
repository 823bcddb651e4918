// What a node's `_private` holds, the one field that libxml2 leaves to the application: the node's
// object, and notes about white space that was stripped from the tree.
//
// The notes lie in the two lowest bits, which are zero in every pointer to an object. Attributes
// and namespace declarations have no notes.
#pragma once

#include <cstdint>

#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

enum BlankNote : std::uintptr_t {
  kBlankBefore = 1,  // white space was stripped between this node and the one before
  kBlankAtEnd = 2,   // white space was stripped in front of this element's end tag
};
inline constexpr std::uintptr_t kAllNotes = kBlankBefore | kBlankAtEnd;

namespace detail {
inline void*& Slot(xmlNode* node) {
  return IsDeclaration(node) ? AsDeclaration(node)->_private : node->_private;
}
inline std::uintptr_t Bits(const void* slot) { return reinterpret_cast<std::uintptr_t>(slot); }
inline void* Pointer(std::uintptr_t bits) { return reinterpret_cast<void*>(bits); }
}  // namespace detail

/// The object of a node, attribute or declaration, as it was set; null for none.
inline void* HeldObject(xmlNode* node) {
  return detail::Pointer(detail::Bits(detail::Slot(node)) & ~kAllNotes);
}
/// Leaves the notes as they are.
inline void SetObject(xmlNode* node, void* object) {
  void*& slot = detail::Slot(node);
  slot = detail::Pointer(detail::Bits(object) | (detail::Bits(slot) & kAllNotes));
}

inline bool HasNote(const xmlNode* node, BlankNote note) {
  return (detail::Bits(node->_private) & note) != 0;
}
inline void AddNote(xmlNode* node, BlankNote note) {
  node->_private = detail::Pointer(detail::Bits(node->_private) | note);
}
inline void DropNote(xmlNode* node, BlankNote note) {
  node->_private = detail::Pointer(detail::Bits(node->_private) & ~std::uintptr_t{note});
}
/// For a new node that has neither object nor notes.
inline void CopyNotes(xmlNode* to, const xmlNode* from) {
  to->_private = detail::Pointer(detail::Bits(from->_private) & kAllNotes);
}

}  // namespace velandoc::dom
