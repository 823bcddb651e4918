#include "hosts/command/moment.h"

#include <gtest/gtest.h>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr Moment kSecond = 10'000'000;
constexpr Moment kDay = 86'400 * kSecond;
constexpr Moment k1970 = 11'644'473'600 * kSecond;

struct ReadCase {
  const char* text;
  const char* utc;  // null: no time
  const char* why;
};

TEST(Moment, ReadsTheTimesOfServers) {
  constexpr ReadCase kCases[] = {
      {"TR|20 Nov 2026 09:15:30 -0000", "2026-11-20 09:15:30 UTC", "as FrontPage servers write"},
      {"TW|09 Jul 2009 10:11:12 +0100", "2009-07-09 09:11:12 UTC", "ahead of UTC"},
      {"TW|31 Dec 2009 23:30:00 -0130", "2010-01-01 01:00:00 UTC", "behind UTC, across a year"},
      {"9 jul 2009 10:11:12", "2009-07-09 10:11:12 UTC", "no zone, one digit, any case"},
      {"Thu, 09 Jul 2009 10:11:12 +0000", "2009-07-09 10:11:12 UTC", "a weekday in front"},
      {"2026-03-31 00:00:00", "2026-03-31 00:00:00 UTC", "as rows have it"},
      {"2026-03-31T01:02:03Z", "2026-03-31 01:02:03 UTC", "as rows have it, too"},
      {"29 Feb 2000 00:00:00", "2000-02-29 00:00:00 UTC", "a leap day"},
      {"1 Jan 1601 00:00:00", "1601-01-01 00:00:00 UTC", "the first day"},
      {"29 Feb 1900 00:00:00", nullptr, "no leap year"},
      {"31 Apr 2009 00:00:00", nullptr, "no such day"},
      {"0 Apr 2009 00:00:00", nullptr, "no such day"},
      {"31 Dec 1600 00:00:00", nullptr, "before the beginning"},
      {"9 Jul 2009 24:00:00", nullptr, "no such hour"},
      {"9 Jul 2009 10:11:60", nullptr, "no such second"},
      {"9 Jul 2009 10:11:12 0000", nullptr, "a zone without a sign"},
      {"9 Jul 2009 10:11:12 +0060", nullptr, "a zone with 60 minutes"},
      {"9 Jul 2009 10:11:12 -0000 x", nullptr, "something behind"},
      {"9 Foo 2009 10:11:12", nullptr, "no such month"},
      {"2009-13-01 00:00:00", nullptr, "no such month"},
      {"", nullptr, "nothing"},
      {"TR|", nullptr, "letters alone"},
      {"tomorrow", nullptr, "words"},
  };
  for (const ReadCase& row : kCases) {
    const auto moment = ReadServerTime(WideFromUtf8(row.text));
    ASSERT_EQ(moment.has_value(), row.utc != nullptr) << row.text << ": " << row.why;
    if (row.utc != nullptr) {
      EXPECT_EQ(UtcText(*moment), row.utc) << row.why;
    }
  }
}

TEST(Moment, CountsFrom1601) {
  EXPECT_EQ(ReadServerTime(OLESTR("1 Jan 1601 00:00:01")), kSecond);
  EXPECT_EQ(ReadServerTime(OLESTR("1 Jan 1970 00:00:00")), k1970);
}

TEST(Moment, ShowsUtcToTheSecond) {
  EXPECT_EQ(UtcText(k1970 + kSecond - 1), "1970-01-01 00:00:00 UTC");
  EXPECT_EQ(IsoText(k1970), "1970-01-01T00:00:00Z");
  EXPECT_EQ(UtcText(-kSecond), "1600-12-31 23:59:59 UTC") << "before the beginning";
}

TEST(Moment, EveryDayOfFourCenturiesComesBack) {
  for (Moment day = 0; day < 146'097 + 365; ++day) {
    const std::string text = IsoText(day * kDay);
    ASSERT_EQ(ReadServerTime(WideFromUtf8(text)), day * kDay) << text;
  }
}

TEST(Moment, LocalTimeIsUtcAndAZone) {
  const Moment moment = k1970 + 500 * kDay;
  const std::string local = LocalText(moment);
  ASSERT_EQ(local.size(), std::string("1971-05-16 00:00:00 +0000").size()) << local;
  // By its zone it leads back to the same second.
  const Moment shown = ReadServerTime(WideFromUtf8(local.substr(0, 19))).value_or(0);
  const int hours = std::stoi(local.substr(21, 2));
  const int minutes = std::stoi(local.substr(23, 2));
  const Moment ahead = (hours * 3600 + minutes * 60) * kSecond;
  EXPECT_EQ(local[20] == '-' ? shown + ahead : shown - ahead, moment) << local;
  const std::string iso = IsoLocalText(moment);
  EXPECT_EQ(iso.substr(0, 19), local.substr(0, 10) + "T" + local.substr(11, 8));
  EXPECT_EQ(iso[22], ':');
}

}  // namespace
}  // namespace velandoc
