// A libxml2 tree, its pieces that hang on no parent, and how long all of it lives.
//
// A document owns one tree, and gets a new one with each load. Whoever holds a pointer into a tree
// besides (a node object, a list) uses it: the uses together hold one reference to the document
// object, and keep a tree that the document has given up. A piece without a parent is freed when
// the last object for any of its nodes is gone and no list of found nodes is left, at the latest
// with the tree.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/posix/msxml/msxml.h"
#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

/// Prefix and namespace name, both UTF-8, as the property SelectionNamespaces binds them.
using SelectionNamespaces = std::vector<std::pair<std::string, std::string>>;

class Tree {
 public:
  /// `document` stays uncounted until the tree is used.
  Tree(XmlDocOwner doc, IXMLDOMDocument2* document) : m_doc(std::move(doc)), m_document(document) {}
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  xmlDoc* Doc() const { return m_doc.get(); }
  IXMLDOMDocument2* Document() const { return m_document; }
  /// False once the document has loaded another text.
  bool IsCurrent() const { return m_isCurrent; }

  void Use();
  void EndUse();
  /// By the document, once, in place of `delete`.
  void GiveUp();

  /// Grows with each change of structure, so that lists know when their cursor is stale.
  unsigned long Version() const { return m_version; }
  void NoteChange() { ++m_version; }

  /// A node, attribute, or subtree without a parent, just made or just unlinked. Raises
  /// std::bad_alloc.
  void AddOrphan(xmlNode* node) { m_orphans.insert(node); }
  /// The node is about to get a parent.
  void AdoptOrphan(xmlNode* node) { m_orphans.erase(node); }
  /// An unlinked node that the tree has no use for: freed at once if nobody holds a part of it.
  void Discard(xmlNode* node);
  /// The object for `node`, which had none but this, is gone.
  void NoteReleased(xmlNode* node);

  /// A namespace that lives as long as the tree; an empty `prefix` is the default one. Raises
  /// std::bad_alloc.
  xmlNs* Namespace(const std::string& prefix, const std::string& uri);
  /// Keeps an unlinked declaration that nodes may still refer to.
  void KeepNamespace(xmlNs* declaration);

  /// The namespaces of XPath; takes effect with the next query.
  void SetSelectionNamespaces(const SelectionNamespaces* namespaces);
  /// Made when it is first asked for; it reports no errors but by results. Raises std::bad_alloc.
  xmlXPathContext* XPathContext();
  /// The next query gets a new context.
  void DropXPathContext() { m_xpath.reset(); }

  /// Lists of found nodes point at nodes that have no objects: while there is one, no node is
  /// freed.
  void AddFoundList() { ++m_foundLists; }
  void RemoveFoundList() { --m_foundLists; }

 private:
  ~Tree();
  void Free(xmlNode* node);

  XmlDocOwner m_doc;
  IXMLDOMDocument2* m_document;
  bool m_isCurrent = true;
  unsigned long m_uses = 0;
  unsigned long m_foundLists = 0;
  unsigned long m_version = 0;
  std::unordered_set<xmlNode*> m_orphans;
  xmlNs* m_keptNamespaces = nullptr;
  const SelectionNamespaces* m_selectionNamespaces = nullptr;
  XPathContextOwner m_xpath;
};

/// One use of a tree.
class TreeUse {
 public:
  explicit TreeUse(Tree& tree) : m_tree(tree) { m_tree.Use(); }
  ~TreeUse() { m_tree.EndUse(); }
  TreeUse(const TreeUse&) = delete;
  TreeUse& operator=(const TreeUse&) = delete;

  Tree& Get() const { return m_tree; }

 private:
  Tree& m_tree;
};

}  // namespace velandoc::dom
