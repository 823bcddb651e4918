// Objects for the nodes inside a document: one for each node, from its first request to its last
// release.
#pragma once

#include "platform/posix/com/counted.h"
#include "platform/posix/msxml/node_object.h"
#include "platform/posix/msxml/node_slot.h"

namespace velandoc::dom {

template <class Interface>
class ContainedNode : public Counted<ULONG, NodeObject<Interface>> {
 protected:
  /// Holds one reference, the caller's.
  ContainedNode(Tree& tree, xmlNode* node) : ContainedNode::Counted(tree, node), m_use(tree) {
    SetObject(node, static_cast<IXMLDOMNode*>(this));
  }
  ~ContainedNode() override {
    xmlNode* const node = this->Get();
    SetObject(node, nullptr);
    if (!IsDeclaration(node)) m_use.Get().NoteReleased(node);
  }

 private:
  TreeUse m_use;
};

}  // namespace velandoc::dom
