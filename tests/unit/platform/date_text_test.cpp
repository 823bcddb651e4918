// Dates, truths and numbers out of text: the same tables for the system's OLE Automation and for
// ours.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <string>

#include "platform/owners.h"
#include "tests/support/variant_text.h"
#include "tests/unit/platform/date_rows.h"

namespace velandoc {
namespace {

using testing::DescribeResult;
using testing::DescribeText;
using testing::DescribeVariant;

#ifdef _WIN32
constexpr bool kIsWine = true;
#else
constexpr bool kIsWine = false;
#endif

constexpr const char* kMismatch = "DISP_E_TYPEMISMATCH";

/// What Wine says instead, and why the table says otherwise.
struct Difference {
  const char* wine;
  const char* reason;
};
constexpr const char* kAnything = "";
constexpr const char* kDayFirst =
    "with a month's name in the middle Windows takes the day from the front, Wine the year";
constexpr const char* kShortHalf = "whether Wine knows A and P changes from call to call";
constexpr const char* kHourIsAMonth = "Wine takes the number of the month for the hour";
constexpr const char* kYearWraps = "Wine's years wrap at 16 bits";

const std::map<WideString, Difference> kDifferences = {
    {OLESTR("4-Jul-09"), {"2004-07-09 00:00:00 (38177.000000)", kDayFirst}},
    {OLESTR("4/Jul/09"), {"2004-07-09 00:00:00 (38177.000000)", kDayFirst}},
    {OLESTR("4 Jul 09"), {"2004-07-09 00:00:00 (38177.000000)", kDayFirst}},
    {OLESTR("Tue 07-Jul-09 10:11:12"), {"2007-07-09 10:11:12 (39272.424444)", kDayFirst}},
    {OLESTR("Tue 7 Jul 30"), {"2007-07-30 00:00:00 (39293.000000)", kDayFirst}},
    {OLESTR("4 Jun 5"), {"2004-06-05 00:00:00 (38143.000000)", kDayFirst}},
    {OLESTR("09-Jun-4"), {"2009-06-04 00:00:00 (39968.000000)", kDayFirst}},
    {OLESTR("08 Feb 29"), {"2008-02-29 00:00:00 (39507.000000)", kDayFirst}},
    {OLESTR("29 Feb 08"), {"2029-02-08 00:00:00 (47157.000000)", kDayFirst}},
    {OLESTR("10:11 a"), {kAnything, kShortHalf}},
    {OLESTR("Tue 7 Jul 2009 10:11:12 a"), {kAnything, kShortHalf}},
    {OLESTR("7/4/2009 10:11 A"), {kAnything, kShortHalf}},
    {OLESTR("7/4/2009 10:11 P"), {kAnything, kShortHalf}},
    {OLESTR("7/4/2009 10:11 p"), {kAnything, kShortHalf}},
    {OLESTR("10:11 p"), {kAnything, kShortHalf}},
    {OLESTR("10 p"), {kAnything, kShortHalf}},
    {OLESTR("10p"), {kAnything, kShortHalf}},
    {OLESTR("10a"), {kAnything, kShortHalf}},
    {OLESTR("10:11a"), {kAnything, kShortHalf}},
    {OLESTR("Jul AM"), {"1899-12-30 07:00:00 (0.291667)", kHourIsAMonth}},
    {OLESTR("1/1/65537"), {"2001-01-01 00:00:00 (36892.000000)", kYearWraps}},
};

/// The calendar in the terms of the day count, on its own: the date from year 100 on by counting.
std::string DescribeDate(DATE date) {
  auto days = static_cast<long>(date);
  const long seconds = std::lround(std::fabs(date - static_cast<double>(days)) * 86400);
  long year = 1899;
  const auto daysOfYear = [](long y) {
    return y % 4 == 0 && (y % 100 != 0 || y % 400 == 0) ? 366 : 365;
  };
  for (days += 363; days < 0;) days += daysOfYear(--year);
  for (; days >= daysOfYear(year); ++year) days -= daysOfYear(year);
  const int lengths[] = {31, daysOfYear(year) - 337, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  int month = 0;
  for (; days >= lengths[month]; ++month) days -= lengths[month];
  char text[80];
  std::snprintf(text, sizeof text, "%04ld-%02d-%02ld %02ld:%02ld:%02ld (%.6f)", year, month + 1,
                days + 1, seconds / 3600, seconds / 60 % 60, seconds % 60, date);
  return text;
}

std::string CurrentYear() {
  const std::time_t now = std::time(nullptr);
  return std::to_string(std::localtime(&now)->tm_year + 1900);
}

std::string Expected(LPCWSTR text, const char* date) {
  if (const auto found = kDifferences.find(text); kIsWine && found != kDifferences.end()) {
    return found->second.wine;
  }
  if (date == nullptr) return kMismatch;
  std::string expected(date);
  if (expected.compare(0, 4, "YEAR") == 0) expected.replace(0, 4, CurrentYear());
  return expected;
}

std::string FromText(WideView text) {
  DATE date = 0;
  const HRESULT result =
      VarDateFromStr(const_cast<OLECHAR*>(WideString(text).c_str()), 0x400, 0, &date);
  return SUCCEEDED(result) ? DescribeDate(date) : DescribeResult(result);
}

std::string Converted(WideView text, VARTYPE type) {
  const Variant source(text);
  Variant out;
  const HRESULT result =
      VariantChangeType(&out.Get(), const_cast<VARIANT*>(&source.Get()), 0, type);
  if (FAILED(result)) return DescribeResult(result);
  return type == VT_DATE ? DescribeDate(out.Get().date) : DescribeVariant(out.Get());
}

/// A row's date without its number, where the row has none.
std::string Cut(const std::string& date, const std::string& expected) {
  return expected.find('(') == std::string::npos ? date.substr(0, date.find(" (")) : date;
}

void ExpectDate(LPCWSTR text, const char* date) {
  const std::string expected = Expected(text, date);
  if (expected == kAnything) return;
  EXPECT_EQ(Cut(FromText(text), expected), expected) << DescribeText(text);
  EXPECT_EQ(Cut(Converted(text, VT_DATE), expected), expected) << DescribeText(text);
}

void ExpectConversions(const ConversionRow& row) {
  ExpectDate(row.text, row.date);
  const std::string truth = row.truth != nullptr ? "BOOL " + std::string(row.truth) : kMismatch;
  EXPECT_EQ(Converted(row.text, VT_BOOL), truth) << DescribeText(row.text);
  std::string number = kMismatch;
  if (row.number != nullptr) {
    number = std::strcmp(row.number, "OVERFLOW") == 0 ? "DISP_E_OVERFLOW"
                                                      : "I4 " + std::string(row.number);
  }
  EXPECT_EQ(Converted(row.text, VT_I4), number) << DescribeText(row.text);
}

TEST(DateText, ConvertsTextsOfEveryKind) {
  for (const ConversionRow& row : kConversions) ExpectConversions(row);
}

TEST(DateText, ConvertsTextsThatBeginWithT) {
  for (const ConversionRow& row : kConversionsOfT) ExpectConversions(row);
}

TEST(DateText, ReadsDatesInEveryOrderAndNothingElse) {
  for (const DateRow& row : kDates) ExpectDate(row.text, row.date);
}

TEST(DateText, DeclaresNoDifferenceThatNoRowHas) {
  std::size_t found = 0;
  for (const ConversionRow& row : kConversions) found += kDifferences.count(row.text);
  for (const ConversionRow& row : kConversionsOfT) found += kDifferences.count(row.text);
  for (const DateRow& row : kDates) found += kDifferences.count(row.text);
  EXPECT_EQ(found, kDifferences.size());
}

TEST(DateText, EndsAtTheFirstNul) {
  const WideView text(OLESTR("7/4/2009\0 and more"), 18);
  EXPECT_EQ(Converted(text, VT_DATE), "2009-07-04 00:00:00 (39998.000000)");
  EXPECT_EQ(Converted(WideView(OLESTR("\0007/4/2009"), 9), VT_DATE), kMismatch);
}

TEST(DateText, TakesNoOtherDigitsOrLetters) {
  for (const LPCWSTR text :
       {OLESTR("\u0667/\u0664/2009"), OLESTR("\uFF17/4/2009"), OLESTR("\U0001D7D5/4/2009"),
        OLESTR("7/4/\u06F22009"), OLESTR("\uFF2Aul 4 2009"), OLESTR("\u017Fep 4 2009"),
        OLESTR("7\u2044"
               "4\u20442009"),
        OLESTR("7\uFF0F4\uFF0F2009"), OLESTR("10\uFF1A11"), OLESTR("\u4E03/4/2009")}) {
    EXPECT_EQ(FromText(text), kMismatch) << DescribeText(text);
  }
}

TEST(DateText, RefusesHalvesOfSurrogates) {
  const OLECHAR halves[][12] = {{0xD835, '7', '/', '4', '/', '0', '9', 0},
                                {'7', 0xDFD5, '/', '4', '/', '0', '9', 0},
                                {'7', '/', '4', '/', '0', '9', 0xD800, 0},
                                {0xDC00, 0xD800, 0}};
  for (const OLECHAR* text : halves) EXPECT_EQ(FromText(text), kMismatch) << DescribeText(text);
}

TEST(DateText, GivesZeroForATextThatIsNoDate) {
  DATE date = 5;
  EXPECT_EQ(VarDateFromStr(const_cast<OLECHAR*>(OLESTR("abc")), 0x400, 0, &date),
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(date, 0);
}

TEST(DateText, RefusesANullText) {
  DATE date = 5;
  EXPECT_EQ(VarDateFromStr(nullptr, 0x400, 0, &date), DISP_E_TYPEMISMATCH);
}

}  // namespace
}  // namespace velandoc
