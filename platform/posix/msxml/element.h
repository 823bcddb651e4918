// Objects for elements.
#pragma once

#include "platform/posix/msxml/contained_node.h"

namespace velandoc::dom {

/// normalize is E_NOTIMPL. The list of getElementsByTagName is fixed when it is made.
class Element final : public ContainedNode<IXMLDOMElement> {
 public:
  Element(Tree& tree, xmlNode* node) : ContainedNode(tree, node) {}

  HRESULT STDMETHODCALLTYPE get_tagName(BSTR* name) override { return DomNode::get_nodeName(name); }
  /// S_FALSE and VT_NULL if there is none.
  HRESULT STDMETHODCALLTYPE getAttribute(BSTR name, VARIANT* value) override;
  HRESULT STDMETHODCALLTYPE setAttribute(BSTR name, VARIANT value) override;
  HRESULT STDMETHODCALLTYPE removeAttribute(BSTR name) override;
  HRESULT STDMETHODCALLTYPE getAttributeNode(BSTR name, IXMLDOMAttribute** attribute) override;
  HRESULT STDMETHODCALLTYPE setAttributeNode(IXMLDOMAttribute* attribute,
                                             IXMLDOMAttribute** replaced) override;
  HRESULT STDMETHODCALLTYPE removeAttributeNode(IXMLDOMAttribute* attribute,
                                                IXMLDOMAttribute** removed) override;
  HRESULT STDMETHODCALLTYPE getElementsByTagName(BSTR name, IXMLDOMNodeList** result) override;
  HRESULT STDMETHODCALLTYPE normalize() override { return E_NOTIMPL; }
};

}  // namespace velandoc::dom
