// IDispatchImpl over the system's ITypeInfo.
#pragma once

#include <atomic>

#include "platform/windows/type_info.h"

namespace velandoc {

template <class I, const IID* iid, const GUID* libid, WORD major = 1, WORD minor = 0>
class IDispatchImpl : public I {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    return TypeInfo(info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    ComPtr<ITypeInfo> info;
    const HRESULT result = TypeInfo(info.Receive());
    return SUCCEEDED(result) ? info->GetIDsOfNames(names, count, ids) : result;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argErr) override {
    ComPtr<ITypeInfo> info;
    const HRESULT loaded = TypeInfo(info.Receive());
    if (FAILED(loaded)) return loaded;
    return info->Invoke(static_cast<I*>(this), member, flags, params, result, exception, argErr);
  }

 private:
  /// Loaded once. The reference is never given back: the end of the module is too late to call the
  /// system's library.
  static HRESULT TypeInfo(ITypeInfo** info) {
    static std::atomic<ITypeInfo*> cached{nullptr};
    ITypeInfo* known = cached.load();
    if (known == nullptr) {
      ComPtr<ITypeInfo> loaded;
      const HRESULT result = LoadTypeInfo(*libid, major, minor, *iid, loaded);
      if (FAILED(result)) return result;
      if (cached.compare_exchange_strong(known, loaded.Get())) known = loaded.Detach();
    }
    known->AddRef();
    *info = known;
    return S_OK;
  }
};

}  // namespace velandoc
