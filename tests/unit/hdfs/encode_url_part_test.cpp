#include "hdfs/encode_url_part.h"

#include <gtest/gtest.h>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::FaultCodePage;
using testing::Printable;

std::string Encode(WideView text, bool keepNonAscii) {
  return Printable(EncodeUrlPart(text, keepNonAscii).c_str());
}

TEST(EncodeUrlPart, LettersDigitsAndThreeCharactersPass) {
  const WideString all =
      OLESTR("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz./:");
  EXPECT_EQ(EncodeUrlPart(all, true), all);
  EXPECT_EQ(EncodeUrlPart(all, false), all);
}

TEST(EncodeUrlPart, EveryOtherUnitBelow128IsEscapedWithoutPadding) {
  for (OLECHAR unit = 0; unit < 128; ++unit) {
    const bool passes = (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'Z') ||
                        (unit >= 'a' && unit <= 'z') || unit == '.' || unit == '/' || unit == ':';
    if (passes) continue;
    char expected[8];
    std::snprintf(expected, sizeof(expected), "%%%x", static_cast<unsigned>(unit));
    EXPECT_EQ(Encode(WideView(&unit, 1), true), expected);
    EXPECT_EQ(Encode(WideView(&unit, 1), false), expected);
  }
  EXPECT_EQ(Encode(OLESTR("-_~ %\t\n"), true), "%2d%5f%7e%20%25%9%a");
}

TEST(EncodeUrlPart, APathKeepsWhatIsNotAscii) {
  EXPECT_EQ(EncodeUrlPart(OLESTR("/\u00e9\u4e2d\U0001f600"), true),
            OLESTR("/\u00e9\u4e2d\U0001f600"));
}

TEST(EncodeUrlPart, AValueIsConvertedTwice) {
  // C3 A9 and E4 B8 AD, read in code page 1252.
  EXPECT_EQ(EncodeUrlPart(OLESTR("\u00e9"), false), OLESTR("\u00c3\u00a9"));
  EXPECT_EQ(EncodeUrlPart(OLESTR("\u4e2d"), false), OLESTR("\u00e4\u00b8\u00ad"));
}

TEST(EncodeUrlPart, ASurrogateOfAPairIsConvertedByItself) {
  // EF BF BD twice, which is how U+FFFD goes out.
  EXPECT_EQ(EncodeUrlPart(OLESTR("\U0001f600"), false),
            OLESTR("\u00ef\u00bf\u00bd\u00ef\u00bf\u00bd"));
}

TEST(EncodeUrlPart, AUnitThatDoesNotConvertIsLeftOut) {
  for (const int failAt : {1, 2}) {
    FaultCodePage fault(SystemPort<CodePage>(), failAt);
    PortScope<CodePage> scope(fault);
    EXPECT_EQ(Encode(OLESTR("a\u00e9b"), false), "ab");
  }
}

}  // namespace
}  // namespace velandoc
