// Dates as calendar dates and as file times: the same table against the system's functions and
// ours.
#include <gtest/gtest.h>

#include <string>

#include "platform/com.h"

namespace velandoc {
namespace {

constexpr double kSecond = 1.0 / 86400;

struct DateCase {
  double date;
  const char* text;  // year-month-day hour:minute:second and the day of the week; empty: refused
};

constexpr DateCase kDateCases[] = {
    {0, "1899-12-30 0:0:0 day 6"},
    {0.5, "1899-12-30 12:0:0 day 6"},
    {1.25, "1899-12-31 6:0:0 day 0"},
    {-0.25, "1899-12-30 6:0:0 day 6"},
    {-1.25, "1899-12-29 6:0:0 day 5"},
    {-1.75, "1899-12-29 18:0:0 day 5"},
    {39998.25, "2009-7-4 6:0:0 day 6"},
    {39998.25 + 0.4 * kSecond, "2009-7-4 6:0:0 day 6"},
    {39998.25 + 0.6 * kSecond, "2009-7-4 6:0:1 day 6"},
    {39998.999994, "2009-7-4 23:59:59 day 6"},
    {39998.99999999, "2009-7-5 0:0:0 day 0"},
    {-1.9999999, "1899-12-30 0:0:0 day 6"},
    {59.5, "1900-2-27 12:0:0 day 2"},
    {61, "1900-3-1 0:0:0 day 4"},
    {-657434, "100-1-1 0:0:0 day 5"},
    {-657435, ""},
    {2958465.99, "9999-12-31 23:45:36 day 5"},
    {2958466, ""},
    {1e300, ""},
};

std::string Describe(const SYSTEMTIME& time) {
  return std::to_string(time.wYear) + "-" + std::to_string(time.wMonth) + "-" +
         std::to_string(time.wDay) + " " + std::to_string(time.wHour) + ":" +
         std::to_string(time.wMinute) + ":" + std::to_string(time.wSecond) + " day " +
         std::to_string(time.wDayOfWeek);
}

TEST(SystemTimeTest, DatesFallOnTheirDays) {
  for (const DateCase& test : kDateCases) {
    SCOPED_TRACE(test.date);
    SYSTEMTIME time{7, 7, 7, 7, 7, 7, 7, 7};
    const bool isTold = VariantTimeToSystemTime(test.date, &time) != 0;
    EXPECT_EQ(isTold, *test.text != '\0');
    EXPECT_EQ(Describe(time), isTold ? test.text : "7-7-7 7:7:7 day 7");
    EXPECT_EQ(time.wMilliseconds, isTold ? 0 : 7);
  }
}

struct FileTimeCase {
  SYSTEMTIME time;
  ULONGLONG steps;  // of 100 ns
  bool isTold;
};

constexpr FileTimeCase kFileTimeCases[] = {
    {{1601, 1, 1, 1, 0, 0, 0, 0}, 0, true},
    {{1601, 1, 1, 1, 0, 0, 0, 1}, 10'000, true},
    {{1899, 12, 6, 30, 6, 0, 0, 0}, 94'353'336'000'000'000, true},
    {{2008, 2, 5, 29, 0, 0, 0, 0}, 128'487'168'000'000'000, true},
    {{2009, 7, 99, 4, 6, 0, 0, 0}, 128'911'608'000'000'000, true},  // no such day of the week
    {{30827, 12, 0, 31, 23, 59, 59, 999}, 9'223'149'887'999'990'000, true},
    {{1600, 12, 0, 31, 23, 59, 59, 999}, 0, false},
    {{2009, 0, 0, 1, 0, 0, 0, 0}, 0, false},
    {{2009, 13, 0, 1, 0, 0, 0, 0}, 0, false},
    {{2009, 1, 0, 0, 0, 0, 0, 0}, 0, false},
    {{2009, 1, 0, 32, 0, 0, 0, 0}, 0, false},
    {{2009, 1, 0, 1, 24, 0, 0, 0}, 0, false},
    {{2009, 1, 0, 1, 0, 60, 0, 0}, 0, false},
    {{2009, 1, 0, 1, 0, 0, 60, 0}, 0, false},
    {{2009, 1, 0, 1, 0, 0, 0, 1000}, 0, false},
};

TEST(SystemTimeTest, FileTimesCountFrom1601) {
  for (const FileTimeCase& test : kFileTimeCases) {
    SCOPED_TRACE(test.time.wYear);
    FILETIME time{.dwLowDateTime = 2, .dwHighDateTime = 1};
    EXPECT_EQ(SystemTimeToFileTime(&test.time, &time) != 0, test.isTold);
    const ULONGLONG steps = ULONGLONG{time.dwHighDateTime} << 32 | time.dwLowDateTime;
    EXPECT_EQ(steps, test.isTold ? test.steps : 0x1'0000'0002) << "an untold time stays";
  }
}

#ifndef _WIN32
// Wine's function lets these pass, so the table above leaves them out.
TEST(SystemTimeTest, DaysThatAMonthLacksAndTheYear30828AreRefused) {
  for (const SYSTEMTIME& time :
       {SYSTEMTIME{2009, 2, 0, 29, 0, 0, 0, 0}, SYSTEMTIME{2009, 4, 0, 31, 0, 0, 0, 0},
        SYSTEMTIME{30828, 1, 0, 1, 0, 0, 0, 0}}) {
    FILETIME steps{};
    EXPECT_FALSE(SystemTimeToFileTime(&time, &steps)) << time.wYear;
  }
}
#endif

}  // namespace
}  // namespace velandoc
