#include "hosts/command/doc_columns.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "hosts/command/visible_text.h"

namespace velandoc {
namespace {

CFieldRecord Column(WideView name, WideView type, WideView value, bool required = false) {
  CFieldRecord field;
  field.m_name = name;
  field.m_displayName = name;
  field.m_type = type;
  field.m_value = value;
  field.m_required = required;
  return field;
}

using Parts = std::vector<WideString>;

TEST(DocColumns, SeveralValuesStandBetweenSeparators) {
  const auto parts = [](WideView value) {
    return ValueParts(Column(OLESTR("A"), OLESTR("MultiChoice"), value));
  };
  EXPECT_EQ(parts(OLESTR(";#East;#West;#")), (Parts{OLESTR("East"), OLESTR("West")}));
  EXPECT_EQ(parts(OLESTR("East;#West")), (Parts{OLESTR("East"), OLESTR("West")}));
  EXPECT_EQ(parts(OLESTR("East")), (Parts{OLESTR("East")}));
  EXPECT_EQ(parts(OLESTR(";#")), Parts{});
  EXPECT_EQ(parts(OLESTR("")), Parts{});
}

TEST(DocColumns, OtherValuesStayWhole) {
  EXPECT_EQ(ValueParts(Column(OLESTR("A"), OLESTR("Text"), OLESTR("a;#b"))),
            (Parts{OLESTR("a;#b")}));
}

TEST(DocColumns, RequiredAndEmptyIsMissing) {
  EXPECT_TRUE(IsMissing(Column(OLESTR("A"), OLESTR("Text"), OLESTR(""), true)));
  EXPECT_FALSE(IsMissing(Column(OLESTR("A"), OLESTR("Text"), OLESTR("x"), true)));
  EXPECT_FALSE(IsMissing(Column(OLESTR("A"), OLESTR("Text"), OLESTR(""), false)));
}

FieldList Sample() {
  CFieldRecord choice = Column(OLESTR("Status"), OLESTR("Choice"), OLESTR(""), true);
  choice.m_choices = {OLESTR("Draft"), OLESTR("Final")};
  return {Column(OLESTR("Title"), OLESTR("Text"), OLESTR("a\nb")), choice};
}

TEST(DocColumns, RowsHaveAHeading) {
  EXPECT_EQ(AlignRows(ColumnRows(Sample(), true)),
            "NAME    SHOWN AS  TYPE                   REQUIRED  VALUE\n"
            "Title   Title     Text                   no        a\\nb\n"
            "Status  Status    Choice (Draft, Final)  yes       missing\n");
  EXPECT_EQ(AlignRows(ColumnRows({}, true)), "none\n");
}

TEST(DocColumns, WithoutARowNoValueIsKnown) {
  EXPECT_EQ(ColumnRows(Sample(), false)[2].back(), "not known");
  EXPECT_FALSE(ColumnsJson(Sample(), false)[1]["missing"]);
  EXPECT_TRUE(ColumnsJson(Sample(), true)[1]["missing"]);
}

TEST(DocColumns, JsonHasTheServersTexts) {
  const auto json = ColumnsJson(Sample(), true);
  EXPECT_EQ(json[0]["value"], "a\nb");
  EXPECT_EQ(json[1]["choices"], nlohmann::ordered_json({"Draft", "Final"}));
}

}  // namespace
}  // namespace velandoc
