// The identity and the count of the DOM's companions: objects of one interface, not nodes.
#pragma once

#include "platform/posix/msxml/undispatched.h"

namespace velandoc::dom {

/// Begins with one reference, which is its maker's. Answers IUnknown, IDispatch and `iid`.
template <class Interface, const IID& iid>
class Counted : public Undispatched<Interface> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (riid != IID_IUnknown && riid != IID_IDispatch && riid != iid) return E_NOINTERFACE;
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

 protected:
  Counted() = default;
  virtual ~Counted() = default;

 private:
  ULONG m_references = 1;
};

}  // namespace velandoc::dom
