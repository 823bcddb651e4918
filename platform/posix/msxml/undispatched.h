// IDispatch of the DOM's objects: present in the virtual table, and without members.
#pragma once

#include "platform/posix/com/com.h"

namespace velandoc::dom {

template <class Interface>
class Undispatched : public Interface {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_INVALIDARG;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info != nullptr) *info = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID,
                                          DISPID* ids) override {
    for (UINT i = 0; ids != nullptr && i < count; ++i) ids[i] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

 protected:
  Undispatched() = default;
  Undispatched(const Undispatched&) = delete;
  Undispatched& operator=(const Undispatched&) = delete;
  ~Undispatched() = default;
};

}  // namespace velandoc::dom
