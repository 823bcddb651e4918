#include "platform/posix/msxml/element.h"

#include "platform/owners.h"
#include "platform/posix/msxml/attribute.h"
#include "platform/posix/msxml/attribute_set.h"
#include "platform/posix/msxml/node_factory.h"
#include "platform/posix/msxml/node_list.h"

namespace velandoc::dom {

template <>
bool AnswersTo<IXMLDOMElement>(REFIID riid) {
  return riid == IID_IXMLDOMElement;
}

HRESULT Element::getAttribute(BSTR name, VARIANT* value) {
  if (value == nullptr || name == nullptr) return E_INVALIDARG;
  VariantInit(value);
  return Guarded([&] {
    xmlNode* const found = FindAttribute(Get(), Encode(name));
    if (found == nullptr) {
      value->vt = VT_NULL;
      return S_FALSE;
    }
    ComPtr<IXMLDOMNode> attribute;
    CheckResult(GiveNode(GetTree(), found, attribute.Receive(), Get()));
    return attribute->get_nodeValue(value);
  });
}

HRESULT Element::setAttribute(BSTR name, VARIANT value) {
  if (name == nullptr) return E_INVALIDARG;
  return Guarded([&] {
    ComPtr<IXMLDOMNode> attribute;
    if (xmlNode* const found = FindAttribute(Get(), Encode(name))) {
      CheckResult(GiveNode(GetTree(), found, attribute.Receive(), Get()));
      return attribute->put_nodeValue(value);
    }
    CheckResult(CreateNode(GetTree(), NODE_ATTRIBUTE, Encode(name), {}, attribute.Receive()));
    CheckResult(attribute->put_nodeValue(value));
    return SetAttribute(GetTree(), Get(), attribute.Get());
  });
}

HRESULT Element::removeAttribute(BSTR name) {
  if (name == nullptr) return E_INVALIDARG;
  return Guarded([&] {
    xmlNode* const found = FindAttribute(Get(), Encode(name));
    if (found == nullptr) return S_FALSE;
    RemoveAttribute(GetTree(), Get(), found);
    return S_OK;
  });
}

HRESULT Element::getAttributeNode(BSTR name, IXMLDOMAttribute** attribute) {
  if (attribute == nullptr || name == nullptr) return E_INVALIDARG;
  *attribute = nullptr;
  return Guarded([&] {
    IXMLDOMNode* object = nullptr;
    const HRESULT result = GiveNode(GetTree(), FindAttribute(Get(), Encode(name)), &object, Get());
    *attribute = static_cast<IXMLDOMAttribute*>(object);
    return result;
  });
}

HRESULT Element::setAttributeNode(IXMLDOMAttribute* attribute, IXMLDOMAttribute** replaced) {
  if (replaced != nullptr) *replaced = nullptr;
  return Guarded([&] {
    const DomNode* const node = FindDomNode(attribute);
    if (node == nullptr) return E_INVALIDARG;
    ComPtr<IXMLDOMNode> old;
    BSTR name = nullptr;
    CheckResult(attribute->get_nodeName(&name));
    Bstr owner;
    *owner.Receive() = name;
    GiveNode(GetTree(), FindAttribute(Get(), Encode(name)), old.Receive(), Get());
    const HRESULT result = SetAttribute(GetTree(), Get(), attribute);
    if (SUCCEEDED(result) && replaced != nullptr) {
      *replaced = static_cast<IXMLDOMAttribute*>(old.Detach());
    }
    return result;
  });
}

HRESULT Element::removeAttributeNode(IXMLDOMAttribute* attribute, IXMLDOMAttribute** removed) {
  if (removed != nullptr) *removed = nullptr;
  return Guarded([&] {
    const DomNode* const node = FindDomNode(attribute);
    if (node == nullptr) return E_INVALIDARG;
    const xmlNode* const element = IsDeclaration(node->Get())
                                       ? ObjectOf(AsDeclaration(node->Get()))->Element()
                                       : node->Get()->parent;
    if (element != Get()) return E_INVALIDARG;
    RemoveAttribute(GetTree(), Get(), node->Get());
    if (removed != nullptr) {
      attribute->AddRef();
      *removed = attribute;
    }
    return S_OK;
  });
}

HRESULT Element::getElementsByTagName(BSTR name, IXMLDOMNodeList** result) {
  return FindByTagName(GetTree(), Get(), name, result);
}

}  // namespace velandoc::dom
