#include "connection/escape_url.h"

#include <gtest/gtest.h>

#include <set>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::FaultCodePage;
using testing::Printable;

WideString Repeat(OLECHAR unit, std::size_t count) { return WideString(count, unit); }

std::string Escape(const WideString& text) {
  WideString escaped = OLESTR("as it was");
  if (EscapeUrl(text, escaped)) return Printable(escaped.c_str());
  EXPECT_EQ(escaped, OLESTR("as it was"));
  return "fails";
}

struct EscapeCase {
  const OLECHAR* in;
  const char* out;
  const char* why;
};

const EscapeCase kEscapeCases[] = {
    {OLESTR(""), "", "empty text escapes to empty text"},
    {OLESTR("http://h.test/a/b"), "http://h.test/a/b", "slash and colon are safe"},
    {OLESTR("/a b"), "/a%20b", "a blank"},
    {OLESTR("/\t\n"), "/%09%0a", "two digits, lower case"},
    {OLESTR("/\u00e9"), "/%c3%a9", "UTF-8, lower case"},
    {OLESTR("/\u4e2d"), "/%e4%b8%ad", "three bytes"},
    {OLESTR("/\U0001f600"), "/%f0%9f%98%80", "a surrogate pair is one character"},
    {OLESTR("/a%20b%"), "/a%20b%", "percent signs stay, at the end too"},
    {OLESTR("/%zz"), "/%zz", "whatever follows them"},
    {OLESTR("/a+b,c;d=e&f$g"), "/a%2bb%2cc%3bd%3de%26f%24g", "unsafe ASCII"},
    {OLESTR("/[a]{b}|^`<>\"\\"), "/%5ba%5d%7bb%7d%7c%5e%60%3c%3e%22%5c", "unsafe ASCII"},
    {OLESTR("/@"), "/%40", "a user's at sign too"},
    {OLESTR("/!'()*-._~"), "/!'()*-._~", "safe marks"},
    {OLESTR("/\u007f"), "/%7f", "above 126"},
    {OLESTR("/a b?c d"), "/a%20b?c d", "nothing is escaped behind ?"},
    {OLESTR("/a b#c d"), "/a%20b#c d", "nothing is escaped behind #"},
    {OLESTR("/a?b[c]\"d\""), "/a?b[c]\"d\"", "nothing is escaped behind ?"},
    {OLESTR("?a b"), "?a b", "at the start"},
    {OLESTR("/?\u00e9"), "/?\\u00c3\\u00a9", "behind ? each byte of UTF-8 is a character"},
};

TEST(EscapeUrl, EscapesByTheTable) {
  for (const EscapeCase& test : kEscapeCases) {
    EXPECT_EQ(Escape(test.in), test.out) << Printable(test.in) << ": " << test.why;
  }
}

TEST(EscapeUrl, EachAsciiCodeHasItsClass) {
  const std::set<int> unsafe = {32, 34, 35, 36, 37, 38, 43, 44, 59,  60,  61,
                                62, 63, 64, 91, 92, 93, 94, 96, 123, 124, 125};
  ASSERT_EQ(unsafe.size(), 22U);
  for (int code = 0; code < 128; ++code) {
    const bool kept = code >= 32 && code <= 126 && unsafe.count(code) == 0;
    const bool exempt = code == '%' || code == '?' || code == '#';
    WideString escaped;
    ASSERT_TRUE(EscapeUrl(WideString(1, static_cast<OLECHAR>(code)), escaped));
    EXPECT_EQ(escaped.size(), kept || exempt ? 1U : 3U) << code;
  }
}

TEST(EscapeUrl, ANulWithinTheTextIsEscaped) {
  EXPECT_EQ(Escape(WideString(OLESTR("a\0b"), 3)), "a%00b");
}

TEST(EscapeUrl, APlainUrlHasAtMost2082Characters) {
  EXPECT_EQ(Escape(Repeat('a', 2082)).size(), 2082U);
  EXPECT_EQ(Escape(Repeat('a', 2083)), "fails");
  EXPECT_EQ(Escape(Repeat('a', 2084)), "fails");
  EXPECT_EQ(Escape(Repeat('a', 2085)), "fails");
  EXPECT_EQ(Escape(Repeat('a', 1000000)), "fails");
}

TEST(EscapeUrl, AnEscapeStartsBefore2080) {
  EXPECT_EQ(Escape(Repeat('a', 2079) + OLESTR(" ")).size(), 2082U);
  EXPECT_EQ(Escape(Repeat('a', 2080) + OLESTR(" ")), "fails");
  EXPECT_EQ(Escape(Repeat('a', 2081) + OLESTR(" ")), "fails");
  EXPECT_EQ(Escape(Repeat('a', 2079) + OLESTR(" b")), "fails");
  EXPECT_EQ(Escape(Repeat(' ', 694)).size(), 2082U);
  EXPECT_EQ(Escape(Repeat(' ', 695)), "fails");
}

TEST(EscapeUrl, TheTailCountsToo) {
  EXPECT_EQ(Escape(Repeat('a', 1000) + OLESTR("?") + Repeat(' ', 1081)).size(), 2082U);
  EXPECT_EQ(Escape(Repeat('a', 1000) + OLESTR("?") + Repeat(' ', 1082)), "fails");
  EXPECT_EQ(Escape(Repeat('a', 2081) + OLESTR("?")).size(), 2082U);
  EXPECT_EQ(Escape(Repeat('a', 2082) + OLESTR("?")), "fails");
}

TEST(EscapeUrl, TheTailCountsInUtf8) {
  // Two bytes each: 1 + 2 * 1040 = 2081, and one more is too many.
  WideString escaped;
  ASSERT_TRUE(EscapeUrl(OLESTR("?") + Repeat(0xE9, 1040), escaped));
  EXPECT_EQ(escaped.size(), 2081U);
  EXPECT_FALSE(EscapeUrl(OLESTR("?") + Repeat(0xE9, 1041), escaped));
  // Does not even fit the conversion's buffer.
  EXPECT_FALSE(EscapeUrl(OLESTR("?") + Repeat(0x4E2D, 2000), escaped));
}

TEST(EscapeUrl, AFailedConversionFails) {
  FaultCodePage fault(SystemPort<CodePage>(), 1);
  PortScope<CodePage> scope(fault);
  EXPECT_EQ(Escape(OLESTR("http://h/")), "fails");
  EXPECT_EQ(fault.Count(), 1);
  EXPECT_EQ(Escape(OLESTR("")), "") << "nothing to convert";
}

TEST(EscapeUrl, InputAndOutputMayBeOneString) {
  WideString text = OLESTR("/a b");
  ASSERT_TRUE(EscapeUrl(text, text));
  EXPECT_EQ(text, OLESTR("/a%20b"));
}

}  // namespace
}  // namespace velandoc
