// The most derived classes that make a COM object of an implementation class: alone (CComObject),
// inside another object (CComAggObject), either way (CComPolyObject), or kept by the module
// (CComObjectCached); and their creators.
//
// Every living object but a cached one counts as a lock of the module. All are deleted by their
// last Release.
#pragma once

#include <new>

#include "platform/atl/com_object_root.h"
#include "platform/atl/module_lock.h"

/// While an object is set up it holds a reference to itself: what FinalConstruct hands out and gets
/// back must not delete it.
template <class Object>
HRESULT FinishConstruction(Object& object) {
  object.InternalAddRef();
  const HRESULT result = object.FinalConstruct();
  object.InternalRelease();
  return result;
}

template <class Base>
class CComObject final : public Base {
 public:
  explicit CComObject(IUnknown* = nullptr) { AtlModuleLock(); }
  // The count is checked by nobody any more, but a FinalRelease that hands out the object must not
  // delete it again.
  ~CComObject() {
    this->InternalAddRef();
    this->FinalRelease();
    AtlModuleUnlock();
  }

  STDMETHODIMP_(ULONG) AddRef() override { return this->InternalAddRef(); }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG count = this->InternalRelease();
    if (count == 0) delete this;
    return count;
  }
  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    return Base::InternalQueryInterface(static_cast<Base*>(this), Base::_GetEntries(), riid,
                                        object);
  }

  /// A new object with no reference yet. E_POINTER, E_OUTOFMEMORY, or what FinalConstruct said.
  static HRESULT CreateInstance(CComObject** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    auto* made = new (std::nothrow) CComObject;
    if (made == nullptr) return E_OUTOFMEMORY;
    const HRESULT result = FinishConstruction(*made);
    if (FAILED(result)) {
      delete made;
    } else {
      *object = made;
    }
    return result;
  }
};

/// The implementation inside an aggregate: its interfaces' calls go to the outer object.
template <class Base>
class CComContainedObject final : public Base {
 public:
  explicit CComContainedObject(IUnknown* outer) { this->m_pOuterUnknown = outer; }

  STDMETHODIMP_(ULONG) AddRef() override { return this->OuterAddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return this->OuterRelease(); }
  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    return this->OuterQueryInterface(riid, object);
  }
};

/// What aggregated and lone objects with a separate identity share: the object's own IUnknown,
/// which alone counts the references and answers for the interfaces inside.
template <class Contained>
class CComSeparateIdentity : public IUnknown, public CComObjectRootEx<CComMultiThreadModel> {
 public:
  CComSeparateIdentity(const CComSeparateIdentity&) = delete;
  CComSeparateIdentity& operator=(const CComSeparateIdentity&) = delete;

  HRESULT FinalConstruct() { return m_contained.FinalConstruct(); }

  STDMETHODIMP_(ULONG) AddRef() override { return InternalAddRef(); }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG count = InternalRelease();
    if (count == 0) delete this;
    return count;
  }
  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown)) {
      *object = static_cast<IUnknown*>(this);
      AddRef();
      return S_OK;
    }
    return InternalQueryInterface(static_cast<typename Contained::_ComMapClass*>(&m_contained),
                                  Contained::_GetEntries(), riid, object);
  }

 protected:
  explicit CComSeparateIdentity(IUnknown* outer) : m_contained(outer != nullptr ? outer : this) {
    AtlModuleLock();
  }
  virtual ~CComSeparateIdentity() {
    InternalAddRef();
    m_contained.FinalRelease();
    AtlModuleUnlock();
  }

 private:
  Contained m_contained;
};

template <class Base>
class CComAggObject final : public CComSeparateIdentity<CComContainedObject<Base>> {
 public:
  explicit CComAggObject(IUnknown* outer)
      : CComSeparateIdentity<CComContainedObject<Base>>(outer) {}
};

/// One class for both ways, at the price of the separate identity for a lone object too: with no
/// outer object it is its own.
template <class Base>
class CComPolyObject final : public CComSeparateIdentity<CComContainedObject<Base>> {
 public:
  explicit CComPolyObject(IUnknown* outer)
      : CComSeparateIdentity<CComContainedObject<Base>>(outer) {}
};

/// An object that the module keeps for itself: the module's own reference is no lock, every further
/// one is.
template <class Base>
class CComObjectCached final : public Base {
 public:
  explicit CComObjectCached(IUnknown* = nullptr) {}
  ~CComObjectCached() {
    this->InternalAddRef();
    this->FinalRelease();
  }

  STDMETHODIMP_(ULONG) AddRef() override {
    const ULONG count = this->InternalAddRef();
    if (count == 2) AtlModuleLock();
    return count;
  }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG count = this->InternalRelease();
    if (count == 0) {
      delete this;
    } else if (count == 1) {
      AtlModuleUnlock();
    }
    return count;
  }
  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    return Base::InternalQueryInterface(static_cast<Base*>(this), Base::_GetEntries(), riid,
                                        object);
  }
};

/// Makes an object and asks it for its first interface.
template <class Object>
struct CComCreator {
  static HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    auto* made = new (std::nothrow) Object(outer);
    if (made == nullptr) return E_OUTOFMEMORY;
    HRESULT result = FinishConstruction(*made);
    if (SUCCEEDED(result)) result = made->QueryInterface(riid, object);
    if (FAILED(result)) {
      *object = nullptr;
      delete made;
    }
    return result;
  }
};

/// The first creator for an object of its own, the second for one inside another.
template <class Alone, class Inside>
struct CComCreator2 {
  static HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) {
    return outer == nullptr ? Alone::CreateInstance(nullptr, riid, object)
                            : Inside::CreateInstance(outer, riid, object);
  }
};
