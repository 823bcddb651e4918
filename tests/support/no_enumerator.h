// The enumerator of the DOM's lists and maps for the tests' own lists. It is never called and
// returns E_NOTIMPL.
#pragma once

#include "platform/msxml.h"

namespace velandoc::testing {

/// `Interface` is IXMLDOMNodeList or IXMLDOMNamedNodeMap. Some headers call the method
/// get__newEnum, others _newEnum.
template <class Interface>
class NoEnumerator : public Interface {
 public:
  HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown**) override { return E_NOTIMPL; }
};

template <class Interface>
requires requires { &Interface::_newEnum; }
class NoEnumerator<Interface> : public Interface {
 public:
  HRESULT STDMETHODCALLTYPE _newEnum(IUnknown**) override { return E_NOTIMPL; }
};

}  // namespace velandoc::testing
