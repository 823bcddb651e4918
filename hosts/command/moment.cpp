#include "hosts/command/moment.h"

#include <array>
#include <cstdio>

#include "hosts/text_encoding.h"
#include "platform/ascii_case.h"
#include "platform/local_time.h"

namespace velandoc {
namespace {

constexpr Moment kSecond = 10'000'000;
constexpr Moment kMinute = 60 * kSecond;
constexpr Moment kDay = 24 * 60 * kMinute;

struct CivilDate {
  std::int64_t year;
  int month;  // from 1
  int day;    // from 1
};

// Days between 1 March of the year 0 and a day, counted in eras of 400 years of 146,097 days, each
// year beginning with March: the day of 29 February then ends a year.
constexpr std::int64_t DaysFromMarch(const CivilDate& date) {
  const std::int64_t year = date.year - (date.month <= 2 ? 1 : 0);
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t yearOfEra = year - era * 400;
  const int monthFromMarch = date.month > 2 ? date.month - 3 : date.month + 9;
  const std::int64_t dayOfYear = (153 * monthFromMarch + 2) / 5 + date.day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
}

constexpr std::int64_t kEpoch = DaysFromMarch({1601, 1, 1});

constexpr CivilDate DateOf(std::int64_t daysSince1601) {
  const std::int64_t days = daysSince1601 + kEpoch;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const std::int64_t dayOfEra = days - era * 146097;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const auto monthFromMarch = static_cast<int>((5 * dayOfYear + 2) / 153);
  CivilDate date{};
  date.day = static_cast<int>(dayOfYear) - (153 * monthFromMarch + 2) / 5 + 1;
  date.month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  date.year = yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0);
  return date;
}
static_assert(DateOf(0).year == 1601 && DateOf(0).month == 1 && DateOf(0).day == 1);

constexpr std::array<std::string_view, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                      "jul", "aug", "sep", "oct", "nov", "dec"};

/// Takes a text apart from its beginning.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : m_rest(text) {}

  bool AtEnd() const { return m_rest.empty(); }
  bool Take(char c) {
    if (!m_rest.starts_with(c)) return false;
    m_rest.remove_prefix(1);
    return true;
  }
  /// At least one digit and at most `most`.
  bool TakeNumber(std::size_t most, int& number) {
    std::size_t count = 0;
    number = 0;
    while (count < most && count < m_rest.size() && m_rest[count] >= '0' && m_rest[count] <= '9') {
      number = number * 10 + (m_rest[count++] - '0');
    }
    m_rest.remove_prefix(count);
    return count != 0;
  }
  /// "Thu, ", if it is there.
  void SkipWeekday() {
    if (m_rest.find(", ") == 3) m_rest.remove_prefix(5);
  }
  bool TakeMonth(int& month) {
    for (std::size_t i = 0; i < kMonths.size(); ++i) {
      if (EqualsIgnoringAsciiCase(WideFromUtf8(m_rest.substr(0, 3)), WideFromUtf8(kMonths[i]))) {
        month = static_cast<int>(i) + 1;
        m_rest.remove_prefix(3);
        return true;
      }
    }
    return false;
  }

 private:
  std::string_view m_rest;
};

struct Clock {
  int hour = 0;
  int minute = 0;
  int second = 0;
};

bool TakeClock(Scanner& scanner, Clock& clock) {
  return scanner.TakeNumber(2, clock.hour) && scanner.Take(':') &&
         scanner.TakeNumber(2, clock.minute) && scanner.Take(':') &&
         scanner.TakeNumber(2, clock.second) && clock.hour < 24 && clock.minute < 60 &&
         clock.second < 60;
}

/// " -0000" or nothing: how many minutes the time is ahead of UTC.
bool TakeZone(Scanner& scanner, int& ahead) {
  if (scanner.AtEnd()) return true;
  if (!scanner.Take(' ')) return false;
  const bool behind = scanner.Take('-');
  if (!behind && !scanner.Take('+')) return false;
  int digits = 0;
  if (!scanner.TakeNumber(4, digits) || digits % 100 >= 60) return false;
  ahead = digits / 100 * 60 + digits % 100;
  if (behind) ahead = -ahead;
  return true;
}

std::optional<Moment> Compose(const CivilDate& date, const Clock& clock, int ahead) {
  if (date.year < 1601 || date.month < 1 || date.month > 12 || date.day < 1) return std::nullopt;
  const std::int64_t days = DaysFromMarch(date) - kEpoch;
  const CivilDate again = DateOf(days);
  if (again.month != date.month || again.day != date.day) return std::nullopt;
  return days * kDay + (clock.hour * 60 + clock.minute - ahead) * kMinute + clock.second * kSecond;
}

std::optional<Moment> ReadRpcTime(std::string_view text) {
  Scanner scanner(text);
  CivilDate date{};
  Clock clock;
  int year = 0;
  int ahead = 0;
  scanner.SkipWeekday();
  if (!scanner.TakeNumber(2, date.day) || !scanner.Take(' ') || !scanner.TakeMonth(date.month) ||
      !scanner.Take(' ') || !scanner.TakeNumber(4, year) || !scanner.Take(' ') ||
      !TakeClock(scanner, clock) || !TakeZone(scanner, ahead) || !scanner.AtEnd()) {
    return std::nullopt;
  }
  date.year = year;
  return Compose(date, clock, ahead);
}

std::optional<Moment> ReadRowTime(std::string_view text) {
  Scanner scanner(text);
  CivilDate date{};
  Clock clock;
  int year = 0;
  if (!scanner.TakeNumber(4, year) || !scanner.Take('-') || !scanner.TakeNumber(2, date.month) ||
      !scanner.Take('-') || !scanner.TakeNumber(2, date.day) ||
      (!scanner.Take('T') && !scanner.Take(' ')) || !TakeClock(scanner, clock)) {
    return std::nullopt;
  }
  scanner.Take('Z');
  if (!scanner.AtEnd()) return std::nullopt;
  date.year = year;
  return Compose(date, clock, 0);
}

/// Date and clock of a moment, with `separator` between them.
std::string Shown(Moment moment, char separator) {
  std::int64_t days = moment / kDay;
  Moment rest = moment % kDay;
  if (rest < 0) {
    rest += kDay;
    --days;
  }
  const CivilDate date = DateOf(days);
  const auto seconds = static_cast<int>(rest / kSecond);
  char text[48] = {};
  std::snprintf(text, sizeof text, "%04lld-%02d-%02d%c%02d:%02d:%02d",
                static_cast<long long>(date.year), date.month, date.day, separator, seconds / 3600,
                seconds / 60 % 60, seconds % 60);
  return text;
}

/// "+0100", with `separator` between hours and minutes.
std::string ZoneText(int ahead, const char* separator) {
  const int minutes = ahead < 0 ? -ahead : ahead;
  char text[16] = {};
  std::snprintf(text, sizeof text, "%c%02d%s%02d", ahead < 0 ? '-' : '+', minutes / 60 % 100,
                separator, minutes % 60);
  return text;
}

}  // namespace

std::optional<Moment> ReadServerTime(WideView text) {
  const std::size_t bar = text.find('|');
  const std::string plain = Utf8FromWide(bar == text.npos ? text : text.substr(bar + 1));
  const std::optional<Moment> moment = ReadRpcTime(plain);
  return moment.has_value() ? moment : ReadRowTime(plain);
}

std::string UtcText(Moment moment) { return Shown(moment, ' ') + " UTC"; }

std::string IsoText(Moment moment) { return Shown(moment, 'T') + "Z"; }

std::string LocalText(Moment moment) {
  const std::optional<int> ahead = LocalMinutesAhead(moment);
  if (!ahead.has_value()) return UtcText(moment);
  return Shown(moment + *ahead * kMinute, ' ') + " " + ZoneText(*ahead, "");
}

std::string IsoLocalText(Moment moment) {
  const std::optional<int> ahead = LocalMinutesAhead(moment);
  if (!ahead.has_value()) return IsoText(moment);
  return Shown(moment + *ahead * kMinute, 'T') + ZoneText(*ahead, ":");
}

}  // namespace velandoc
