// The libraries that serve classes: loaded on first use, kept until they say that they may go.
#pragma once

#include <string>

#include "platform/posix/com/types.h"

namespace velandoc {

/// Asks the library at `path` for the class object. CO_E_DLLNOTFOUND if it can't be loaded,
/// CO_E_ERRORINDLL if it doesn't serve classes.
HRESULT GetClassObjectOf(const std::string& path, REFCLSID clsid, REFIID riid, void** object);

/// The component's library: beside the program, in ../lib of the program's folder, beside this
/// runtime, or in the folder velandoc beside this runtime, where packages put it. Empty if it is in
/// none.
COM_EXPORT std::string FindComponentLibrary();

}  // namespace velandoc
