// The entry point of a library: DllMain, which platform/posix/library calls where the loader does
// not.
#pragma once

#include "platform/com.h"

#ifdef _WIN32
#define STDAPI_ENTRY extern "C" BOOL WINAPI
#else
#define STDAPI_ENTRY extern "C" BOOL
inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;
#endif
