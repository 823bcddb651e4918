#include "connection/utf8.h"

#include <gtest/gtest.h>

#include "connection/text_to_integer.h"
#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::FaultCodePage;
using testing::Printable;

struct Utf8Case {
  const OLECHAR* wide;
  const char* narrow;
  const char* why;
};

const Utf8Case kUtf8Cases[] = {
    {OLESTR("abc"), "abc", "ASCII"},
    {OLESTR("\u00e9"), "\xC3\xA9", "two bytes"},
    {OLESTR("\u4e2d"), "\xE4\xB8\xAD", "three bytes"},
    {OLESTR("\U0001f600"), "\xF0\x9F\x98\x80", "a surrogate pair"},
    {OLESTR("a\r\nb\t"), "a\r\nb\t", "controls are text"},
    {OLESTR(""), "", "empty"},
};

TEST(Utf8, ConvertsBothWays) {
  for (const Utf8Case& test : kUtf8Cases) {
    EXPECT_EQ(ToUtf8(test.wide), test.narrow) << test.why;
    EXPECT_EQ(FromUtf8(test.narrow), test.wide) << test.why;
  }
}

TEST(Utf8, NullIsEmpty) {
  EXPECT_EQ(ToUtf8(nullptr), "");
  EXPECT_EQ(FromUtf8(nullptr), OLESTR(""));
}

TEST(Utf8, WhatIsIllFormedBecomesTheReplacementCharacter) {
  const OLECHAR lone[] = {'a', 0xD800, 'b', 0};
  EXPECT_EQ(ToUtf8(lone),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(Printable(FromUtf8("a\xFF"
                               "b")
                          .c_str()),
            "a\\ufffdb");
}

TEST(Utf8, LongTextIsConvertedWhole) {
  const WideString wide(100000, 0x4E2D);
  const NarrowString narrow = ToUtf8(wide.c_str());
  EXPECT_EQ(narrow.size(), 300000U);
  EXPECT_EQ(FromUtf8(narrow.c_str()), wide);
}

TEST(Utf8, AFailedConversionIsEmpty) {
  FaultCodePage first(SystemPort<CodePage>(), 1);
  PortScope<CodePage> scope(first);
  EXPECT_EQ(ToUtf8(OLESTR("abc")), "");
  FaultCodePage second(SystemPort<CodePage>(), 1);
  PortScope<CodePage> inner(second);
  EXPECT_EQ(FromUtf8("abc"), OLESTR(""));
}

TEST(Utf8, EmptyTextIsNotConverted) {
  FaultCodePage fault(SystemPort<CodePage>(), 0);
  PortScope<CodePage> scope(fault);
  EXPECT_EQ(ToUtf8(OLESTR("")), "");
  EXPECT_EQ(FromUtf8(""), OLESTR(""));
  EXPECT_EQ(fault.Count(), 0);
}

TEST(TextToInteger, ReadsLeadingDigits) {
  const struct {
    const OLECHAR* in;
    std::int32_t out;
  } cases[] = {
      {OLESTR("200"), 200},
      {OLESTR(""), 0},
      {OLESTR("x"), 0},
      {OLESTR("12x3"), 12},
      {OLESTR(" \t\n\v\f\r7"), 7},
      {OLESTR("+7"), 7},
      {OLESTR("-7"), -7},
      {OLESTR("- 7"), 0},
      {OLESTR("-"), 0},
      {OLESTR("007"), 7},
      {OLESTR("2147483647"), 2147483647},
      {OLESTR("2147483648"), 2147483647},
      {OLESTR("-2147483648"), -2147483647 - 1},
      {OLESTR("-2147483649"), -2147483647 - 1},
      {OLESTR("999999999999999999999999999"), 2147483647},
      {OLESTR("\u0661"), 0},
  };
  for (const auto& test : cases) EXPECT_EQ(TextToInteger(test.in), test.out) << Printable(test.in);
}

}  // namespace
}  // namespace velandoc
