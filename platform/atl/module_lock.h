// The lock count of the module that is current: objects and class factories hold it while they
// live.
#pragma once

#include "platform/com.h"

/// Interlocked; any thread may call. Both return the new count. A CAtlModule must exist.
LONG AtlModuleLock();
LONG AtlModuleUnlock();
