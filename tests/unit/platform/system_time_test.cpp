// Dates to the calendar, the calendar to FILETIMEs, and back: the same tables for the system and
// for ours.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "platform/com.h"

namespace velandoc {
namespace {

#ifdef _WIN32
constexpr bool kIsWine = true;
#else
constexpr bool kIsWine = false;
#endif

std::string Describe(const SYSTEMTIME& time) {
  std::string text;
  for (const WORD part : {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute,
                          time.wSecond, time.wMilliseconds}) {
    text += std::to_string(part) + ' ';
  }
  return text + "weekday " + std::to_string(time.wDayOfWeek);
}

struct CountRow {
  double date;
  const char* time;
  const char* why;
  /// Rounded into the next day, where Wine leaves the weekday behind.
  bool hasStaleWeekday = false;
};

constexpr double kSecond = 1.0 / 86400;

const CountRow kDateRows[] = {
    {0, "1899 12 30 0 0 0 0 weekday 6", "day 0"},
    {0.5, "1899 12 30 12 0 0 0 weekday 6", "its noon"},
    {39998.25, "2009 7 4 6 0 0 0 weekday 6", "a day of today"},
    {59.5, "1900 2 27 12 0 0 0 weekday 2", "a century without a leap day"},
    {61, "1900 3 1 0 0 0 0 weekday 4", "beyond its February"},
    {-0.25, "1899 12 30 6 0 0 0 weekday 6", "minus 0 is day 0"},
    {-1.25, "1899 12 29 6 0 0 0 weekday 5", "the fraction counts forward"},
    {-1.75, "1899 12 29 18 0 0 0 weekday 5", "through the day"},
    {-2.771006944444444, "1899 12 28 18 30 15 0 weekday 4", "to the second"},
    {0.49 * kSecond, "1899 12 30 0 0 0 0 weekday 6", "less than half a second"},
    {0.5 * kSecond, "1899 12 30 0 0 1 0 weekday 6", "half a second is one"},
    {1.5 * kSecond, "1899 12 30 0 0 2 0 weekday 6", "upwards, not to even"},
    {2.5 * kSecond, "1899 12 30 0 0 3 0 weekday 6", "upwards again"},
    {39998 + 0.499 * kSecond, "2009 7 4 0 0 0 0 weekday 6", "less than half"},
    {-1 - 1.6 * kSecond, "1899 12 29 0 0 2 0 weekday 5", "forward as well"},
    {39998 + 86399.4 * kSecond, "2009 7 4 23 59 59 0 weekday 6", "the last second"},
    {39998 + 86399.6 * kSecond, "2009 7 5 0 0 0 0 weekday 0", "rounded into the next day", true},
    {-1 - 86399.6 * kSecond, "1899 12 30 0 0 0 0 weekday 6", "into day 0", true},
    {-2 - 86399.6 * kSecond, "1899 12 29 0 0 0 0 weekday 5", "before it", true},
    {-657434, "100 1 1 0 0 0 0 weekday 5", "the first day"},
    {-657434.5, "100 1 1 12 0 0 0 weekday 5", "its noon"},
    {-657435, nullptr, "the year 99"},
    {2958465.75, "9999 12 31 18 0 0 0 weekday 5", "the last day"},
    {2958466, nullptr, "the year 10000"},
    {1e300, nullptr, "no day"},
    {-1e300, nullptr, "nor this"},
};

TEST(VariantTimeToSystemTime, RoundsToSeconds) {
  for (const CountRow& row : kDateRows) {
    SYSTEMTIME time{};
    time.wYear = 1;
    const INT done = VariantTimeToSystemTime(row.date, &time);
    EXPECT_EQ(done, row.time != nullptr ? TRUE : FALSE) << row.why;
    if (row.time == nullptr) {
      EXPECT_EQ(Describe(time), "1 0 0 0 0 0 0 weekday 0") << row.why;
      continue;
    }
    std::string actual = Describe(time);
    std::string expected = row.time;
    if (kIsWine && row.hasStaleWeekday) {
      actual.resize(actual.find(" weekday"));
      expected.resize(expected.find(" weekday"));
    }
    EXPECT_EQ(actual, expected) << row.why;
  }
}

struct TimeRow {
  SYSTEMTIME time;  // year, month, weekday, day, hour, minute, second, millisecond
  bool isDate;
  double date;
  bool isFileTime;
  std::uint64_t fileTime;
  const char* why;
  /// Wine makes a date, or a file time, of it all the same.
  bool isWinesDate = false;
  bool isWinesFileTime = false;
};

const TimeRow kTimeRows[] = {
    {{2009, 7, 6, 4, 10, 11, 12, 0}, true, 39998.424444444, true, 0x01C9FC8FC1E06000, "a time"},
    {{2009, 7, 0, 4, 10, 11, 12, 999},
     true,
     39998.424444444,
     true,
     0x01C9FC8FC278CF70,
     "milliseconds are no part of a date"},
    {{2009, 7, 9, 4, 10, 11, 12, 500},
     true,
     39998.424444444,
     true,
     0x01C9FC8FC22CAB40,
     "the weekday is not looked at"},
    {{1601, 1, 1, 1, 0, 0, 0, 0}, true, -109205, true, 0, "the first file time"},
    {{1600, 12, 0, 31, 23, 59, 59, 0}, true, -109206.999988426, false, 0, "the day before"},
    {{1899, 12, 0, 30, 0, 0, 0, 0}, true, 0, true, 0x014F35A9A90CC000, "day 0"},
    {{1899, 12, 0, 29, 18, 0, 0, 0}, true, -1.75, true, 0x014F35775E725000, "before it"},
    {{2008, 2, 0, 29, 1, 2, 3, 4}, true, 39507.043090278, true, 0x01C87A6EB1EB53C0, "a leap day"},
    {{2009, 2, 0, 29, 0, 0, 0, 0}, true, 39873, false, 0, "1 March", false, true},
    {{2009, 2, 0, 31, 0, 0, 0, 0}, true, 39875, false, 0, "3 March"},
    {{2009, 4, 0, 31, 0, 0, 0, 0}, true, 39934, false, 0, "1 May"},
    {{2009, 2, 0, 0, 0, 0, 0, 0}, true, 39844, false, 0, "31 January"},
    {{2009, 1, 0, 0, 0, 0, 0, 0}, true, 39813, false, 0, "31 December of the year before"},
    {{2009, 1, 0, 32, 0, 0, 0, 0}, false, 0, false, 0, "too many days"},
    {{2009, 13, 0, 1, 0, 0, 0, 0}, false, 0, false, 0, "too many months"},
    {{2009, 0, 0, 1, 0, 0, 0, 0}, false, 0, false, 0, "no month", true},
    {{2009, 12, 0, 31, 24, 0, 0, 0}, false, 0, false, 0, "too many hours", true},
    {{2009, 12, 0, 31, 23, 60, 0, 0}, false, 0, false, 0, "too many minutes", true},
    {{2009, 12, 0, 31, 23, 59, 60, 0}, false, 0, false, 0, "too many seconds", true},
    {{2009, 12, 0, 31, 23, 59, 59, 1000}, true, 40178.999988426, false, 0, "and milliseconds"},
    {{9999, 12, 0, 31, 23, 59, 59, 0},
     true,
     2958465.999988426,
     true,
     0x24C85A5ED127A980,
     "the last date"},
    {{10000, 1, 0, 1, 0, 0, 0, 0}, false, 0, true, 0x24C85A5ED1C04000, "no date any more"},
    {{100, 1, 0, 1, 0, 0, 0, 0}, true, -657434, false, 0, "the first date"},
    {{99, 1, 0, 1, 0, 0, 0, 0}, true, 36161, false, 0, "1999"},
    {{50, 1, 0, 1, 0, 0, 0, 0}, true, 18264, false, 0, "1950"},
    {{49, 1, 0, 1, 0, 0, 0, 0}, true, 54424, false, 0, "2049"},
    {{0, 1, 0, 1, 0, 0, 0, 0}, true, 36526, false, 0, "2000"},
    {{30827, 12, 0, 31, 23, 59, 59, 999},
     false,
     0,
     true,
     0x7FFF35F4F06C58F0,
     "the last year of file times"},
    {{65535, 12, 0, 31, 23, 59, 59, 999}, false, 0, false, 0, "the greatest year"},
};

TEST(SystemTimeToVariantTime, CountsDays) {
  for (const TimeRow& row : kTimeRows) {
    if (kIsWine && row.isWinesDate) continue;
    SYSTEMTIME time = row.time;
    double date = 5;
    EXPECT_EQ(SystemTimeToVariantTime(&time, &date), row.isDate ? TRUE : FALSE) << row.why;
    EXPECT_NEAR(date, row.isDate ? row.date : 5, 1e-9) << row.why;
  }
}

std::uint64_t Join(const FILETIME& time) {
  return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}
FILETIME Split(std::uint64_t ticks) {
  return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

TEST(SystemTimeToFileTime, CountsFrom1601) {
  for (const TimeRow& row : kTimeRows) {
    if (kIsWine && row.isWinesFileTime) continue;
    FILETIME ticks = Split(5);
    EXPECT_EQ(SystemTimeToFileTime(&row.time, &ticks), row.isFileTime ? TRUE : FALSE) << row.why;
    EXPECT_EQ(Join(ticks), row.isFileTime ? row.fileTime : 5) << row.why;
  }
}

TEST(SystemTimeToFileTime, EndsWithTheYear30827) {
  // As Windows' documentation has it; Wine goes on to the last count.
  const SYSTEMTIME next = {30828, 1, 0, 1, 0, 0, 0, 0};
  FILETIME ticks = Split(5);
  EXPECT_EQ(SystemTimeToFileTime(&next, &ticks), kIsWine ? TRUE : FALSE);
}

struct TickRow {
  std::uint64_t ticks;
  const char* time;
  const char* why;
};

const TickRow kTickRows[] = {
    {0, "1601 1 1 0 0 0 0 weekday 1", "the beginning, a Monday"},
    {9999, "1601 1 1 0 0 0 0 weekday 1", "cut off"},
    {10000, "1601 1 1 0 0 0 1 weekday 1", "a millisecond"},
    {863999999999, "1601 1 1 23 59 59 999 weekday 1", "cut off at the end of the day"},
    {864000000000, "1601 1 2 0 0 0 0 weekday 2", "the next day"},
    {128911974720000000, "2009 7 4 16 11 12 0 weekday 6", "a time"},
    {0x7FFFFFFFFFFFFFFF, "30828 9 14 2 48 5 477 weekday 4", "the last"},
    {0x8000000000000000, nullptr, "one more"},
    {std::numeric_limits<std::uint64_t>::max(), nullptr, "the greatest count"},
};

TEST(FileTimeToSystemTime, CutsOffWhatIsLessThanAMillisecond) {
  for (const TickRow& row : kTickRows) {
    const FILETIME ticks = Split(row.ticks);
    SYSTEMTIME time{};
    time.wYear = 1;
    EXPECT_EQ(FileTimeToSystemTime(&ticks, &time), row.time != nullptr ? TRUE : FALSE) << row.why;
    EXPECT_EQ(Describe(time), row.time != nullptr ? row.time : "1 0 0 0 0 0 0 weekday 0")
        << row.why;
  }
}

TEST(FileTimeToSystemTime, TurnsBackWhatSystemTimeToFileTimeMade) {
  for (std::uint64_t ticks = 12345; ticks < 0x7FFF35F4F06C58F0; ticks += 98765432109876543) {
    const FILETIME before = Split(ticks - ticks % 10000);
    SYSTEMTIME time{};
    FILETIME after{};
    ASSERT_EQ(FileTimeToSystemTime(&before, &time), TRUE);
    ASSERT_EQ(SystemTimeToFileTime(&time, &after), TRUE);
    EXPECT_EQ(Join(after), Join(before)) << Describe(time);
  }
}

TEST(SystemTimes, LeadFromADateToAFileTime) {
  // The road of the document's times.
  SYSTEMTIME time{};
  FILETIME ticks{};
  ASSERT_EQ(VariantTimeToSystemTime(39998.424444444444, &time), TRUE);
  ASSERT_EQ(SystemTimeToFileTime(&time, &ticks), TRUE);
  EXPECT_EQ(Join(ticks), 0x01C9FC8FC1E06000U);
}

}  // namespace
}  // namespace velandoc
