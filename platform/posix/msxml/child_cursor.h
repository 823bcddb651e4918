// The place where a live list was last read, so that the next item is one step away.
#pragma once

#include "platform/posix/msxml/tree.h"

namespace velandoc::dom {

/// `First()` and `Next(node)` of `Sequence` walk it.
template <class Sequence>
class ChildCursor {
 public:
  ChildCursor(Tree& tree, Sequence sequence) : m_tree(tree), m_sequence(sequence) {}

  /// Null outside the list.
  xmlNode* Item(LONG index) {
    Refresh();
    if (index < 0 || (m_length >= 0 && index >= m_length)) return nullptr;
    if (m_node == nullptr || index < m_index) {
      m_node = m_sequence.First();
      m_index = 0;
    }
    while (m_node != nullptr && m_index < index) {
      m_node = m_sequence.Next(m_node);
      ++m_index;
    }
    return m_node;
  }

  LONG Length() {
    Refresh();
    if (m_length < 0) {
      m_length = 0;
      for (xmlNode* node = m_sequence.First(); node != nullptr; node = m_sequence.Next(node))
        ++m_length;
    }
    return m_length;
  }

 private:
  void Refresh() {
    if (m_version == m_tree.Version()) return;
    m_version = m_tree.Version();
    m_node = nullptr;
    m_length = -1;
  }

  Tree& m_tree;
  Sequence m_sequence;
  unsigned long m_version = static_cast<unsigned long>(-1);
  xmlNode* m_node = nullptr;
  LONG m_index = 0;
  LONG m_length = -1;
};

}  // namespace velandoc::dom
