#include "platform/posix/com/calendar.h"

namespace velandoc {
namespace {

// From 1 March of the year 0 to 30 December 1899.
constexpr std::int64_t kDaysToEpoch = 693899;
constexpr std::int64_t kDaysOfCycle = 146097;  // of 400 years
constexpr std::int64_t kEpochWeekday = 6;      // a Saturday

bool IsLeapYear(std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

}  // namespace

// Counting years from March puts the leap day at their end: the month follows from the day of the
// year by a line through (0, March) to (305, January), and back.

std::int64_t DaysInMonth(std::int64_t year, std::int64_t month) {
  if (month == 2) return IsLeapYear(year) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

std::int64_t CountOfDay(const CalendarDay& day) {
  const std::int64_t year = day.month > 2 ? day.year : day.year - 1;
  const std::int64_t monthFromMarch = day.month > 2 ? day.month - 3 : day.month + 9;
  const std::int64_t ofYear = (153 * monthFromMarch + 2) / 5 + day.day - 1;
  return 365 * year + year / 4 - year / 100 + year / 400 + ofYear - kDaysToEpoch;
}

CalendarDay DayOfCount(std::int64_t daysFromEpoch) {
  const std::int64_t days = daysFromEpoch + kDaysToEpoch;
  const std::int64_t cycle = days / kDaysOfCycle;
  const std::int64_t ofCycle = days % kDaysOfCycle;
  const std::int64_t yearOfCycle =
      (ofCycle - ofCycle / 1460 + ofCycle / 36524 - ofCycle / 146096) / 365;
  const std::int64_t ofYear = ofCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
  const std::int64_t monthFromMarch = (5 * ofYear + 2) / 153;
  const std::int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  return {cycle * 400 + yearOfCycle + (month <= 2 ? 1 : 0), month,
          ofYear - (153 * monthFromMarch + 2) / 5 + 1};
}

int WeekdayOfCount(std::int64_t daysFromEpoch) {
  return static_cast<int>(((daysFromEpoch + kEpochWeekday) % 7 + 7) % 7);
}

}  // namespace velandoc
