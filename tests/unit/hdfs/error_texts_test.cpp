#include "hdfs/error_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/scripted_error_services.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeText;
using ::testing::ElementsAre;
using testing::ScriptedErrorServices;

class ErrorTextsTest : public ::testing::Test {
 protected:
  std::string Message(DWORD code) { return DescribeText(ErrorMessage(static_cast<HRESULT>(code))); }

  ScriptedErrorServices m_services;
  PortScope<ErrorServices> m_scope{m_services};
};

TEST_F(ErrorTextsTest, TheSystemIsAskedForATextWithoutInserts) {
  m_services.texts[0x80004005] = OLESTR("100 %1 of it failed");
  EXPECT_EQ(Message(0x80004005), "100 %1 of it failed");
  EXPECT_THAT(m_services.calls, ElementsAre("FormatMessageW(0x1300, null, 0x80004005, 0x400)"));
}

TEST_F(ErrorTextsTest, OneLineEndIsCut) {
  const struct {
    LPCOLESTR text;
    const char* cut;
  } rows[] = {
      {OLESTR("words\r\n"), "words"},
      {OLESTR("words\n"), "words"},
      {OLESTR("words\r"), "words\\u000D"},
      {OLESTR("words\r\n\r\n"), "words\\u000D\\u000A"},
      {OLESTR("one\r\ntwo.\r\n"), "one\\u000D\\u000Atwo."},
      {OLESTR("\r\n"), ""},
      {OLESTR("a\n"), "a"},
      {OLESTR("\n"), "\\u000A"},  // one character is left as it is
      {OLESTR(""), ""},
  };
  for (const auto& row : rows) {
    m_services.texts[1] = row.text;
    EXPECT_EQ(Message(1), row.cut);
  }
}

TEST_F(ErrorTextsTest, ACodeWithoutATextIsANumber) {
  const struct {
    DWORD code;
    const char* text;
  } rows[] = {
      {0x80040200, "Unknown error 0x80040200"}, {0x80040201, "IDispatch error #1"},
      {0x80040300, "IDispatch error #256"},     {0x8004FFFF, "IDispatch error #65023"},
      {0x80050000, "Unknown error 0x80050000"}, {0x800401FF, "Unknown error 0x800401FF"},
      {0x2EFE, "Unknown error 0x2EFE"},         {0xFFFFFFFF, "Unknown error 0xFFFFFFFF"},
  };
  for (const auto& row : rows) {
    m_services.texts[row.code] = std::nullopt;
    EXPECT_EQ(Message(row.code), row.text);
  }
}

// Those that every system here knows; some lack words for E_POINTER and its like.
TEST_F(ErrorTextsTest, TheSystemHasWordsForTheUsualResults) {
  for (const DWORD code : {0x80004001U, 0x80004005U, 0x80070005U, 0x8007000EU, 0x80070057U}) {
    const std::string words = Message(code);
    EXPECT_FALSE(words.empty());
    EXPECT_NE(words.substr(0, 7), "Unknown") << std::hex << code;
    EXPECT_NE(words.back(), '\n');
  }
}

TEST_F(ErrorTextsTest, AModulesTextKeepsItsLineEnd) {
  m_services.texts[12029] = OLESTR("cannot connect\r\n");
  m_services.modules["wininet.dll"] = 0;
  EXPECT_EQ(
      DescribeText(GetModuleErrorText(12029, m_services.GetModuleHandleW(OLESTR("wininet.dll")))),
      "cannot connect\\u000D\\u000A");
  EXPECT_THAT(m_services.calls, ElementsAre("GetModuleHandleW(wininet.dll)",
                                            "FormatMessageW(0xb00, wininet.dll, 0x2efd, 0x400)"));
}

TEST_F(ErrorTextsTest, AModuleWithoutATextGivesNone) {
  m_services.texts[12029] = std::nullopt;
  EXPECT_EQ(DescribeText(GetModuleErrorText(12029, nullptr)), "");
}

TEST_F(ErrorTextsTest, WinInetHasWordsForWhatItReports) {
  const HMODULE module = m_services.GetModuleHandleW(OLESTR("wininet.dll"));
  ASSERT_NE(module, nullptr);
  for (const DWORD code : {12002U, 12007U, 12029U, 12030U, 12037U, 12038U}) {
    EXPECT_THAT(DescribeText(GetModuleErrorText(code, module)),
                ::testing::EndsWith("\\u000D\\u000A"))
        << code;
  }
}

}  // namespace
}  // namespace velandoc
