// What the DOM's companions have in common: objects of one interface, not nodes.
#pragma once

#include "platform/posix/com/counted.h"
#include "platform/posix/msxml/undispatched.h"

namespace velandoc::dom {

/// Answers IUnknown, IDispatch and `iid`.
template <class Interface, const IID& iid>
class Companion : public Counted<ULONG, Undispatched<Interface>> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (riid != IID_IUnknown && riid != IID_IDispatch && riid != iid) return E_NOINTERFACE;
    *object = static_cast<Interface*>(this);
    this->AddRef();
    return S_OK;
  }
};

}  // namespace velandoc::dom
