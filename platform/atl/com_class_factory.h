// CComClassFactory, the class object of every coclass in the object map, and CComCoClass, which
// ties a class to it.
#pragma once

#include "platform/atl/com_object.h"

using _ATL_CREATORFUNC = HRESULT (*)(IUnknown* outer, REFIID riid, void** object);

class CComClassFactory : public IClassFactory, public CComObjectRootEx<CComMultiThreadModel> {
 public:
  BEGIN_COM_MAP(CComClassFactory)
  COM_INTERFACE_ENTRY(IClassFactory)
  END_COM_MAP()

  /// Before the first CreateInstance.
  void SetCreator(_ATL_CREATORFUNC creator) { m_creator = creator; }

  /// An aggregated object is asked for IUnknown alone, the one interface that is its own:
  /// CLASS_E_NOAGGREGATION else.
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr && !IsEqualIID(riid, IID_IUnknown)) return CLASS_E_NOAGGREGATION;
    return m_creator(outer, riid, object);
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    if (lock) {
      AtlModuleLock();
    } else {
      AtlModuleUnlock();
    }
    return S_OK;
  }

 protected:
  CComClassFactory() = default;
  virtual ~CComClassFactory() = default;

 private:
  _ATL_CREATORFUNC m_creator = nullptr;
};

/// Base of every class that the object map offers: aggregatable, with the standard class factory.
template <class Class, const CLSID* clsid>
class CComCoClass {
 public:
  static const CLSID& GetObjectCLSID() { return *clsid; }
  /// For the object map: makes an object, inside `outer` if that is not null.
  static HRESULT CreateObject(IUnknown* outer, REFIID riid, void** object) {
    return CComCreator2<CComCreator<CComObject<Class>>,
                        CComCreator<CComAggObject<Class>>>::CreateInstance(outer, riid, object);
  }

 protected:
  ~CComCoClass() = default;
};
