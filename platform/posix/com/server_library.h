// The libraries that serve classes: loaded on first use, kept until they say that they may go.
#pragma once

#include <string>

#include "platform/posix/com/types.h"

namespace velandoc {

/// Asks the library at `path` for the class object. CO_E_DLLNOTFOUND if it can't be loaded,
/// CO_E_ERRORINDLL if it doesn't serve classes.
HRESULT GetClassObjectOf(const std::string& path, REFCLSID clsid, REFIID riid, void** object);

/// The component's library beside the program, in ../lib of it, or beside this runtime; empty if it
/// is in none.
std::string FindComponentLibrary();

}  // namespace velandoc
