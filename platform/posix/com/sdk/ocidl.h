// The interface compiler's headers include <ocidl.h>; on Linux all of it is the COM runtime's.
#pragma once
#include "platform/posix/com/com.h"
