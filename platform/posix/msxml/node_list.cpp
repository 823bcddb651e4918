#include "platform/posix/msxml/node_list.h"

#include "platform/owners.h"
#include "platform/posix/msxml/child_cursor.h"
#include "platform/posix/msxml/guard.h"
#include "platform/posix/msxml/node_name.h"
#include "platform/posix/msxml/sequence.h"

namespace velandoc::dom {
namespace {

struct Children {
  xmlNode* parent;
  xmlNode* First() const { return parent->children; }
  static xmlNode* Next(const xmlNode* node) { return node->next; }
};

/// The parts of a list that do not depend on where its items come from.
class NodeList : public Sequence<IXMLDOMNodeList, IID_IXMLDOMNodeList> {
 public:
  HRESULT STDMETHODCALLTYPE get_item(LONG index, IXMLDOMNode** item) override {
    if (item == nullptr) return E_INVALIDARG;
    return GiveNode(m_use.Get(), Item(index), item);
  }
  HRESULT STDMETHODCALLTYPE get_length(LONG* length) override { return Give(length, Length()); }

 protected:
  explicit NodeList(Tree& tree) : m_use(tree) {}
  virtual xmlNode* Item(LONG index) = 0;
  virtual LONG Length() = 0;

  TreeUse m_use;
};

class ChildList final : public NodeList {
 public:
  ChildList(Tree& tree, xmlNode* parent, IXMLDOMNode* object)
      : NodeList(tree), m_parent(object), m_cursor(tree, {parent}) {}

 private:
  xmlNode* Item(LONG index) override { return m_cursor.Item(index); }
  LONG Length() override { return m_cursor.Length(); }

  ComPtr<IXMLDOMNode> m_parent;
  ChildCursor<Children> m_cursor;
};

class FoundList final : public NodeList {
 public:
  FoundList(Tree& tree, std::vector<xmlNode*> nodes) : NodeList(tree), m_nodes(std::move(nodes)) {
    tree.AddFoundList();
  }
  ~FoundList() override { m_use.Get().RemoveFoundList(); }

 private:
  xmlNode* Item(LONG index) override {
    return index >= 0 && index < Length() ? m_nodes[static_cast<std::size_t>(index)] : nullptr;
  }
  LONG Length() override { return static_cast<LONG>(m_nodes.size()); }

  std::vector<xmlNode*> m_nodes;
};

}  // namespace

HRESULT GiveChildren(Tree& tree, xmlNode* parent, IXMLDOMNode* parentObject,
                     IXMLDOMNodeList** list) {
  if (list == nullptr) return E_INVALIDARG;
  *list = nullptr;
  return Guarded([&] {
    *list = new ChildList(tree, parent, parentObject);
    return S_OK;
  });
}

HRESULT GiveFound(Tree& tree, std::vector<xmlNode*> nodes, IXMLDOMNodeList** list) {
  if (list == nullptr) return E_INVALIDARG;
  *list = nullptr;
  return Guarded([&] {
    *list = new FoundList(tree, std::move(nodes));
    return S_OK;
  });
}

HRESULT FindByTagName(Tree& tree, xmlNode* root, BSTR name, IXMLDOMNodeList** list) {
  if (list == nullptr || name == nullptr) return E_INVALIDARG;
  *list = nullptr;
  return Guarded([&] {
    const std::string wanted = Encode(name);
    std::vector<xmlNode*> found;
    for (xmlNode* node = NextInSubtree(root, root); node != nullptr;
         node = NextInSubtree(node, root)) {
      if (node->type == XML_ELEMENT_NODE && (wanted == "*" || HasName(node, wanted))) {
        found.push_back(node);
      }
    }
    return GiveFound(tree, std::move(found), list);
  });
}

}  // namespace velandoc::dom
