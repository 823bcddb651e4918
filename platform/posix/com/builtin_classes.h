// The classes that the runtime itself serves: on Windows they are part of the system.
#pragma once

#include "platform/posix/com/types.h"

namespace velandoc {

/// The class object of DOMDocument60. REGDB_E_CLASSNOTREG for every other class.
HRESULT GetBuiltinClassObject(REFCLSID clsid, REFIID riid, void** object);

}  // namespace velandoc
