// The types and numbers of windows that the dialog port and MFC's classes speak in.
#pragma once

#include "platform/com.h"

#ifdef _WIN32
// Behind com.h, which includes windows.h.
#include <olectl.h>
#else
#include "platform/posix/window_types.h"
#endif
