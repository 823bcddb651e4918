#include "platform/posix/com/date_text.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

namespace velandoc {
namespace {

constexpr std::int64_t kSecondsOfDay = 86400;
// From 1 March of the year 0 to 30 December 1899, in the Gregorian calendar.
constexpr std::int64_t kDaysToEpoch = 693899;

struct Day {
  std::int64_t year;
  std::int64_t month;
  std::int64_t day;
};

/// Counting years from March puts the leap day at their end: a 400-year cycle has 146097 days, and
/// the month follows from the day of the year by a line through (0, March) to (305, January).
Day DayOfCount(std::int64_t daysFromEpoch) {
  const std::int64_t days = daysFromEpoch + kDaysToEpoch;
  const std::int64_t cycle = days / 146097;
  const std::int64_t ofCycle = days % 146097;
  const std::int64_t yearOfCycle =
      (ofCycle - ofCycle / 1460 + ofCycle / 36524 - ofCycle / 146096) / 365;
  const std::int64_t ofYear = ofCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
  const std::int64_t monthFromMarch = (5 * ofYear + 2) / 153;
  const std::int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  return {cycle * 400 + yearOfCycle + (month <= 2 ? 1 : 0), month,
          ofYear - (153 * monthFromMarch + 2) / 5 + 1};
}

}  // namespace

bool IsValidDate(DATE date) { return date >= kMinDate && date < kMaxDate + 1; }

bool FormatDate(DATE date, WideString& text) {
  if (!IsValidDate(date)) return false;
  // Before day 0 the fraction still counts forward: -1.75 is day -1 at 18:00.
  auto days = static_cast<std::int64_t>(date);
  auto seconds = std::llround(std::fabs(date - static_cast<double>(days)) * kSecondsOfDay);
  if (seconds == kSecondsOfDay) {
    seconds = 0;
    ++days;
  }
  std::string narrow;
  if (days != 0) {
    const Day day = DayOfCount(days);
    narrow =
        std::to_string(day.month) + "/" + std::to_string(day.day) + "/" + std::to_string(day.year);
  }
  if (seconds != 0 || days == 0) {
    char time[32];
    const auto hour = static_cast<int>(seconds / 3600);
    std::snprintf(time, sizeof time, "%s%d:%02d:%02d %s", days != 0 ? " " : "",
                  hour % 12 == 0 ? 12 : hour % 12, static_cast<int>(seconds / 60 % 60),
                  static_cast<int>(seconds % 60), hour < 12 ? "AM" : "PM");
    narrow += time;
  }
  text.assign(narrow.begin(), narrow.end());
  return true;
}

}  // namespace velandoc
