// What is known of a class before its library is loaded: from the registry, or of the component
// itself.
#pragma once

#include "platform/posix/com/types.h"
#include "platform/text.h"

namespace velandoc {

/// The default value of a key below HKEY_CLASSES_ROOT as text. REGDB_E_KEYMISSING if the key or the
/// value is not there, REGDB_E_READREGDB if the registry can't be read.
HRESULT ReadClassesText(const WideString& key, WideString& text);

/// The path of the library that the registry names for the class; failures as for ReadClassesText.
HRESULT FindRegisteredServer(REFCLSID clsid, WideString& path);

/// Whether the class is one of the component's own, which are found without registration.
bool IsComponentClass(REFCLSID clsid);

}  // namespace velandoc
