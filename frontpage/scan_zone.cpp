#include "frontpage/scan_zone.h"

namespace velandoc {
namespace {

constexpr std::size_t kWidth = 2;

// As in the C locale: no unit beyond ASCII is white space or a digit.
bool IsSpace(OLECHAR unit) { return unit == ' ' || (unit >= '\t' && unit <= '\r'); }

/// The value of a digit of the base, or -1.
int DigitOf(OLECHAR unit, int base) {
  return unit >= '0' && unit < static_cast<OLECHAR>('0' + base) ? unit - '0' : -1;
}

/// "%2i": takes what it reads from `text`.
bool ScanNumber(WideView& text, int& number) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  WideView field = text.substr(0, kWidth);
  bool isNegative = false;
  if (!field.empty() && (field.front() == '+' || field.front() == '-')) {
    isNegative = field.front() == '-';
    field.remove_prefix(1);
  }
  if (field.empty() || DigitOf(field.front(), 10) < 0) return false;
  if (field.size() == 2 && field[0] == '0' && (field[1] == 'x' || field[1] == 'X')) return false;
  const int base = field.front() == '0' ? 8 : 10;
  int value = 0;
  for (; !field.empty() && DigitOf(field.front(), base) >= 0; field.remove_prefix(1)) {
    value = value * base + DigitOf(field.front(), base);
  }
  number = isNegative ? -value : value;
  text.remove_prefix(static_cast<std::size_t>(field.data() - text.data()));
  return true;
}

}  // namespace

int ScanZone(WideView text, ScannedZone& zone) {
  text = text.substr(0, text.find(OLECHAR{0}));
  if (text.empty()) return 0;
  zone.sign = text.front();
  text.remove_prefix(1);
  if (!ScanNumber(text, zone.hours)) return 1;
  return ScanNumber(text, zone.minutes) ? 3 : 2;
}

}  // namespace velandoc
