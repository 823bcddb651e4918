#include "platform/posix/com/builtin_classes.h"

#include "platform/posix/msxml/class_object.h"
#include "platform/posix/msxml/msxml.h"

namespace velandoc {

// Weak: the runtime can be linked without a DOM, and then doesn't serve the class.
HRESULT GetDomClassObject(REFIID riid, void** object) __attribute__((weak));

HRESULT GetBuiltinClassObject(REFCLSID clsid, REFIID riid, void** object) {
  if (clsid != CLSID_DOMDocument60 || GetDomClassObject == nullptr) return REGDB_E_CLASSNOTREG;
  return GetDomClassObject(riid, object);
}

}  // namespace velandoc
