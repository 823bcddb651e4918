// The interfaces that a class answers for in QueryInterface.
//
//   BEGIN_COM_MAP(CServerCheck)
//     COM_INTERFACE_ENTRY(IServerCheck)
//     COM_INTERFACE_ENTRY(IDispatch)
//   END_COM_MAP()
//
// The first entry is also the object's identity (its IUnknown). An entry's id is IID_<interface>.
#pragma once

#include <span>

#include "platform/com.h"

struct _ATL_INTMAP_ENTRY {
  const IID* piid;
  /// The interface within the object at `object`, whose class is the map's. No reference is added.
  IUnknown* (*pFunc)(void* object);
};

// The entries are functions, not the usual offsets: those need a cast of an object that isn't
// there.
#define BEGIN_COM_MAP(Class)                                               \
 public:                                                                   \
  using _ComMapClass = Class;                                              \
  IUnknown* _GetRawUnknown() { return _GetEntries().front().pFunc(this); } \
  static std::span<const _ATL_INTMAP_ENTRY> _GetEntries() {                \
    static constexpr _ATL_INTMAP_ENTRY kEntries[] = {
#define COM_INTERFACE_ENTRY(Interface)                                   \
  {&IID_##Interface, [](void* object) -> IUnknown* {                     \
     return static_cast<Interface*>(static_cast<_ComMapClass*>(object)); \
   }},
// For an id that does not name the interface behind it, such as that of an event set.
#define COM_INTERFACE_ENTRY_IID(Id, Interface)                           \
  {&Id, [](void* object) -> IUnknown* {                                  \
     return static_cast<Interface*>(static_cast<_ComMapClass*>(object)); \
   }},
#define END_COM_MAP() \
  }                   \
  ;                   \
  return kEntries;    \
  }
