// Which types a VARIANT may have here.
#pragma once

#include "platform/posix/com/automation.h"

namespace velandoc {

/// Arrays, records and decimals are not served.
bool IsServedType(VARTYPE type);

}  // namespace velandoc
