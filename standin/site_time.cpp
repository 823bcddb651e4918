#include "standin/site_time.h"

#include <array>

#include "standin/text.h"

namespace velandoc::standin {
namespace {

using namespace std::chrono;

constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<const char*, 7> kWeekdays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

struct Parts {
  int year;
  std::size_t month;
  int day;
  std::size_t weekday;
  int hours;
  int minutes;
  int seconds;
};

Parts Split(sys_seconds time) {
  const sys_days date = floor<days>(time);
  const year_month_day calendar(date);
  const auto second = static_cast<int>((time - date).count());
  return {int(calendar.year()),
          unsigned(calendar.month()),
          static_cast<int>(unsigned(calendar.day())),
          weekday(date).c_encoding(),
          second / 3600,
          second / 60 % 60,
          second % 60};
}

// At least `width` digits.
std::string Digits(int value, std::size_t width) {
  std::string digits = std::to_string(value);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

std::string Clock(const Parts& time) {
  return Digits(time.hours, 2) + ":" + Digits(time.minutes, 2) + ":" + Digits(time.seconds, 2);
}

std::string Date(const Parts& time, const char* separator) {
  return Digits(time.year, 4) + separator + Digits(static_cast<int>(time.month), 2) + separator +
         Digits(time.day, 2);
}

}  // namespace

std::optional<sys_seconds> ParseTime(std::string_view text) {
  // 2009-07-04T10:11:12Z
  if (text.size() != 20 || text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' ||
      text[16] != ':' || text[19] != 'Z')
    return std::nullopt;
  const auto number = [text](std::size_t at, std::size_t length) {
    return ParseNumber<unsigned>(text.substr(at, length)).value_or(10'000);
  };
  const year_month_day date(year(static_cast<int>(number(0, 4))), month(number(5, 2)),
                            day(number(8, 2)));
  const unsigned hour = number(11, 2);
  const unsigned minute = number(14, 2);
  const unsigned second = number(17, 2);
  if (!date.ok() || date.year() > year(9999) || hour > 23 || minute > 59 || second > 59)
    return std::nullopt;
  return sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
}

std::string FormatTime(sys_seconds time) {
  const Parts parts = Split(time);
  return Date(parts, "-") + "T" + Clock(parts) + "Z";
}

std::string MetaTime(sys_seconds time, TimeForm form) {
  const Parts parts = Split(time);
  const std::string text = Digits(parts.day, 2) + " " + kMonths.at(parts.month - 1) + " " +
                           Digits(parts.year, 4) + " " + Clock(parts);
  if (form == TimeForm::kWeekday) return std::string(kWeekdays.at(parts.weekday)) + ", " + text;
  return "TR|" + text + " -0000";
}

std::string RowTime(sys_seconds time) {
  const Parts parts = Split(time);
  return Date(parts, "-") + " " + Clock(parts);
}

std::string ListTime(sys_seconds time) {
  const Parts parts = Split(time);
  return Date(parts, "") + " " + Clock(parts);
}

}  // namespace velandoc::standin
