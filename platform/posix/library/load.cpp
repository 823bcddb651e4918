// Calls the library's DllMain, as the loader of Windows does. Part of the shared library alone: a
// program that holds the library's code in itself is not loaded.
#include "platform/library_entry.h"
#include "platform/module_path.h"

STDAPI_ENTRY DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

namespace {

// Whatever DllMain's first call makes is complete before this object is, so it still lives in the
// second call. A loaded library can't be refused here: a FALSE stays without effect.
const struct Load {
  Load() { DllMain(velandoc::GetModuleInstance(), DLL_PROCESS_ATTACH, nullptr); }
  ~Load() { DllMain(velandoc::GetModuleInstance(), DLL_PROCESS_DETACH, nullptr); }
} s_load;

}  // namespace
