// The time zone behind a date: the scan "%c%2i%2i".
#pragma once

#include "platform/text.h"

namespace velandoc {

struct ScannedZone {
  OLECHAR sign = 0;
  int hours = -1;
  int minutes = -1;
};

/// Scans `text`, up to its first NUL, as C's sscanf does with the format "%c%2i%2i", and returns
/// how many of the three it filled; those keep their value that it did not reach. Written out here
/// because the C libraries of the two homes differ. What follows from "%i":
///   - leading zeros mean octal. "+0800" is 0 hours (the 8 is no octal digit and ends the number)
///     and 80 minutes; "+0530" is 5 hours and 30 minutes.
///   - each number may stand behind white space, and may have a sign that counts as one of its two
///     units: "+-1-2" is -1 and -2.
///   - "0x" has no room for a digit behind it, and is no number.
int ScanZone(WideView text, ScannedZone& zone);

}  // namespace velandoc
