#include "hosts/text_encoding.h"

#include <gtest/gtest.h>

namespace velandoc {
namespace {

using std::string_literals::operator""s;

WideString Units(std::initializer_list<unsigned> units) {
  WideString text;
  for (const unsigned unit : units) text.push_back(static_cast<OLECHAR>(unit));
  return text;
}

TEST(TextEncoding, ConvertsWellFormedTextBothWays) {
  const struct {
    std::string bytes;
    WideString text;
  } kCases[] = {
      {"", {}},
      {"abc", Units({'a', 'b', 'c'})},
      {"a\0b"s, Units({'a', 0, 'b'})},
      {"\x7F\xC2\x80\xDF\xBF", Units({0x7F, 0x80, 0x7FF})},
      {"\xE0\xA0\x80\xEF\xBF\xBF", Units({0x800, 0xFFFF})},
      {"\xED\x9F\xBF\xEE\x80\x80", Units({0xD7FF, 0xE000})},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", Units({0xD800, 0xDC00, 0xDBFF, 0xDFFF})},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(WideFromUtf8(row.bytes), row.text) << row.bytes;
    EXPECT_EQ(Utf8FromWide(row.text), row.bytes) << row.bytes;
    EXPECT_TRUE(IsUtf8(row.bytes)) << row.bytes;
  }
}

TEST(TextEncoding, ReplacesWhatIsIllFormed) {
  const struct {
    std::string bytes;
    WideString text;
  } kCases[] = {
      {"\x80", Units({0xFFFD})},
      {"\xFF", Units({0xFFFD})},
      {"a\xC3", Units({'a', 0xFFFD})},
      {"\xC3z", Units({0xFFFD, 'z'})},
      {"\xC0\x80", Units({0xFFFD, 0xFFFD})},
      {"\xE0\x80\x80", Units({0xFFFD, 0xFFFD, 0xFFFD})},
      {"\xED\xA0\x80", Units({0xFFFD, 0xFFFD, 0xFFFD})},
      {"\xF4\x90\x80\x80", Units({0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD})},
      {"\xE2\x82", Units({0xFFFD, 0xFFFD})},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(WideFromUtf8(row.bytes), row.text) << row.bytes;
    EXPECT_FALSE(IsUtf8(row.bytes)) << row.bytes;
  }
}

TEST(TextEncoding, ReplacesUnpairedSurrogates) {
  EXPECT_EQ(Utf8FromWide(Units({'a', 0xD800})), "a\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromWide(Units({0xDC00, 'a'})),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(Utf8FromWide(Units({0xDC00, 0xD800})), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromWide(Units({0xD800, 0xD800, 0xDC00})), "\xEF\xBF\xBD\xF0\x90\x80\x80");
}

}  // namespace
}  // namespace velandoc
