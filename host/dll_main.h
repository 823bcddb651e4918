// What happens when the library is loaded and unloaded. The system's loader calls it on Windows; on
// Linux platform/posix/library/load.cpp does.
#pragma once

#include "platform/library_entry.h"

/// Starts the application object when the process loads the library, ends it when it lets it go.
/// FALSE refuses to be loaded, where the loader asks.
STDAPI_ENTRY DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);
