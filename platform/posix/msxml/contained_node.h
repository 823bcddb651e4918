// Objects for the nodes inside a document: one for each node, from its first request to its last
// release.
#pragma once

#include "platform/posix/com/counted.h"
#include "platform/posix/msxml/node_object.h"

namespace velandoc::dom {

/// Where a node keeps its object.
inline void*& ObjectSlot(xmlNode* node) {
  return IsDeclaration(node) ? AsDeclaration(node)->_private : node->_private;
}

template <class Interface>
class ContainedNode : public Counted<ULONG, NodeObject<Interface>> {
 protected:
  /// Holds one reference, the caller's.
  ContainedNode(Tree& tree, xmlNode* node) : ContainedNode::Counted(tree, node), m_use(tree) {
    ObjectSlot(node) = static_cast<IXMLDOMNode*>(this);
  }
  ~ContainedNode() override {
    xmlNode* const node = this->Get();
    ObjectSlot(node) = nullptr;
    if (!IsDeclaration(node)) m_use.Get().NoteReleased(node);
  }

 private:
  TreeUse m_use;
};

}  // namespace velandoc::dom
