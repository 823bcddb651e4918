#include "hosts/command/visible_text.h"

#include <gtest/gtest.h>

namespace velandoc {
namespace {

struct VisibleCase {
  const char* in;
  const char* out;
  const char* why;
};

TEST(VisibleText, LeavesNothingThatSteersATerminal) {
  constexpr VisibleCase kCases[] = {
      {"plain", "plain", "stays"},
      {"\x1B[31mred", "\\x1B[31mred", "escape sequences"},
      {"a\nb\r\tc", "a\\nb\\r\\tc", "the usual ones by their letters"},
      {"\x07\x08\x7F", "\\x07\\x08\\x7F", "bell, backspace, delete"},
      {"\xC2\x9B"
       "31m",
       "\\x9B31m", "controls of the second block"},
      {"\xE2\x80\xAE"
       "exe.doc",
       "\\u202Eexe.doc", "direction overrides"},
      {"\xE2\x80\xA8", "\\u2028", "line separator"},
      {"C:\\n", "C:\\n", "a backslash stays"},
      {"\xE8\xA8\x88\xE7\x94\xBB \xF0\x9F\x98\x80", "\xE8\xA8\x88\xE7\x94\xBB \xF0\x9F\x98\x80",
       "all else stays"},
      {"\xFF", "\xEF\xBF\xBD", "ill-formed bytes are replaced"},
  };
  for (const VisibleCase& row : kCases) {
    EXPECT_EQ(VisibleText(std::string_view(row.in)), row.out) << row.why;
  }
  EXPECT_EQ(VisibleText(std::string_view("a\0b", 3)), "a\\x00b");
}

TEST(VisibleText, CountsColumns) {
  EXPECT_EQ(DisplayWidth("abc"), 3U);
  EXPECT_EQ(DisplayWidth("\xE8\xA8\x88\xE7\x94\xBB"), 4U) << "East Asian characters are wide";
  EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1U) << "a combining accent takes no column";
  EXPECT_EQ(DisplayWidth("\xF0\x9F\x98\x80"), 2U) << "beyond the basic plane";
}

TEST(VisibleText, AlignsRowsOfAnyLength) {
  EXPECT_EQ(AlignRows({{"a", "b"}, {"long", "c", "d"}, {"\xE8\xA8\x88", "e"}, {}}, 1),
            " a     b\n"
            " long  c  d\n"
            " \xE8\xA8\x88    e\n"
            "\n");
  EXPECT_EQ(AlignRows({}), "");
}

TEST(VisibleText, CutsNothingAndPadsNoLastCell) {
  const std::string wide(5000, 'x');
  EXPECT_EQ(AlignRows({{"a", wide}, {"b", ""}}), "a  " + wide + "\nb\n");
}

TEST(VisibleText, WritesHexadecimalDigits) {
  EXPECT_EQ(HexText(0, 2), "00");
  EXPECT_EQ(HexText(0xAB, 4), "00AB");
  EXPECT_EQ(HexText(0x12345, 4), "12345");
}

}  // namespace
}  // namespace velandoc
