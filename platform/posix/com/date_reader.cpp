#include "platform/posix/com/date_reader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <ctime>
#include <initializer_list>
#include <optional>

#include "platform/ascii_case.h"
#include "platform/posix/com/automation.h"
#include "platform/posix/com/calendar.h"
#include "platform/posix/com/date_text.h"
#include "platform/posix/com/wide_space.h"

namespace velandoc {
namespace {

constexpr std::int64_t kMaxYear = 9999;
// Greater numbers mean nothing in a date; they are held here.
constexpr std::int64_t kMaxNumber = 100000;
constexpr std::size_t kShortName = 3;
constexpr std::size_t kMaxParts = 3;  // of a date

constexpr std::array<WideView, 12> kMonths = {
    OLESTR("january"),   OLESTR("february"), OLESTR("march"),    OLESTR("april"),
    OLESTR("may"),       OLESTR("june"),     OLESTR("july"),     OLESTR("august"),
    OLESTR("september"), OLESTR("october"),  OLESTR("november"), OLESTR("december")};
constexpr std::array<WideView, 7> kWeekdays = {
    OLESTR("sunday"),   OLESTR("monday"), OLESTR("tuesday"), OLESTR("wednesday"),
    OLESTR("thursday"), OLESTR("friday"), OLESTR("saturday")};

enum class Kind { kEnd, kNumber, kMonth, kWeekday, kAm, kPm, kDateSign, kTimeSign, kComma, kBad };

struct Token {
  Kind kind;
  std::int64_t number;  // of a number or month
};

bool IsDigit(OLECHAR unit) { return unit >= '0' && unit <= '9'; }

bool IsLetter(OLECHAR unit) {
  const OLECHAR lower = ToAsciiLower(unit);
  return lower >= 'a' && lower <= 'z';
}

class Tokenizer {
 public:
  explicit Tokenizer(WideView text) : m_text(text) {}

  Token Next() {
    while (!m_text.empty() && IsWideSpace(m_text.front())) m_text.remove_prefix(1);
    if (m_text.empty()) return {Kind::kEnd, 0};
    const OLECHAR unit = m_text.front();
    if (IsDigit(unit)) return Number();
    if (IsLetter(unit)) return Name();
    m_text.remove_prefix(1);
    if (unit == '/' || unit == '-') return {Kind::kDateSign, 0};
    if (unit == ':' || unit == '.') return {Kind::kTimeSign, 0};
    return {unit == ',' ? Kind::kComma : Kind::kBad, 0};
  }

 private:
  Token Number() {
    std::int64_t number = 0;
    for (; !m_text.empty() && IsDigit(m_text.front()); m_text.remove_prefix(1)) {
      number = std::min(number * 10 + (m_text.front() - '0'), kMaxNumber);
    }
    return {Kind::kNumber, number};
  }

  /// Takes `word` if it comes next. What follows it may be a letter: "Tue7Jul", "10AMTue".
  bool Take(WideView word) {
    if (!EqualsIgnoringAsciiCase(m_text.substr(0, word.size()), word)) return false;
    m_text.remove_prefix(word.size());
    return true;
  }

  template <std::size_t size>
  std::int64_t TakeOneOf(const std::array<WideView, size>& names) {
    for (std::size_t i = 0; i < size; ++i) {
      if (Take(names[i]) || Take(names[i].substr(0, kShortName))) {
        return static_cast<std::int64_t>(i) + 1;
      }
    }
    return 0;
  }

  Token Name() {
    if (const std::int64_t month = TakeOneOf(kMonths)) return {Kind::kMonth, month};
    if (TakeOneOf(kWeekdays) != 0) return {Kind::kWeekday, 0};
    if (Take(OLESTR("am")) || Take(OLESTR("a"))) return {Kind::kAm, 0};
    if (Take(OLESTR("pm")) || Take(OLESTR("p"))) return {Kind::kPm, 0};
    return {Kind::kBad, 0};
  }

  WideView m_text;
};

/// The numbers and names of a date and a time, in the order of the text.
class DateReader {
 public:
  explicit DateReader(WideView text) : m_tokens(text) {}

  /// Takes the text apart; false if its parts cannot be those of a date.
  bool Read() {
    while (true) {
      const Token token = m_tokens.Next();
      if (token.kind == Kind::kEnd) break;
      if (!Accept(token)) return false;
      m_previous = token.kind;
      if (token.kind != Kind::kWeekday && token.kind != Kind::kComma) m_last = token.kind;
    }
    if (m_previous == Kind::kComma) return false;
    if (m_last == Kind::kDateSign || m_last == Kind::kTimeSign) return false;
    if (m_size == 1 || m_size > kMaxParts) return false;
    if (!m_hasTime) return m_size != 0;
    return IsTime() && (m_sizeBeforeTime == 0 || m_sizeBeforeTime == m_size);
  }

  std::optional<std::int64_t> Days(std::int64_t currentYear) const {
    if (m_size == 0) return 0;
    for (std::size_t i = 0; i < m_size; ++i) {
      if (!m_parts[i].isMonth) continue;
      return m_size == 2 ? DaysOfTwoWithName(m_parts[1 - i].number, m_parts[i].number, currentYear)
                         : DaysOfThreeWithName(i);
    }
    const std::int64_t a = m_parts[0].number;
    const std::int64_t b = m_parts[1].number;
    const std::int64_t c = m_parts[2].number;
    if (m_size == 2) {
      return FirstOf(
          {Day(currentYear, a, b), Day(currentYear, b, a), FirstDay(b, a), FirstDay(a, b)});
    }
    return FirstOf({Day(c, a, b), Day(a, b, c), Day(c, b, a), Day(a, c, b)});
  }

  std::int64_t Seconds() const {
    std::int64_t hour = m_time[0];
    // An hour of 13 or more is what it says, with AM as well.
    if (m_half == Kind::kPm && hour < 12) hour += 12;
    if (m_half == Kind::kAm && hour == 12) hour = 0;
    return hour * 3600 + m_time[1] * 60 + m_time[2];
  }

 private:
  struct Part {
    std::int64_t number;
    bool isMonth;
    bool isAfterSign;
  };
  using MaybeDays = std::optional<std::int64_t>;

  bool Accept(const Token& token) {
    switch (token.kind) {
      case Kind::kNumber:
        return m_last == Kind::kTimeSign ? AddTime(token.number) : AddPart(token.number, false);
      case Kind::kMonth:
        return m_last != Kind::kTimeSign && AddPart(token.number, true);
      case Kind::kAm:
      case Kind::kPm:
        if (m_last != Kind::kNumber || m_half != Kind::kEnd) return false;
        m_half = token.kind;
        return m_isInTime || BeginTime();
      case Kind::kDateSign:
        return !m_isInTime && m_previous != Kind::kWeekday &&
               (m_last == Kind::kNumber || m_last == Kind::kMonth);
      case Kind::kTimeSign:
        // More than one sign is one: "10::11".
        if (m_last == Kind::kTimeSign) return true;
        return m_last == Kind::kNumber && (m_isInTime || BeginTime());
      case Kind::kWeekday:
        return m_previous != Kind::kDateSign;
      case Kind::kComma:
        return true;
      default:
        return false;
    }
  }

  bool AddPart(std::int64_t number, bool isMonth) {
    if (m_size == m_parts.size()) return false;
    if (isMonth && std::any_of(m_parts.begin(), m_parts.begin() + m_size,
                               [](const Part& part) { return part.isMonth; })) {
      return false;
    }
    m_parts[m_size++] = {number, isMonth, m_last == Kind::kDateSign};
    m_isInTime = false;
    return true;
  }

  bool AddTime(std::int64_t number) {
    if (m_timeSize == m_time.size()) return false;
    m_time[m_timeSize++] = number;
    return true;
  }

  /// The number before turns out to be an hour.
  bool BeginTime() {
    if (m_hasTime || m_size == 0 || m_parts[m_size - 1].isAfterSign) return false;
    m_sizeBeforeTime = --m_size;
    m_hasTime = true;
    m_isInTime = true;
    return AddTime(m_parts[m_size].number);
  }

  bool IsTime() const { return m_time[0] < 24 && m_time[1] < 60 && m_time[2] < 60; }

  static MaybeDays Day(std::int64_t year, std::int64_t month, std::int64_t day) {
    year = WidenYear(year);
    if (year > kMaxYear || month < 1 || month > 12) return std::nullopt;
    if (day < 1 || day > DaysInMonth(year, month)) return std::nullopt;
    return CountOfDay({year, month, day});
  }
  static MaybeDays FirstDay(std::int64_t year, std::int64_t month) { return Day(year, month, 1); }

  static MaybeDays FirstOf(std::initializer_list<MaybeDays> readings) {
    for (const MaybeDays& reading : readings) {
      if (reading) return reading;
    }
    return std::nullopt;
  }

  static MaybeDays DaysOfTwoWithName(std::int64_t number, std::int64_t month,
                                     std::int64_t currentYear) {
    return FirstOf({Day(currentYear, month, number), FirstDay(number, month)});
  }

  MaybeDays DaysOfThreeWithName(std::size_t name) const {
    const std::int64_t month = m_parts[name].number;
    const std::int64_t first = m_parts[name == 0 ? 1 : 0].number;
    const std::int64_t second = m_parts[name == 2 ? 1 : 2].number;
    if (name == 0) return Day(second, month, first);
    if (name == 2) return Day(first, month, second);
    return FirstOf({Day(second, month, first), Day(first, month, second)});
  }

  Tokenizer m_tokens;
  Kind m_previous = Kind::kEnd;
  Kind m_last = Kind::kEnd;                   // the one before, weekdays and commas passed over
  std::array<Part, kMaxParts + 1> m_parts{};  // and an hour that shows itself as one later
  std::size_t m_size = 0;
  std::array<std::int64_t, 3> m_time{};
  std::size_t m_timeSize = 0;
  bool m_hasTime = false;
  bool m_isInTime = false;
  std::size_t m_sizeBeforeTime = 0;
  Kind m_half = Kind::kEnd;
};

}  // namespace

bool ReadDateText(WideView text, std::int64_t currentYear, DATE& date) {
  DateReader reader(text.substr(0, text.find(OLECHAR{0})));
  if (!reader.Read()) return false;
  const std::optional<std::int64_t> days = reader.Days(currentYear);
  if (!days) return false;
  date = DateOf({*days, reader.Seconds()});
  return true;
}

std::int64_t CurrentYear() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local.tm_year + 1900;
}

}  // namespace velandoc

STDAPI VarDateFromStr(const OLECHAR* text, LCID, ULONG, DATE* date) {
  if (date == nullptr) return E_INVALIDARG;
  if (text == nullptr) return DISP_E_TYPEMISMATCH;
  *date = 0;
  return velandoc::ReadDateText(text, velandoc::CurrentYear(), *date) ? S_OK : DISP_E_TYPEMISMATCH;
}
