// The Gregorian calendar, reckoned back before its introduction as OLE Automation does. Exported
// for the unit tests.
#pragma once

#include <cstdint>

#include "platform/posix/com/types.h"

namespace velandoc {

struct CalendarDay {
  std::int64_t year;
  std::int64_t month;  // 1 to 12
  std::int64_t day;    // 1 to 31
};

/// 28 to 31, for a month of 1 to 12.
COM_EXPORT std::int64_t DaysInMonth(std::int64_t year, std::int64_t month);

/// Days from 30 December 1899, the day 0 of a DATE. For years from 1 on; the day may lie outside
/// its month.
COM_EXPORT std::int64_t CountOfDay(const CalendarDay& day);
/// The inverse, for the same years.
COM_EXPORT CalendarDay DayOfCount(std::int64_t daysFromEpoch);

/// 0 for Sunday to 6.
COM_EXPORT int WeekdayOfCount(std::int64_t daysFromEpoch);

/// A year as a text gives it: below 100 it is one of the hundred years up to
/// kLastTwoDigitYear, the window of Windows 10 and later. Older releases end it in 2029.
inline constexpr std::int64_t kLastTwoDigitYear = 2049;
constexpr std::int64_t WidenYear(std::int64_t year) {
  constexpr std::int64_t kCentury = kLastTwoDigitYear / 100 * 100;
  if (year >= 100) return year;
  return kCentury + year <= kLastTwoDigitYear ? kCentury + year : kCentury - 100 + year;
}

}  // namespace velandoc
