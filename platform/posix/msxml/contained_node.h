// Objects for the nodes inside a document: one for each node, from its first request to its last
// release.
#pragma once

#include "platform/posix/msxml/node_object.h"

namespace velandoc::dom {

/// Where a node keeps its object.
inline void*& ObjectSlot(xmlNode* node) {
  return IsDeclaration(node) ? AsDeclaration(node)->_private : node->_private;
}

template <class Interface>
class ContainedNode : public NodeObject<Interface> {
 public:
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

 protected:
  /// Holds one reference, the caller's.
  ContainedNode(Tree& tree, xmlNode* node) : NodeObject<Interface>(tree, node), m_use(tree) {
    ObjectSlot(node) = static_cast<IXMLDOMNode*>(this);
  }
  virtual ~ContainedNode() {
    xmlNode* const node = this->Get();
    ObjectSlot(node) = nullptr;
    if (!IsDeclaration(node)) m_use.Get().NoteReleased(node);
  }

 private:
  ULONG m_references = 1;
  TreeUse m_use;
};

}  // namespace velandoc::dom
