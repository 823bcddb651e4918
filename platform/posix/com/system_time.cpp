#include "platform/posix/com/system_time.h"

#include <cstdint>

#include "platform/posix/com/calendar.h"
#include "platform/posix/com/date_text.h"

namespace velandoc {
namespace {

constexpr std::int64_t kSecondsOfDay = 86400;
constexpr std::int64_t kTicksOfMillisecond = 10000;
constexpr std::int64_t kTicksOfSecond = 1000 * kTicksOfMillisecond;
constexpr std::int64_t kTicksOfDay = kSecondsOfDay * kTicksOfSecond;
constexpr std::int64_t kFileTimeEpoch = -109205;  // 1 January 1601
constexpr WORD kFirstFileTimeYear = 1601;
constexpr WORD kLastFileTimeYear = 30827;

bool HasTimeOfDay(const SYSTEMTIME& time) {
  return time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60;
}

std::int64_t SecondsOf(const SYSTEMTIME& time) {
  return (time.wHour * 60 + time.wMinute) * 60 + time.wSecond;
}

SYSTEMTIME SystemTimeOf(std::int64_t days, std::int64_t seconds, std::int64_t milliseconds) {
  const CalendarDay day = DayOfCount(days);
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(day.year);
  time.wMonth = static_cast<WORD>(day.month);
  time.wDayOfWeek = static_cast<WORD>(WeekdayOfCount(days));
  time.wDay = static_cast<WORD>(day.day);
  time.wHour = static_cast<WORD>(seconds / 3600);
  time.wMinute = static_cast<WORD>(seconds / 60 % 60);
  time.wSecond = static_cast<WORD>(seconds % 60);
  time.wMilliseconds = static_cast<WORD>(milliseconds);
  return time;
}

}  // namespace
}  // namespace velandoc

STDAPI_(INT) VariantTimeToSystemTime(DOUBLE date, SYSTEMTIME* time) {
  if (time == nullptr || !velandoc::IsValidDate(date)) return FALSE;
  const auto [days, seconds] = velandoc::CountOfDate(date);
  *time = velandoc::SystemTimeOf(days, seconds, 0);
  return TRUE;
}

STDAPI_(INT) SystemTimeToVariantTime(SYSTEMTIME* time, DOUBLE* date) {
  if (time == nullptr || date == nullptr || !velandoc::HasTimeOfDay(*time)) return FALSE;
  if (time->wMonth < 1 || time->wMonth > 12 || time->wDay > 31) return FALSE;
  const std::int64_t days =
      velandoc::CountOfDay({velandoc::WidenYear(time->wYear), time->wMonth, time->wDay});
  const double result = velandoc::DateOf({days, velandoc::SecondsOf(*time)});
  if (!velandoc::IsValidDate(result)) return FALSE;
  *date = result;
  return TRUE;
}

STDAPI_(BOOL) SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime) {
  if (time == nullptr || fileTime == nullptr || !velandoc::HasTimeOfDay(*time)) return FALSE;
  if (time->wYear < velandoc::kFirstFileTimeYear || time->wYear > velandoc::kLastFileTimeYear ||
      time->wMonth < 1 || time->wMonth > 12 || time->wDay < 1 ||
      time->wDay > velandoc::DaysInMonth(time->wYear, time->wMonth) || time->wMilliseconds > 999) {
    return FALSE;
  }
  const std::int64_t days = velandoc::CountOfDay({time->wYear, time->wMonth, time->wDay});
  const auto ticks =
      static_cast<std::uint64_t>((days - velandoc::kFileTimeEpoch) * velandoc::kTicksOfDay +
                                 velandoc::SecondsOf(*time) * velandoc::kTicksOfSecond +
                                 time->wMilliseconds * velandoc::kTicksOfMillisecond);
  *fileTime = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
  return TRUE;
}

STDAPI_(BOOL) FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* time) {
  if (fileTime == nullptr || time == nullptr || fileTime->dwHighDateTime > 0x7FFFFFFF) return FALSE;
  const auto ticks = static_cast<std::int64_t>(std::uint64_t{fileTime->dwHighDateTime} << 32 |
                                               fileTime->dwLowDateTime);
  const std::int64_t ofDay = ticks % velandoc::kTicksOfDay;
  *time = velandoc::SystemTimeOf(ticks / velandoc::kTicksOfDay + velandoc::kFileTimeEpoch,
                                 ofDay / velandoc::kTicksOfSecond,
                                 ofDay % velandoc::kTicksOfSecond / velandoc::kTicksOfMillisecond);
  return TRUE;
}
