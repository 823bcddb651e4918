// COM and OLE Automation for Linux: everything that platform/com.h promises, by the system's own
// names.
#pragma once

#include "platform/posix/com/activation.h"
#include "platform/posix/com/automation.h"
#include "platform/posix/com/com_error.h"
#include "platform/posix/com/interfaces.h"
#include "platform/posix/com/system_time.h"
#include "platform/posix/com/types.h"
