// The types and numbers of WinINet that the core and the port speak in.
#pragma once

#include "platform/com.h"

#ifdef _WIN32
#include <wininet.h>
#else
#include "platform/posix/wininet_types.h"
#endif
