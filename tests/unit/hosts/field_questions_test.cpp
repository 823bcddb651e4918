#include "hosts/command/field_questions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>

#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

class FieldQuestions : public ::testing::Test {
 protected:
  static CFieldRecord Field(const char* name, const char* type, const char* value,
                            bool required = false, std::list<WideString> choices = {}) {
    CFieldRecord field;
    field.m_name = WideFromUtf8(name);
    field.m_displayName = field.m_name + OLESTR(" of it");
    field.m_type = WideFromUtf8(type);
    field.m_value = WideFromUtf8(value);
    field.m_required = required;
    field.m_choices = std::move(choices);
    return field;
  }
  // The values with "|" between them, "none" if the input ended. All lines must be used.
  std::string Ask(const FieldList& fields, std::deque<std::string> lines, bool escape = false) {
    m_shown.clear();
    const auto values = AskFields(
        fields, escape, [this](const std::string& text) { m_shown += text; },
        [&]() -> std::optional<std::string> {
          if (lines.empty()) return std::nullopt;
          std::string line = std::move(lines.front());
          lines.pop_front();
          return line;
        });
    EXPECT_TRUE(lines.empty()) << lines.size() << " lines were not asked for";
    if (!values) return "none";
    std::string text;
    for (const WideString& value : *values) {
      text += (&value == &values->front() ? "" : "|") + Utf8FromWide(value);
    }
    return text;
  }

  const std::list<WideString> m_choices = {OLESTR("Draft"), OLESTR("In review"), OLESTR("Final")};
  std::string m_shown;
};

TEST_F(FieldQuestions, EachFieldIsShownWithItsValue) {
  EXPECT_EQ(Ask({Field("Title", "Text", "Plan", true), Field("Note", "Note", ""),
                 Field("Status", "Choice", "Final", true, m_choices),
                 Field("Tags", "MultiChoice", ";#Draft;#Final;#", false, m_choices)},
                {"", "", "", ""}),
            "Plan||Final|;#Draft;#Final;#");
  EXPECT_EQ(m_shown,
            "Title of it (required)\n"
            "  [Plan] > Note of it\n"
            "  > Status of it (required)\n"
            "  1     Draft\n"
            "  2     In review\n"
            "  3  *  Final\n"
            "  number [Final] > Tags of it\n"
            "  1  *  Draft\n"
            "  2     In review\n"
            "  3  *  Final\n"
            "  numbers [Draft, Final] > ");
}

TEST_F(FieldQuestions, ChoicesAreMadeByNumber) {
  const CFieldRecord one = Field("S", "Choice", "", false, m_choices);
  EXPECT_EQ(Ask({one}, {"2"}), "In review");
  EXPECT_EQ(Ask({one}, {" 3 "}), "Final");
  EXPECT_EQ(Ask({one}, {"4", "0", "-1", "Draft", "1 2", "99999999999999999999999", " ", "1"}),
            "Draft");
  EXPECT_THAT(m_shown, ::testing::HasSubstr("'4' is no number from 1 to 3"));
  EXPECT_THAT(m_shown, ::testing::HasSubstr("'Draft' is no number from 1 to 3"));
  EXPECT_THAT(m_shown, ::testing::HasSubstr("one number, please"));

  const CFieldRecord several = Field("M", "MultiChoice", ";#Draft;#", false, m_choices);
  EXPECT_EQ(Ask({several}, {"3, 1"}), "Draft;#Final") << "in the choices' order, as the page joins";
  EXPECT_EQ(Ask({several}, {"2 2"}), "In review");
  EXPECT_EQ(Ask({several}, {"-"}), "");
}

TEST_F(FieldQuestions, ARequiredValueIsInsistedOn) {
  const FieldList fields = {Field("Title", "Text", "", true),
                            Field("S", "Choice", "", true, m_choices)};
  EXPECT_EQ(Ask(fields, {"", "-", "x", "", "-", "1"}), "x|Draft");
  EXPECT_THAT(m_shown, ::testing::HasSubstr("a value is required"));
  EXPECT_EQ(Ask({Field("Title", "Text", "Plan", true)}, {"-", ""}), "Plan");
  EXPECT_EQ(Ask({Field("Title", "Text", "Plan")}, {"-"}), "");
}

TEST_F(FieldQuestions, AValueThatIsNoChoiceIsKeptAndATextOfNoChoicesTyped) {
  EXPECT_EQ(Ask({Field("S", "Choice", "Gone", false, m_choices)}, {""}), "Gone");
  EXPECT_EQ(Ask({Field("S", "Choice", "", false)}, {"free"}), "free");
  EXPECT_EQ(Ask({Field("L", "Lookup", "12;#Text")}, {""}), "12;#Text");
}

TEST_F(FieldQuestions, WhatAnUpdateCannotCarryIsAskedForAgain) {
  EXPECT_EQ(Ask({Field("T", "Text", "a & b")}, {"", "a < b", "a and b"}), "a and b");
  EXPECT_THAT(m_shown, ::testing::HasSubstr("--escape"));
  EXPECT_EQ(Ask({Field("T", "Text", "a & b")}, {""}, true), "a & b") << "escaped later";
  EXPECT_EQ(Ask({Field("T", "Text", "")}, {"\xff", "\x01", " ", "x"}, true), "x");
}

TEST_F(FieldQuestions, AnInputThatEndsGivesNothing) {
  EXPECT_EQ(Ask({Field("A", "Text", ""), Field("B", "Text", "")}, {"x"}), "none");
  EXPECT_EQ(Ask({}, {}), "");
}

}  // namespace
}  // namespace velandoc
