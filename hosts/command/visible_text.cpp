#include "hosts/command/visible_text.h"

#include <algorithm>
#include <span>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// Line and paragraph separator, marks and overrides of the writing direction.
constexpr Range kSteering[] = {
    {0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF},
};
// Shown in two columns. Rough where a terminal is rough too.
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};
constexpr Range kCombining[] = {
    {0x0300, 0x036F}, {0x200B, 0x200D}, {0x20D0, 0x20F0}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
};

bool IsIn(std::span<const Range> ranges, char32_t character) {
  return std::any_of(ranges.begin(), ranges.end(), [character](const Range& range) {
    return character >= range.first && character <= range.last;
  });
}

bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

std::string EscapeControl(char32_t character) {
  switch (character) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return "\\x" + HexText(character, 2);
  }
}

}  // namespace

bool CanSteer(char32_t character) { return IsControl(character) || IsIn(kSteering, character); }

std::string HexText(unsigned number, std::size_t digits) {
  std::string text;
  for (; number != 0 || text.size() < digits; number /= 16) {
    text.insert(text.begin(), "0123456789ABCDEF"[number % 16]);
  }
  return text;
}

std::string VisibleText(WideView text) {
  WideString kept;
  std::string shown;
  const auto flush = [&] {
    shown += Utf8FromWide(kept);
    kept.clear();
  };
  for (const OLECHAR unit : text) {
    const char32_t character = static_cast<char16_t>(unit);
    if (!CanSteer(character)) {
      kept.push_back(unit);
      continue;
    }
    flush();
    shown += IsControl(character) ? EscapeControl(character) : "\\u" + HexText(character, 4);
  }
  flush();
  return shown;
}

std::string VisibleText(std::string_view utf8) { return VisibleText(WideFromUtf8(utf8)); }

std::size_t DisplayWidth(std::string_view utf8) {
  const WideString text = WideFromUtf8(utf8);
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = static_cast<char16_t>(text[i]);
    if ((character & 0xFC00) == 0xD800 && i + 1 < text.size()) {
      character =
          0x10000 + ((character & 0x3FF) << 10) + (static_cast<char16_t>(text[++i]) & 0x3FF);
    }
    if (!IsIn(kCombining, character)) width += IsIn(kWide, character) ? 2 : 1;
  }
  return width;
}

std::string AlignRows(const std::vector<std::vector<std::string>>& rows, std::size_t indent) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    // The last cell is followed by nothing that it could push away.
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth(row[i]));
    }
  }
  std::string lines;
  for (const auto& row : rows) {
    std::string line(indent, ' ');
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += row[i];
      if (i + 1 < row.size()) line.append(widths[i] - DisplayWidth(row[i]) + 2, ' ');
    }
    line.resize(line.find_last_not_of(' ') + 1);
    lines += line + "\n";
  }
  return lines;
}

}  // namespace velandoc
