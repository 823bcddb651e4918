// Dates out of text, by OLE Automation's rules for US English.
#pragma once

#include <cstdint>

#include "platform/text.h"

namespace velandoc {

/// Reads a date, a time, or both, up to the first NUL:
///   - a date is month, day and year, in this order by preference ("7/4/2009"), or in any other in
///     which it is one ("2009-07-04", "31/12/2009"), with "/", "-", white space or nothing between
///     its parts. With a month's name in the middle the day comes first ("4-Jul-09"). Two parts are
///     day and month of `currentYear`, or month and year if that is no day.
///   - a time is "10:11", "10:11:12" or "10.11", with AM, PM, A or P behind it; an hour with one of
///     these alone is one, too. It stands before or behind the whole date.
///   - names of months and weekdays are English, whole or with three letters, in any case. A
///     weekday may stand anywhere but beside a "/" or "-", and says nothing.
///   - a comma is white space, except at the end, where it stands for a part that is missing.
/// False, with `date` untouched, for all else: fractions of a second, zones, a "T" in the middle,
/// ordinals, and digits beyond ASCII. Takes time linear in the text, and no memory.
COM_EXPORT bool ReadDateText(WideView text, std::int64_t currentYear, DATE& date);

/// The year of the local time.
std::int64_t CurrentYear();

}  // namespace velandoc
