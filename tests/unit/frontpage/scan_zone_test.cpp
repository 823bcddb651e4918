#include "frontpage/scan_zone.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace velandoc {
namespace {

struct Row {
  const char* in;
  int filled;
  char sign;
  int hours;
  int minutes;
  const char* why;
};

const Row kRows[] = {
    {"+0100", 3, '+', 1, 0, "as a mail header has it"},
    {"-0730", 3, '-', 7, 30, "a sign of its own"},
    {"+1030", 3, '+', 10, 30, "decimal, the second number as well"},
    {"+0530", 3, '+', 5, 30, "octal, which does not show"},
    {"+0800", 3, '+', 0, 80, "8 is no octal digit: it is the first of the next number"},
    {"-0930", 3, '-', 0, 93, "nor is 9, and the last digit is left"},
    {"+1008", 3, '+', 10, 0, "in the second number it is left"},
    {"+0077", 3, '+', 0, 77, "no octal number without a leading zero"},
    {"+9999", 3, '+', 99, 99, "no limits"},
    {"+-1-2", 3, '+', -1, -2, "a sign takes one of the two places"},
    {"++1+2", 3, '+', 1, 2, "either sign"},
    {"+-10", 3, '+', -1, 0, "two places with the sign"},
    {"+ 1 2", 3, '+', 1, 2, "blanks are passed over"},
    {"+\t1\n2", 3, '+', 1, 2, "so is all white space"},
    {"+ 12", 2, '+', 12, -1, "without being counted"},
    {"+1", 2, '+', 1, -1, "the end"},
    {"+", 1, '+', -1, -1, "nothing but the sign"},
    {"", 0, '\0', -1, -1, "nothing"},
    {"x0100", 3, 'x', 1, 0, "any unit is a sign"},
    {" 0100", 3, ' ', 1, 0, "a blank, too: it is not passed over"},
    {"+01:0", 2, '+', 1, -1, "a colon ends it"},
    {"+1:00", 2, '+', 1, -1, "wherever it stands"},
    {"+a000", 1, '+', -1, -1, "no digits"},
    {"+0a00", 2, '+', 0, -1, "no hexadecimal ones"},
    {"+--10", 1, '+', -1, -1, "two signs"},
    {"+- 10", 1, '+', -1, -1, "no blank behind the sign"},
    {"+0x10", 1, '+', -1, -1, "no room behind 0x"},
    {"+0X10", 1, '+', -1, -1, "in capitals"},
    {"+100x", 2, '+', 10, -1, "nor in the second number"},
    {"+-0x1", 2, '+', 0, -1, "cut behind the zero"},
    {"GMT+1", 1, 'G', -1, -1, "a name"},
};

ScannedZone Scan(const std::string& text, int& filled) {
  ScannedZone zone;
  filled = ScanZone(WideString(text.begin(), text.end()), zone);
  return zone;
}

TEST(ScanZone, ReadsSignHoursAndMinutes) {
  for (const Row& row : kRows) {
    int filled = -1;
    const ScannedZone zone = Scan(row.in, filled);
    EXPECT_EQ(filled, row.filled) << row.in << ": " << row.why;
    EXPECT_EQ(zone.sign, static_cast<OLECHAR>(row.sign)) << row.in << ": " << row.why;
    EXPECT_EQ(zone.hours, row.hours) << row.in << ": " << row.why;
    EXPECT_EQ(zone.minutes, row.minutes) << row.in << ": " << row.why;
  }
}

/// Whether one of the numbers meets "0x" with no room for a digit. C calls that no number; the
/// libraries of both homes take it for a zero.
bool MeetsBarePrefix(const std::string& text) { return text.find("0x") != std::string::npos; }

TEST(ScanZone, AgreesWithTheLibraryOnEveryShortText) {
  const std::string units = "01589+-x: \t";
  const std::size_t count = units.size();
  for (std::size_t i = 0; i < count * count * count * count; ++i) {
    const std::string text = {'+', units[i % count], units[i / count % count],
                              units[i / count / count % count],
                              units[i / count / count / count % count]};
    if (MeetsBarePrefix(text)) continue;
    char sign = 0;
    int hours = -1;
    int minutes = -1;
    // NOLINTNEXTLINE(cert-err34-c): what sscanf makes of a text is the question.
    const int expected = std::sscanf(text.c_str(), "%c%2i%2i", &sign, &hours, &minutes);
    int filled = -1;
    const ScannedZone zone = Scan(text, filled);
    ASSERT_EQ(filled, expected) << "'" << text << "'";
    ASSERT_EQ(zone.hours, hours) << "'" << text << "'";
    ASSERT_EQ(zone.minutes, minutes) << "'" << text << "'";
  }
}

TEST(ScanZone, KnowsNoDigitsBeyondAscii) {
  ScannedZone zone;
  EXPECT_EQ(ScanZone(OLESTR("+\u0660\u0661\u0660\u0660"), zone), 1);  // Arabic
  EXPECT_EQ(ScanZone(OLESTR("+\uFF10\uFF11\uFF10\uFF10"), zone), 1);  // full width
  EXPECT_EQ(ScanZone(OLESTR("+\u01311\u0131"), zone), 1);             // 0x131 cut to a byte is "1"
  EXPECT_EQ(ScanZone(OLESTR("+\u00A01\u30002"), zone), 1);            // nor white space
  EXPECT_EQ(zone.hours, -1);
}

TEST(ScanZone, KeepsTheWholeUnitOfTheSign) {
  ScannedZone zone;
  EXPECT_EQ(ScanZone(OLESTR("\u012B0100"), zone), 3);  // 0x12B cut to a byte is "+"
  EXPECT_EQ(zone.sign, 0x12B);
}

TEST(ScanZone, EndsAtANul) {
  ScannedZone zone;
  EXPECT_EQ(ScanZone(WideView(OLESTR("+1\0002"), 4), zone), 2);
  EXPECT_EQ(zone.hours, 1);
  EXPECT_EQ(ScanZone(WideView(OLESTR("\0+0100"), 6), zone), 0);
}

}  // namespace
}  // namespace velandoc
