#include "platform/posix/com/date_text.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/posix/com/calendar.h"

namespace velandoc {
namespace {

constexpr std::int64_t kSecondsOfDay = 86400;
}  // namespace

bool IsValidDate(DATE date) { return date > kMinDate - 1 && date < kMaxDate + 1; }

DateCount CountOfDate(DATE date) {
  const auto days = static_cast<std::int64_t>(date);
  const auto seconds = std::llround(std::fabs(date - static_cast<double>(days)) * kSecondsOfDay);
  if (seconds == kSecondsOfDay) return {days + 1, 0};
  return {days, seconds};
}

DATE DateOf(const DateCount& count) {
  const auto days = static_cast<DATE>(count.days);
  const DATE fraction = static_cast<DATE>(count.seconds) / kSecondsOfDay;
  return count.days < 0 ? days - fraction : days + fraction;
}

bool FormatDate(DATE date, WideString& text) {
  if (!IsValidDate(date)) return false;
  const auto [days, seconds] = CountOfDate(date);
  std::string narrow;
  if (days != 0) {
    const CalendarDay day = DayOfCount(days);
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
