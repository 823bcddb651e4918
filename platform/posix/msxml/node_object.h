// The virtual tables of nodes: each operation of IXMLDOMNode goes on to DomNode.
#pragma once

#include "platform/posix/msxml/dom_node.h"
#include "platform/posix/msxml/guard.h"
#include "platform/posix/msxml/undispatched.h"

namespace velandoc::dom {

/// Whether an object of the interface answers to `riid`, besides IUnknown, IDispatch and
/// IXMLDOMNode.
template <class Interface>
bool AnswersTo(REFIID riid);

template <class Interface>
class NodeObject : public Undispatched<Interface>, public DomNode {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (riid == IID_DomNode) {
      *object = static_cast<DomNode*>(this);
      return S_OK;
    }
    if (riid != IID_IUnknown && riid != IID_IDispatch && riid != IID_IXMLDOMNode &&
        !AnswersTo<Interface>(riid)) {
      return E_NOINTERFACE;
    }
    *object = static_cast<Interface*>(this);
    this->AddRef();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE get_nodeName(BSTR* name) override {
    return DomNode::get_nodeName(name);
  }
  HRESULT STDMETHODCALLTYPE get_nodeValue(VARIANT* value) override {
    return DomNode::get_nodeValue(value);
  }
  HRESULT STDMETHODCALLTYPE put_nodeValue(VARIANT value) override {
    return DomNode::put_nodeValue(value);
  }
  HRESULT STDMETHODCALLTYPE get_nodeType(DOMNodeType* type) override {
    return DomNode::get_nodeType(type);
  }
  HRESULT STDMETHODCALLTYPE get_parentNode(IXMLDOMNode** parent) override {
    return DomNode::get_parentNode(parent);
  }
  HRESULT STDMETHODCALLTYPE get_childNodes(IXMLDOMNodeList** children) override {
    return DomNode::get_childNodes(children);
  }
  HRESULT STDMETHODCALLTYPE get_firstChild(IXMLDOMNode** child) override {
    return DomNode::get_firstChild(child);
  }
  HRESULT STDMETHODCALLTYPE get_lastChild(IXMLDOMNode** child) override {
    return DomNode::get_lastChild(child);
  }
  HRESULT STDMETHODCALLTYPE get_previousSibling(IXMLDOMNode** sibling) override {
    return DomNode::get_previousSibling(sibling);
  }
  HRESULT STDMETHODCALLTYPE get_nextSibling(IXMLDOMNode** sibling) override {
    return DomNode::get_nextSibling(sibling);
  }
  HRESULT STDMETHODCALLTYPE get_attributes(IXMLDOMNamedNodeMap** attributes) override {
    return DomNode::get_attributes(attributes);
  }
  HRESULT STDMETHODCALLTYPE insertBefore(IXMLDOMNode* child, VARIANT before,
                                         IXMLDOMNode** inserted) override {
    return DomNode::insertBefore(child, before, inserted);
  }
  HRESULT STDMETHODCALLTYPE replaceChild(IXMLDOMNode* child, IXMLDOMNode* old,
                                         IXMLDOMNode** replaced) override {
    return DomNode::replaceChild(child, old, replaced);
  }
  HRESULT STDMETHODCALLTYPE removeChild(IXMLDOMNode* child, IXMLDOMNode** removed) override {
    return DomNode::removeChild(child, removed);
  }
  HRESULT STDMETHODCALLTYPE appendChild(IXMLDOMNode* child, IXMLDOMNode** appended) override {
    return DomNode::appendChild(child, appended);
  }
  HRESULT STDMETHODCALLTYPE hasChildNodes(VARIANT_BOOL* has) override {
    return DomNode::hasChildNodes(has);
  }
  HRESULT STDMETHODCALLTYPE get_ownerDocument(IXMLDOMDocument** document) override {
    return DomNode::get_ownerDocument(document);
  }
  HRESULT STDMETHODCALLTYPE cloneNode(VARIANT_BOOL deep, IXMLDOMNode** clone) override {
    return DomNode::cloneNode(deep, clone);
  }
  HRESULT STDMETHODCALLTYPE get_nodeTypeString(BSTR* type) override {
    return DomNode::get_nodeTypeString(type);
  }
  HRESULT STDMETHODCALLTYPE get_text(BSTR* text) override { return DomNode::get_text(text); }
  HRESULT STDMETHODCALLTYPE put_text(BSTR text) override { return DomNode::put_text(text); }
  HRESULT STDMETHODCALLTYPE get_specified(VARIANT_BOOL* specified) override {
    return Give(specified, VARIANT_TRUE);
  }
  HRESULT STDMETHODCALLTYPE get_definition(IXMLDOMNode** definition) override {
    return GiveNothing(definition);
  }
  HRESULT STDMETHODCALLTYPE get_nodeTypedValue(VARIANT* value) override {
    return DomNode::get_nodeTypedValue(value);
  }
  HRESULT STDMETHODCALLTYPE put_nodeTypedValue(VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_dataType(VARIANT* name) override {
    if (name == nullptr) return E_INVALIDARG;
    VariantInit(name);
    name->vt = VT_NULL;
    return S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE put_dataType(BSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_xml(BSTR* xml) override { return DomNode::get_xml(xml); }
  HRESULT STDMETHODCALLTYPE transformNode(IXMLDOMNode*, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE selectNodes(BSTR query, IXMLDOMNodeList** result) override {
    return DomNode::selectNodes(query, result);
  }
  HRESULT STDMETHODCALLTYPE selectSingleNode(BSTR query, IXMLDOMNode** result) override {
    return DomNode::selectSingleNode(query, result);
  }
  HRESULT STDMETHODCALLTYPE get_parsed(VARIANT_BOOL* parsed) override {
    return Give(parsed, VARIANT_TRUE);
  }
  HRESULT STDMETHODCALLTYPE get_namespaceURI(BSTR* uri) override {
    return DomNode::get_namespaceURI(uri);
  }
  HRESULT STDMETHODCALLTYPE get_prefix(BSTR* prefix) override {
    return DomNode::get_prefix(prefix);
  }
  HRESULT STDMETHODCALLTYPE get_baseName(BSTR* name) override {
    return DomNode::get_baseName(name);
  }
  HRESULT STDMETHODCALLTYPE transformNodeToObject(IXMLDOMNode*, VARIANT) override {
    return E_NOTIMPL;
  }

 protected:
  using DomNode::DomNode;
  ~NodeObject() = default;
};

}  // namespace velandoc::dom
