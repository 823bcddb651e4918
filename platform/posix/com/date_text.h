// Dates as text, by OLE Automation's rules for US English.
#pragma once

#include <cstdint>

#include "platform/text.h"

namespace velandoc {

/// The days that a DATE may count: 1 January 100 to 31 December 9999, from 30 December 1899.
inline constexpr DATE kMinDate = -657434;
inline constexpr DATE kMaxDate = 2958465;

/// Whether the date lies in these days, the first and the last one to their end.
bool IsValidDate(DATE date);

/// A date as it counts: whole days, and the time within the day, forward also before day 0, where
/// the number is -1.75 for day -1 at 18:00.
struct DateCount {
  std::int64_t days;
  std::int64_t seconds;
};
/// Of a valid date. The time is rounded to seconds, a half up, and may reach the next day.
DateCount CountOfDate(DATE date);
DATE DateOf(const DateCount& count);

/// "7/4/2009 6:00:00 AM"; the date alone at midnight, the time alone for day 0. The time is rounded
/// to seconds. False if the date is not valid.
bool FormatDate(DATE date, WideString& text);

}  // namespace velandoc
