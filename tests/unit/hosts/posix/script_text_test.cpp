#include "hosts/script/script_text.h"

#include <gtest/gtest.h>

namespace velandoc {
namespace {

using std::string_literals::operator""s;

TEST(ScriptText, KeepsEveryUnitByItself) {
  for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const WideString text(1, static_cast<OLECHAR>(unit));
    ASSERT_EQ(WideFromEngine(EngineFromWide(text)), text) << static_cast<unsigned>(unit);
  }
}

TEST(ScriptText, TakesASurrogateForThreeBytesAndANulForOne) {
  EXPECT_EQ(EngineFromWide(u"\xD83D\xDE00"), "\xED\xA0\xBD\xED\xB8\x80");
  EXPECT_EQ(EngineFromWide(WideView(u"\0", 1)), "\0"s);
  EXPECT_EQ(EngineFromWide(u"\x7FF\x800"), "\xDF\xBF\xE0\xA0\x80");
}

TEST(ScriptText, ReadsFourByteCharactersFromOutside) {
  EXPECT_EQ(WideFromEngine("\xF0\x9F\x98\x80"), u"\xD83D\xDE00");
}

TEST(ScriptText, ReplacesBytesThatFitNowhere) {
  EXPECT_EQ(WideFromEngine("\xFF"
                           "a"),
            u"\xFFFD"
            u"a");
  EXPECT_EQ(WideFromEngine("\xE2\x82"), u"\xFFFD\xFFFD");
  EXPECT_EQ(WideFromEngine("\xC3"), u"\xFFFD");
}

}  // namespace
}  // namespace velandoc
