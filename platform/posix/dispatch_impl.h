// IDispatchImpl over a constant table of the interface's members.
#pragma once

#include "platform/posix/dispatch_call.h"
#include "resources/dispatch_tables.h"

namespace velandoc {

template <class I, const IID* iid, const GUID* libid, WORD major = 1, WORD minor = 0>
class IDispatchImpl : public I {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return index == 0 ? E_NOTIMPL : DISP_E_BADINDEX;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    return FindDispatchIds(DispatchTable<I>::kMembers, names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID lcid, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argErr) override {
    I* const object = this;
    return CallDispatchMember(object, DispatchTable<I>::kMembers, member, lcid, flags, params,
                              result, exception, argErr);
  }
};

}  // namespace velandoc
