// What the reader of dates does that no table of the system's shows: a year of the test's own, and
// texts of any length.
#include "platform/posix/com/date_reader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>

#include "platform/posix/com/calendar.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

std::optional<DATE> Read(WideView text, std::int64_t year = 2026) {
  DATE date = 0;
  if (!ReadDateText(text, year, date)) return std::nullopt;
  return date;
}

DATE Day(std::int64_t year, std::int64_t month, std::int64_t day) {
  return static_cast<DATE>(CountOfDay({year, month, day}));
}

TEST(DateReader, TakesTwoPartsForADayOfTheCurrentYearIfItHasThatDay) {
  EXPECT_EQ(Read(OLESTR("2/29"), 2028), Day(2028, 2, 29));
  EXPECT_EQ(Read(OLESTR("29 Feb"), 2028), Day(2028, 2, 29));
  EXPECT_EQ(Read(OLESTR("2/29"), 2026), Day(2029, 2, 1));
  EXPECT_EQ(Read(OLESTR("29/2"), 2026), Day(2029, 2, 1));
  EXPECT_EQ(Read(OLESTR("Feb 29"), 2026), Day(2029, 2, 1));
  EXPECT_EQ(Read(OLESTR("7/4"), 1999), Day(1999, 7, 4));
}

TEST(DateReader, PutsTwoDigitYearsIntoTheHundredYearsUpTo2049) {
  for (std::int64_t year = 0; year < 100; ++year) {
    const std::string text = "1/1/" + std::to_string(year);
    EXPECT_EQ(Read(WideString(text.begin(), text.end())),
              Day(year <= 49 ? 2000 + year : 1900 + year, 1, 1))
        << text;
  }
  EXPECT_EQ(Read(OLESTR("1/1/100")), Day(100, 1, 1));
}

TEST(DateReader, KnowsTheNamesWholeAndWithThreeLetters) {
  const char* const months[] = {"January",   "February", "March",    "April",
                                "May",       "June",     "July",     "August",
                                "September", "October",  "November", "December"};
  std::int64_t month = 0;
  for (const std::string name : months) {
    ++month;
    for (const std::string& form : {name, name.substr(0, 3)}) {
      const std::string text = form + " 4 2009";
      EXPECT_EQ(Read(WideString(text.begin(), text.end())), Day(2009, month, 4)) << text;
    }
  }
  for (const std::string name :
       {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"}) {
    for (const std::string& form : {name, name.substr(0, 3)}) {
      const std::string text = form + " 7/4/2009";
      EXPECT_EQ(Read(WideString(text.begin(), text.end())), Day(2009, 7, 4)) << text;
    }
  }
}

TEST(DateReader, LeavesTheResultAloneWhereThereIsNoDate) {
  DATE date = 5;
  EXPECT_FALSE(ReadDateText(OLESTR("7/4/2009 10:11:12 -0000"), 2026, date));
  EXPECT_EQ(date, 5);
}

/// `unit` again and again, in front of a date.
WideString Repeated(WideView unit, std::size_t size) {
  WideString text(unit);
  while (text.size() < size) text += WideString(text);
  return text + OLESTR(" 7/4/2009");
}

TEST(DateReader, ReadsAMillionUnitsInTimeThatGrowsWithThem) {
  constexpr std::size_t kSize = 1000000;
  struct Case {
    LPCWSTR unit;
    bool isPassedOver;
  };
  for (const Case& row :
       {Case{OLESTR("Tue "), true}, Case{OLESTR(","), true}, Case{OLESTR("\n"), true},
        Case{OLESTR("0"), false}, Case{OLESTR("1 "), false}, Case{OLESTR("Jul "), false},
        Case{OLESTR("/"), false}, Case{OLESTR("10:"), false}, Case{OLESTR("10::"), false},
        Case{OLESTR("Septembe"), false}}) {
    const WideString text = Repeated(row.unit, kSize);
    const auto begin = std::chrono::steady_clock::now();
    const std::optional<DATE> date = Read(text);
    // Generous for sanitizers on a busy machine: a reader that goes back would take hours.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(date.has_value(), row.isPassedOver) << testing::DescribeText(row.unit);
  }
}

TEST(Calendar, CountsEveryDayThereAndBack) {
  std::int64_t days = CountOfDay({100, 1, 1});
  EXPECT_EQ(days, -657434);
  for (std::int64_t year = 100; year < 10000; ++year) {
    for (std::int64_t month = 1; month <= 12; ++month) {
      for (std::int64_t day = 1; day <= DaysInMonth(year, month); ++day, ++days) {
        ASSERT_EQ(CountOfDay({year, month, day}), days);
        const CalendarDay back = DayOfCount(days);
        ASSERT_TRUE(back.year == year && back.month == month && back.day == day) << days;
      }
    }
  }
  EXPECT_EQ(days, 2958466);
}

TEST(Calendar, KnowsTheWeekday) {
  EXPECT_EQ(WeekdayOfCount(0), 6);      // 30 December 1899, a Saturday
  EXPECT_EQ(WeekdayOfCount(39998), 6);  // 4 July 2009, another
  EXPECT_EQ(WeekdayOfCount(-1), 5);
  EXPECT_EQ(WeekdayOfCount(-657434), 5);
}

}  // namespace
}  // namespace velandoc
