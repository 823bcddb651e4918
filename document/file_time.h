// Dates as automation clients get them: a FILETIME in one number.
#pragma once

#include "platform/com.h"

namespace velandoc {

/// Steps of 100 ns from the year 1601, `date` rounded to the second and no time zone applied; 0 for
/// a date that no FILETIME reaches.
LONGLONG FileTimeOfDate(DATE date);

}  // namespace velandoc
