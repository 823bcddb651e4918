// What the DOM's lists and maps have in common: they are gone through item by item.
#pragma once

#include "platform/posix/msxml/companion.h"
#include "platform/posix/msxml/msxml.h"

namespace velandoc::dom {

/// `Interface` is IXMLDOMNodeList or IXMLDOMNamedNodeMap, whose get_item the derived class has.
template <class Interface, const IID& iid>
class Sequence : public Companion<Interface, iid> {
 public:
  HRESULT STDMETHODCALLTYPE nextNode(IXMLDOMNode** item) override {
    const HRESULT result = this->get_item(m_next, item);
    if (result == S_OK) ++m_next;
    return result;
  }
  HRESULT STDMETHODCALLTYPE reset() override {
    m_next = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown** enumerator) override {
    if (enumerator != nullptr) *enumerator = nullptr;
    return E_NOTIMPL;
  }

 private:
  LONG m_next = 0;
};

}  // namespace velandoc::dom
