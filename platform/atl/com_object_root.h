// CComObjectRootEx: the reference count of an object, its outer object if it is aggregated, and the
// QueryInterface that walks a class's interface map.
#pragma once

#include "platform/atl/com_map.h"
#include "platform/atl/threading.h"

class CComObjectRootBase {
 public:
  /// Called between construction and the first use, with the object held; a failure makes creation
  /// fail with it.
  HRESULT FinalConstruct() { return S_OK; }
  /// Called before the destructor, while the object is whole.
  void FinalRelease() {}

  /// E_POINTER for a null `object`; otherwise `*object` is null on failure (E_NOINTERFACE).
  static HRESULT InternalQueryInterface(void* self, std::span<const _ATL_INTMAP_ENTRY> entries,
                                        REFIID riid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    const bool identity = IsEqualIID(riid, IID_IUnknown);
    for (const _ATL_INTMAP_ENTRY& entry : entries) {
      if (!identity && !IsEqualIID(riid, *entry.piid)) continue;
      IUnknown* found = entry.pFunc(self);
      found->AddRef();
      *object = found;
      return S_OK;
    }
    return E_NOINTERFACE;
  }

  // An aggregated object hands the calls on its interfaces to its outer object.
  ULONG OuterAddRef() { return m_pOuterUnknown->AddRef(); }
  ULONG OuterRelease() { return m_pOuterUnknown->Release(); }
  HRESULT OuterQueryInterface(REFIID riid, void** object) {
    return m_pOuterUnknown->QueryInterface(riid, object);
  }

  /// Not counted: the outer object outlives this one.
  IUnknown* m_pOuterUnknown = nullptr;

 protected:
  CComObjectRootBase() = default;
  ~CComObjectRootBase() = default;
};

template <class ThreadModel>
class CComObjectRootEx : public CComObjectRootBase {
 public:
  using _ThreadModel = ThreadModel;
  ULONG InternalAddRef() { return ThreadModel::Increment(m_dwRef); }
  ULONG InternalRelease() { return ThreadModel::Decrement(m_dwRef); }

 protected:
  ~CComObjectRootEx() = default;

 private:
  typename ThreadModel::Count m_dwRef{0};
};
