// The class object of DOMDocument60, for the COM runtime's own table of classes.
#pragma once

#include "platform/posix/com/com.h"

namespace velandoc {

/// The IClassFactory whose CreateInstance makes an empty document; there is one for the process and
/// it is never freed. E_NOINTERFACE for any other interface than IUnknown and IClassFactory;
/// `*object` is then null.
HRESULT GetDomClassObject(REFIID riid, void** object);

}  // namespace velandoc
