#include "fields/form_generator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/resources.h"
#include "tests/support/call_line.h"

#ifndef _WIN32
#define RT_HTML OLESTR("HTML")
#endif

namespace velandoc {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Printable;

// A page of plain text as bytes, so that a difference can be read.
std::string Text(const WideString& page) { return Printable(page.c_str()); }

WideString Wide(const std::string& ascii) { return WideString(ascii.begin(), ascii.end()); }

struct Column {
  const char* name;
  const char* displayName;
  const char* value;
  const char* type;
  std::list<WideString> choices = {};
  bool required = false;
};

CFieldRecord Record(const Column& column) {
  CFieldRecord record;
  record.m_name = Wide(column.name);
  record.m_displayName = Wide(column.displayName);
  record.m_value = Wide(column.value);
  record.m_type = Wide(column.type);
  record.m_choices = column.choices;
  record.m_required = column.required;
  return record;
}

FieldList Records(std::initializer_list<Column> columns) {
  FieldList records;
  for (const Column& column : columns) records.push_back(Record(column));
  return records;
}

const std::string kBegin =
    "<html><head>"
    "<style>body{font: 8pt sans-serif;} span{float: left;margin-right: 0.5em;}</style>"
    "</head><body>"
    "<div style='text-align: right;'><div style='color: red;display:inline;'>*&nbsp;</div> "
    "Required</div>"
    "<form name='shptform1' id='shptform1' method='post' action=''>";
const std::string kBreaks = "<br/><br/><br/>";

std::string End() {
  const NarrowString script = LoadFormScript();
  return "</form><script>" + Text(WideString(script.begin(), script.end())) +
         "</script></body></html>";
}

TEST(FormGenerator, WithoutFieldsThePageIsHeadLegendAnEmptyFormAndTheScript) {
  EXPECT_EQ(Text(BuildFieldsForm({})), kBegin + kBreaks + End());
}

TEST(FormGenerator, ListsAndTextBoxesComeBeforeAllCheckBoxes) {
  const WideString page = BuildFieldsForm(Records({
      {"Tags", "Tags of it", ";#A;#C;#", "MultiChoice", {OLESTR("A"), OLESTR("B"), OLESTR("C")}},
      {"Title", "Title", "Plan", "Text", {}, true},
      {"Status", "Status", "Final", "Choice", {OLESTR("Draft"), OLESTR("Final")}, true},
      {"Kinds", "Kinds", "", "MultiChoice", {OLESTR("One")}, true},
      {"Note", "Note", "", "Note"},
  }));
  EXPECT_EQ(
      Text(page),
      kBegin +
          "<span><label for='Title'>Title<span style='float: none;color: red'>*</span>:</label>"
          "<br/><input type='text' name='Title' value='Plan'></span>"
          "<span><label for='Status'>Status<span style='float: none;color: red'>*</span>:</label>"
          "<br/><select name='Status'><option value='Draft'>Draft</option>&nbsp;"
          "<option value='Final' selected>Final</option>&nbsp;</select></span>"
          "<span><label for='Note'>Note:</label><br/><input type='text' name='Note' value=''>"
          "</span>" +
          kBreaks +
          "<span style='width: 30%;'><label for='Tags'>Tags of it:</label><br/>"
          "<fieldset style='overflow:auto;height: 6em;'>"
          "<input type='checkbox' name='Tags' value='A' checked='1' />A<br/>"
          "<input type='checkbox' name='Tags' value='B' />B<br/>"
          "<input type='checkbox' name='Tags' value='C' checked='1' />C<br/></fieldset></span>"
          "<span style='width: 30%;'><label for='Kinds'>Kinds"
          "<span style='float: none;color: red'>*</span>:</label><br/>"
          "<fieldset style='overflow:auto;height: 6em;'>"
          "<input type='checkbox' name='Kinds' value='One' />One<br/></fieldset></span>" +
          End());
}

TEST(FormGenerator, EveryTypeButTheTwoIsATextBoxInAnyCase) {
  for (const char* type : {"", "Text", "choice", "CHOICE", "multichoice", "Choice ", "Lookup"}) {
    EXPECT_EQ(Text(BuildFieldsForm(Records({{"A", "a", "v", type, {OLESTR("v")}}}))),
              kBegin +
                  "<span><label for='A'>a:</label><br/><input type='text' name='A' value='v'>"
                  "</span>" +
                  kBreaks + End())
        << type;
  }
}

struct FragmentCase {
  Column column;
  const char* fragment;
  const char* why;
};

TEST(FormGenerator, TextBoxesShowTheValueAsItStands) {
  const FragmentCase cases[] = {
      {{"A", "a", "12;#Text", "Lookup"},
       "<span><label for='A'>a:</label><br/><input type='text' name='A' value='12;#Text'></span>",
       "a lookup keeps its number"},
      {{"A", "a", "it's <b> & \"c\"", "Text"},
       "<span><label for='A'>a:</label><br/><input type='text' name='A' value='it's <b> & "
       "\"c\"'></span>",
       "nothing is escaped"},
      {{"A", "a", "%s %d %%", "Text"},
       "<span><label for='A'>a:</label><br/><input type='text' name='A' value='%s %d %%'></span>",
       "a percent sign is text"},
      {{"it's", "<i>a</i> %s", "", "Text"},
       "<span><label for='it's'><i>a</i> %s:</label><br/><input type='text' name='it's' "
       "value=''></span>",
       "an apostrophe in a name closes its attribute early"},
      {{"", "", "", ""},
       "<span><label for=''>:</label><br/><input type='text' name='' value=''></span>",
       "a column of nothing"},
  };
  for (const FragmentCase& test : cases) {
    EXPECT_EQ(Text(BuildTextField(Record(test.column))), test.fragment) << test.why;
  }
}

TEST(FormGenerator, AListMarksTheValue) {
  const std::list<WideString> choices = {OLESTR("A"), OLESTR("b'<&%s"), OLESTR("A")};
  const FragmentCase cases[] = {
      {{"S", "s", "b'<&%s", "Choice", choices},
       "<span><label for='S'>s:</label><br/><select name='S'>"
       "<option value='A'>A</option>&nbsp;"
       "<option value='b'<&%s' selected>b'<&%s</option>&nbsp;"
       "<option value='A'>A</option>&nbsp;</select></span>",
       "unescaped, too"},
      {{"S", "s", "A", "Choice", choices},
       "<span><label for='S'>s:</label><br/><select name='S'>"
       "<option value='A' selected>A</option>&nbsp;"
       "<option value='b'<&%s'>b'<&%s</option>&nbsp;"
       "<option value='A' selected>A</option>&nbsp;</select></span>",
       "each choice that is the value"},
      {{"S", "s", "a", "Choice", choices},
       "<span><label for='S'>s:</label><br/><select name='S'>"
       "<option value='A'>A</option>&nbsp;"
       "<option value='b'<&%s'>b'<&%s</option>&nbsp;"
       "<option value='A'>A</option>&nbsp;</select></span>",
       "case-sensitive: a value that is no choice marks none, and is not offered Select..."},
      {{"S", "s", "", "Choice", choices},
       "<span><label for='S'>s:</label><br/><select name='S'>"
       "<option value='' selected>Select...</option>&nbsp;"
       "<option value='A'>A</option>&nbsp;"
       "<option value='b'<&%s'>b'<&%s</option>&nbsp;"
       "<option value='A'>A</option>&nbsp;</select></span>",
       "no value"},
      {{"S", "s", "", "Choice", {OLESTR("")}},
       "<span><label for='S'>s:</label><br/><select name='S'>"
       "<option value='' selected>Select...</option>&nbsp;"
       "<option value='' selected></option>&nbsp;</select></span>",
       "an empty choice is the empty value"},
      {{"S", "s", "", "Choice"},
       "<span><label for='S'>s:</label><br/><select name='S'>"
       "<option value='' selected>Select...</option>&nbsp;</select></span>",
       "neither choices nor value"},
      {{"S", "s", "x", "Choice"},
       "<span><label for='S'>s:</label><br/><select name='S'></select></span>",
       "no choices, but a value"},
  };
  for (const FragmentCase& test : cases) {
    EXPECT_EQ(Text(BuildChoiceField(Record(test.column))), test.fragment) << test.why;
  }
}

TEST(FormGenerator, BoxesAreTickedOnceForEachChoice) {
  const std::string begin =
      "<span style='width: 30%;'><label for='M'>m:</label><br/>"
      "<fieldset style='overflow:auto;height: 6em;'>";
  const std::string end = "</fieldset></span>";
  const struct {
    const char* value;
    std::list<WideString> choices;
    const char* boxes;
    const char* why;
  } cases[] = {
      {";#A;#A;#",
       {OLESTR("A"), OLESTR("B")},
       "<input type='checkbox' name='M' value='A' checked='1' />A<br/>"
       "<input type='checkbox' name='M' value='B' />B<br/>",
       "a value twice"},
      {"a;#B c",
       {OLESTR("A"), OLESTR("B c")},
       "<input type='checkbox' name='M' value='A' />A<br/>"
       "<input type='checkbox' name='M' value='B c' checked='1' />B c<br/>",
       "case-sensitive"},
      {";#Gone;#",
       {OLESTR("A")},
       "<input type='checkbox' name='M' value='A' />A<br/>",
       "a value that is no choice has no box"},
      {"A",
       {OLESTR("A")},
       "<input type='checkbox' name='M' value='A' checked='1' />A<br/>",
       "a plain value"},
      {"it's;#%s",
       {OLESTR("it's"), OLESTR("%s"), OLESTR("<&")},
       "<input type='checkbox' name='M' value='it's' checked='1' />it's<br/>"
       "<input type='checkbox' name='M' value='%s' checked='1' />%s<br/>"
       "<input type='checkbox' name='M' value='<&' />"
       "<&<br/>",
       "unescaped"},
      {"A", {}, "", "no choices"},
      {"",
       {OLESTR("")},
       "<input type='checkbox' name='M' value='' />"
       "<br/>",
       "no value ticks nothing, not even an empty choice"},
  };
  for (const auto& test : cases) {
    const CFieldRecord record = Record({"M", "m", test.value, "MultiChoice", test.choices});
    EXPECT_EQ(Text(BuildMultiChoiceField(record)), begin + test.boxes + end) << test.why;
  }
}

TEST(FormGenerator, MultipleValuesAreTakenApart) {
  const struct {
    LPCWSTR text;
    std::list<WideString> values;
  } cases[] = {
      {OLESTR(""), {}},
      {OLESTR("A"), {OLESTR("A")}},
      {OLESTR(";#A;#B;#"), {OLESTR("A"), OLESTR("B")}},
      {OLESTR("A;#B"), {OLESTR("A"), OLESTR("B")}},
      {OLESTR(";#"), {}},
      {OLESTR(";#;#;#"), {}},
      {OLESTR(";#A;#;#A"), {OLESTR("A"), OLESTR("A")}},
      {OLESTR("A;B#C; #D#;E"), {OLESTR("A;B#C; #D#;E")}},
      {OLESTR(";;##"), {OLESTR(";"), OLESTR("#")}},
      {OLESTR(" A ;# "), {OLESTR(" A "), OLESTR(" ")}},
      {OLESTR("A;#B;"), {OLESTR("A"), OLESTR("B;")}},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(SplitMultiValue(test.text), test.values) << Printable(test.text);
  }
}

TEST(FormGenerator, TextsBeyondTheUsualSizesStandWhole) {
  FieldList records;
  const WideString large(1 << 20, OLESTR('x'));
  std::size_t fields = 0;
  for (int number = 0; number < 100; ++number) {
    const std::string name = "Column" + std::to_string(number);
    const CFieldRecord record =
        Record({name.c_str(), name.c_str(), "", number % 2 ? "Choice" : "Text"});
    fields += (number % 2 ? BuildChoiceField(record) : BuildTextField(record)).size();
    records.push_back(record);
  }
  const std::size_t page = BuildFieldsForm(records).size();
  EXPECT_EQ(page, BuildFieldsForm({}).size() + fields);

  records.front().m_value = large;
  const WideString withLarge = BuildFieldsForm(records);
  EXPECT_EQ(withLarge.size(), page + large.size());
  EXPECT_NE(withLarge.find(OLESTR("value='") + large + OLESTR("'>")), WideString::npos);

  CFieldRecord many = Record({"M", "m", "c0;#c999", "MultiChoice"});
  std::string expected =
      "<span style='width: 30%;'><label for='M'>m:</label><br/>"
      "<fieldset style='overflow:auto;height: 6em;'>";
  for (int number = 0; number < 1000; ++number) {
    const std::string choice = "c" + std::to_string(number);
    many.m_choices.push_back(Wide(choice));
    const bool ticked = number == 0 || number == 999;
    expected += "<input type='checkbox' name='M' value='" + choice + "'" +
                (ticked ? " checked='1'" : "") + " />" + choice + "<br/>";
  }
  EXPECT_TRUE(Text(BuildMultiChoiceField(many)) == expected + "</fieldset></span>");
}

TEST(FormGenerator, CharactersBeyondAsciiStandAsTheyAre) {
  CFieldRecord record;
  record.m_name = OLESTR("N");
  record.m_displayName = OLESTR("\u6587\u66f8");
  record.m_value = OLESTR("\u00e9\xd83d\xde00");
  EXPECT_EQ(Text(BuildTextField(record)),
            "<span><label for='N'>\\u6587\\u66f8:</label><br/><input type='text' name='N' "
            "value='\\u00e9\\ud83d\\ude00'></span>");
}

TEST(FormResources, TheScriptIsOfItsExactSizeAndPlain) {
  const NarrowString script = LoadFormScript();
  EXPECT_EQ(script.size(), 1006U);
  for (std::size_t place = 0; place < script.size(); ++place) {
    const char byte = script[place];
    EXPECT_TRUE((byte >= ' ' && byte <= '~') || byte == '\r' || byte == '\n') << place;
    EXPECT_EQ(byte == '\r', place + 1 < script.size() && script[place + 1] == '\n') << place;
  }
  EXPECT_EQ(script.substr(script.size() - 2), "\r\n");
}

TEST(FormResources, TheScriptHasItsThreeFunctionsInOrder) {
  const NarrowString script = LoadFormScript();
  std::vector<std::size_t> places;
  for (const char* text :
       {"function GetFieldValue(NameIn, Required)", "function AlertRequired(NameIn, DisplayName)",
        "ElemCollection[0].focus;\r\n", "function NoArguments()", "//alert(\"scheis\")\r\n",
        "return \"Argumentum\";"}) {
    places.push_back(script.find(text));
    EXPECT_NE(places.back(), NarrowString::npos) << text;
  }
  EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
  const std::size_t first = script.find("Required");
  EXPECT_EQ(script.find("Required", first + 1), script.find("Required(NameIn, D"))
      << "the parameter is never used";
}

TEST(FormResources, ThereIsAPageThatNobodyLoads) {
  const auto page = FindModuleResource(RT_HTML, 104);
  ASSERT_TRUE(page.has_value());
  for (const char* text :
       {"BODY ID=CEditFieldsDlg", "ButtonOK", "ButtonCancel", "TODO: Place controls here."}) {
    EXPECT_NE(page->find(text), std::string_view::npos) << text;
  }
  EXPECT_FALSE(FindModuleResource(OLESTR("JAVASCRIPT"), 2).has_value());
}

}  // namespace
}  // namespace velandoc
