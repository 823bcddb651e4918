// How an exported function of the library is declared.
#pragma once

#include "platform/com.h"

#ifdef _WIN32
// The linker's module definition file exports them; the system's headers declare some of them
// already, without attributes.
#define STDAPI_EXPORT STDAPI
#else
#define STDAPI_EXPORT STDAPI COM_EXPORT
#endif
