// Objects for attributes and for namespace declarations, which the DOM shows as attributes.
#pragma once

#include "platform/posix/msxml/contained_node.h"

namespace velandoc::dom {

class Attribute final : public ContainedNode<IXMLDOMAttribute> {
 public:
  Attribute(Tree& tree, xmlNode* node) : ContainedNode(tree, node) {}

  HRESULT STDMETHODCALLTYPE get_name(BSTR* name) override { return DomNode::get_nodeName(name); }
  HRESULT STDMETHODCALLTYPE get_value(VARIANT* value) override {
    return DomNode::get_nodeValue(value);
  }
  HRESULT STDMETHODCALLTYPE put_value(VARIANT value) override {
    return DomNode::put_nodeValue(value);
  }
};

/// `xmlns="..."` or `xmlns:p="..."`. One that hangs on no element belongs to its object. Setting
/// its value does not change the namespace of any node.
class Declaration final : public ContainedNode<IXMLDOMAttribute> {
 public:
  /// `element` has the declaration, or is null.
  Declaration(Tree& tree, xmlNs* declared, xmlNode* element)
      : ContainedNode(tree, AsNode(declared)), m_element(element) {}
  ~Declaration() override;

  HRESULT STDMETHODCALLTYPE get_name(BSTR* name) override { return DomNode::get_nodeName(name); }
  HRESULT STDMETHODCALLTYPE get_value(VARIANT* value) override {
    return DomNode::get_nodeValue(value);
  }
  HRESULT STDMETHODCALLTYPE put_value(VARIANT value) override {
    return DomNode::put_nodeValue(value);
  }

  xmlNode* Element() const { return m_element; }
  /// The declaration has been linked to an element, or unlinked from its own (null).
  void SetElement(xmlNode* element) { m_element = element; }
  /// Raises std::bad_alloc.
  void SetValue(const std::string& uri);

 private:
  xmlNode* m_element;
};

/// The object of a declaration that has one.
Declaration* ObjectOf(xmlNs* declared);

/// Takes a declaration off its element; the tree or its object keeps it.
void UnlinkDeclaration(Tree& tree, xmlNode* element, xmlNs* declared);
/// Puts a declaration that hangs nowhere behind the element's others, in place of one for the same
/// prefix.
void LinkDeclaration(Tree& tree, xmlNode* element, xmlNs* declared);

}  // namespace velandoc::dom
