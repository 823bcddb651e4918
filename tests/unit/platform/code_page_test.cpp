// The conversions that both homes must agree on; on Windows they are the system's.
#include "platform/code_page.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/text.h"
#include "platform/wininet.h"

namespace velandoc::test {
namespace {

CodePage& Port() { return CurrentPort<CodePage>(); }
// Both ports share the thread's last error.
DWORD LastError() { return CurrentPort<WinInet>().GetLastError(); }

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

constexpr UINT kWindows1252 = 1252;

WideString Wide(UINT codePage, std::string_view bytes) {
  WCHAR buffer[64];
  const int count = Port().MultiByteToWideChar(codePage, 0, bytes.data(),
                                               static_cast<int>(bytes.size()), buffer, 64);
  return WideString(buffer, static_cast<std::size_t>(count));
}

std::string Bytes(UINT codePage, WideView text) {
  char buffer[64];
  const int count = Port().WideCharToMultiByte(
      codePage, 0, text.data(), static_cast<int>(text.size()), buffer, 64, nullptr, nullptr);
  return std::string(buffer, static_cast<std::size_t>(count));
}

TEST(CodePage, ConvertsUtf8BothWays) {
  struct Case {
    LPCWSTR wide;
    const char* bytes;
  };
  for (const Case& row :
       {Case{OLESTR("plain"), "plain"}, Case{OLESTR("\u00e9\u20ac"), "\xC3\xA9\xE2\x82\xAC"},
        Case{OLESTR("\U0001F600"), "\xF0\x9F\x98\x80"},
        Case{OLESTR("\U0010FFFF"), "\xF4\x8F\xBF\xBF"},
        Case{OLESTR("\u07ff\u0800\uffff"), "\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        Case{OLESTR("sixteen letters and\u00e9more than that"),
             "sixteen letters and\xC3\xA9more than that"}}) {
    EXPECT_EQ(Bytes(CP_UTF8, row.wide), row.bytes);
    EXPECT_EQ(Wide(CP_UTF8, row.bytes), row.wide);
  }
}

TEST(CodePage, ReplacesEachIllFormedPartOnce) {
  struct Case {
    std::string_view bytes;
    LPCWSTR wide;
    const char* why;
    // Wine takes two bytes for one part here. Empty: no difference.
    LPCWSTR wine = OLESTR("");
  };
  for (const Case& row : {
           Case{"a\x80z", OLESTR("a\uFFFDz"), "a stray trail"},
           Case{"\xC0\x80", OLESTR("\uFFFD\uFFFD"), "an overlong NUL"},
           Case{"\xE2\x82", OLESTR("\uFFFD"), "cut behind the second byte"},
           Case{"\xE2\x82z", OLESTR("\uFFFDz"), "cut, then a letter"},
           Case{"\xF0\x9F\x98", OLESTR("\uFFFD"), "cut behind the third byte"},
           Case{"\xED\xA0\x80", OLESTR("\uFFFD\uFFFD\uFFFD"), "a surrogate",
                OLESTR("\uFFFD\uFFFD")},
           Case{"\xF5\x80", OLESTR("\uFFFD\uFFFD"), "no lead"},
           Case{"\xF4\x90\x80\x80", OLESTR("\uFFFD\uFFFD\uFFFD\uFFFD"), "above U+10FFFF",
                OLESTR("\uFFFD\uFFFD\uFFFD")},
           Case{"\xC3\xC3\xA9", OLESTR("\uFFFD\u00e9"), "a lead, then a character"},
           Case{"\xFF\xFE", OLESTR("\uFFFD\uFFFD"), "never valid"},
       }) {
    const bool differs = kIsWindows && *row.wine != 0;
    EXPECT_EQ(Wide(CP_UTF8, row.bytes), differs ? row.wine : row.wide) << row.why;
  }
}

TEST(CodePage, ReplacesAnUnpairedSurrogate) {
  const WCHAR high[] = {0xD83D, 0};
  const WCHAR low[] = {'a', 0xDE00, 'b', 0};
  const WCHAR swapped[] = {0xDE00, 0xD83D, 0};
  EXPECT_EQ(Bytes(CP_UTF8, high), "\xEF\xBF\xBD");
  EXPECT_EQ(Bytes(CP_UTF8, low),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(Bytes(CP_UTF8, swapped), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(CodePage, MeasuresCountsAndRefuses) {
  WCHAR wide[8];
  char bytes[8];
  // Only measured.
  EXPECT_EQ(Port().MultiByteToWideChar(CP_UTF8, 0, "\xC3\xA9x", 3, nullptr, 0), 2);
  EXPECT_EQ(
      Port().WideCharToMultiByte(CP_UTF8, 0, OLESTR("\u00e9x"), 2, nullptr, 0, nullptr, nullptr),
      3);
  // -1 counts the terminator.
  EXPECT_EQ(Port().MultiByteToWideChar(CP_UTF8, 0, "abc", -1, wide, 8), 4);
  EXPECT_EQ(WideView(wide), OLESTR("abc"));
  EXPECT_EQ(Port().WideCharToMultiByte(CP_UTF8, 0, OLESTR("abc"), -1, bytes, 8, nullptr, nullptr),
            4);
  EXPECT_STREQ(bytes, "abc");
  // A NUL inside a counted text is a character.
  EXPECT_EQ(Port().MultiByteToWideChar(CP_UTF8, 0, "a\0b", 3, wide, 8), 3);
  EXPECT_EQ(WideString(wide, 3), WideString(OLESTR("a\0b"), 3));

  EXPECT_EQ(Port().MultiByteToWideChar(CP_UTF8, 0, "abc", 3, wide, 2), 0);
  EXPECT_EQ(LastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(Port().WideCharToMultiByte(CP_UTF8, 0, OLESTR("\u20ac"), 1, bytes, 2, nullptr, nullptr),
            0);
  EXPECT_EQ(LastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(Port().MultiByteToWideChar(CP_UTF8, 0, "abc", 0, wide, 8), 0);
  EXPECT_EQ(LastError(), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(Port().MultiByteToWideChar(64999, 0, "abc", 3, wide, 8), 0);
  EXPECT_EQ(LastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(CodePage, KeepsUndefinedBytesOfTheAnsiPage) {
  EXPECT_EQ(Wide(kWindows1252, "A\xE9\x80\x9F\xFF"), OLESTR("A\u00e9\u20ac\u0178\u00ff"));
  EXPECT_EQ(Bytes(kWindows1252, OLESTR("A\u00e9\u20ac\u0178\u00ff")), "A\xE9\x80\x9F\xFF");
  for (const unsigned byte : {0x81U, 0x8DU, 0x8FU, 0x90U, 0x9DU}) {
    const std::string one(1, static_cast<char>(byte));
    const WideString wide = Wide(kWindows1252, one);
    ASSERT_EQ(wide.size(), 1U);
    EXPECT_EQ(static_cast<unsigned>(wide[0]), byte);
    EXPECT_EQ(Bytes(kWindows1252, wide), one);
  }
  EXPECT_EQ(Bytes(kWindows1252, OLESTR("\u4e2d")), "?");
}

// The tests' Windows has 1252 for both, too.
TEST(CodePage, TheProcesssAnsiPageAndTheThreadsAre1252) {
  for (const UINT page : {UINT{CP_ACP}, UINT{CP_THREAD_ACP}}) {
    EXPECT_EQ(Wide(page, "A\xE9\x80\x9F\xFF"), OLESTR("A\u00e9\u20ac\u0178\u00ff")) << page;
    EXPECT_EQ(Bytes(page, OLESTR("A\u00e9\u20ac")), "A\xE9\x80") << page;
  }
}

}  // namespace
}  // namespace velandoc::test
