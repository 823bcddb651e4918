// The object map: one entry for each class that the library offers to COM.
#pragma once

#include <atomic>

#include "platform/atl/com_class_factory.h"

struct _ATL_OBJMAP_ENTRY {
  const CLSID* pclsid;
  /// Number of the REGISTRY resource that registers the class.
  WORD registryScript;
  /// Makes an object; null for a class that is registered but not created from outside.
  _ATL_CREATORFUNC pfnCreateInstance;
  /// The class factory once it was asked for; the module's.
  std::atomic<IUnknown*> pFactory{nullptr};
};

/// The entry of a class that derives from CComCoClass.
template <class Class>
_ATL_OBJMAP_ENTRY AtlObjectEntry(WORD registryScript) {
  return {&Class::GetObjectCLSID(), registryScript, &Class::CreateObject};
}
