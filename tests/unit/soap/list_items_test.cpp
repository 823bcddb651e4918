#include "soap/list_items.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "platform/code_page.h"
#include "platform/dom.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/field_text.h"
#include "tests/unit/platform/dom_differences.h"
#include "tests/unit/soap/service_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using testing::RowText;

constexpr char kRow[] = "ows_ID='7' ows_FileLeafRef='7;#b.xlsx' ows_Title=''";
constexpr char kRowText[] = "ows_FileLeafRef='7;#b.xlsx' ows_ID='7' ows_Title=''";

// An answer of `method` with these rows.
std::string Rows(const std::string& rows, const std::string& method = "GetListItems") {
  return "<" + method + "Response xmlns=\"" + testing::kService + "\"><" + method +
         "Result><listitems xmlns:s='uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882' "
         "xmlns:dt='uuid:C2F41010-65B3-11d1-A29F-00AA00C14882' "
         "xmlns:rs='urn:schemas-microsoft-com:rowset' xmlns:z='#RowsetSchema'>\r\n"
         "<rs:data ItemCount=\"1\">\r\n   " +
         rows + "\r\n</rs:data>\r\n</listitems></" + method + "Result></" + method + "Response>";
}

std::string Row(const std::string& attributes) { return "<z:row " + attributes + " />"; }

// Of a request that holds a fragment: where the serializer loses the empty namespace of fragments,
// namespaces are left out of the comparison.
std::string Sent(std::string tree) {
  if (kLosesEmptyNamespace) tree.erase(std::remove(tree.begin(), tree.end(), '*'), tree.end());
  return tree;
}

const RowAttributes kBefore = {{OLESTR("ows_Old"), OLESTR("1")}};
constexpr char kBeforeText[] = "ows_Old='1'";

class ListItems : public testing::ServiceTest {
 protected:
  // The row, "none" for false, behind which the map must be as it was.
  std::string Told(bool found) {
    EXPECT_TRUE(found || RowText(m_row) == kBeforeText) << RowText(m_row);
    return found ? RowText(m_row) : "none";
  }
  std::string Get(Answer answer, LPCWSTR uniqueId = OLESTR("{U}"),
                  const std::list<WideString>& viewFields = {}) {
    m_platform.answers = {std::move(answer)};
    m_row = kBefore;
    CSoapConnection connection(OLESTR("http://h/sites/a//_vti_bin/lists.asmx"));
    return Told(GetListItems(connection, uniqueId, OLESTR("{L}"), viewFields, m_row));
  }
  std::string Update(Answer answer, const std::list<WideString>& names,
                     const std::list<WideString>& values) {
    m_platform.answers = {std::move(answer)};
    m_row = kBefore;
    const bool found =
        UpdateListItems(OLESTR("http://h/sites/a/D/b.xlsx"), OLESTR("http://h/sites/a/"),
                        OLESTR("{L}"), OLESTR("7"), names, values, m_row);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    return Told(found);
  }
  std::function<std::string()> RunGet() {
    return [this] {
      m_row = kBefore;
      CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
      const bool found = GetListItems(connection, OLESTR("{U}"), OLESTR("{L}"), {}, m_row);
      return Outcome(found);
    };
  }
  std::function<std::string()> RunUpdate() {
    return [this] {
      m_row = kBefore;
      const bool found = UpdateListItems(OLESTR("http://h/b"), OLESTR("http://h"), OLESTR("{L}"),
                                         OLESTR("7"), {OLESTR("A")}, {OLESTR("x")}, m_row);
      return Outcome(found);
    };
  }
  std::string Outcome(bool found) {
    if (found) return RowText(m_row) == kRowText ? "ok" : RowText(m_row);
    return RowText(m_row) == kBeforeText ? "false" : "touched";
  }
  static ComPtr<IXMLDOMDocument2> Load(const std::string& utf8) {
    ComPtr<IXMLDOMDocument2> document;
    CheckResult(CreateDomDocument(document));
    CheckResult(document->put_async(VARIANT_FALSE));
    VARIANT_BOOL parsed = VARIANT_FALSE;
    CheckResult(document->loadXML(Bstr(WideString(utf8.begin(), utf8.end())).Get(), &parsed));
    EXPECT_EQ(parsed, VARIANT_TRUE);
    return document;
  }

  RowAttributes m_row;
};

// --- GetListItems ---

constexpr char kRequest[] =
    "GetListItems* ( listName* ( '{L}' ) query* ( Query ( Where ( Eq ( FieldRef Name=\"UniqueId\" "
    "Value Type=\"string\" ( '{U}' ) ) ) ) ) queryOptions* ( QueryOptions ( ViewAttributes "
    "Scope=\"Recursive\" ) ) )";

TEST_F(ListItems, GetAsksForTheRowOfTheUniqueIdInAnyFolder) {
  EXPECT_EQ(Get(Xml(Envelope(Rows(Row(kRow))))), kRowText);
  EXPECT_THAT(Objects(), ElementsAre("h:80/sites/a//_vti_bin/lists.asmx"));
  EXPECT_EQ(Action(0), "http://schemas.microsoft.com/sharepoint/soap/GetListItems");
  EXPECT_EQ(Sent(Method(0)), Sent(kRequest));
}

TEST_F(ListItems, GetNamesTheViewFieldsOnlyIfThereAreSome) {
  Get(Xml(Envelope(Rows(Row(kRow)))), OLESTR("{U}"), {OLESTR("ID"), OLESTR("Title")});
  std::string expected = kRequest;
  expected.insert(expected.size() - 2,
                  " viewFields* ( ViewFields ( FieldRef Name=\"ID\" FieldRef Name=\"Title\" ) )");
  EXPECT_EQ(Sent(Method(0)), Sent(expected));
}

TEST_F(ListItems, AUniqueIdThatIsNoXmlLosesTheQueryAndTheCallStillGoesOut) {
  EXPECT_EQ(Get(Xml(Envelope(Rows(Row(kRow)))), OLESTR("a<b")), kRowText);
  EXPECT_EQ(
      Sent(Method(0)),
      Sent("GetListItems* ( listName* ( '{L}' ) queryOptions* ( QueryOptions ( ViewAttributes "
           "Scope=\"Recursive\" ) ) )"));
}

TEST_F(ListItems, ANullUniqueIdIsEmpty) {
  Get(Xml(Envelope(Rows(Row(kRow)))), nullptr);
  EXPECT_NE(Sent(Method(0)).find("Value Type=\"string\" )"), std::string::npos) << Method(0);
}

TEST_F(ListItems, ViewFieldsAreNotEscaped) {
  EXPECT_EQ(BuildViewFields({}), OLESTR("<ViewFields/>"));
  EXPECT_EQ(BuildViewFields({OLESTR("ID")}),
            OLESTR("<ViewFields><FieldRef Name='ID'/></ViewFields>"));
  EXPECT_EQ(BuildViewFields({OLESTR("it's"), OLESTR("a&b"), OLESTR("")}),
            OLESTR("<ViewFields><FieldRef Name='it's'/><FieldRef Name='a&b'/><FieldRef "
                   "Name=''/></ViewFields>"));
}

TEST_F(ListItems, AViewFieldThatIsNoXmlLosesTheParameter) {
  EXPECT_EQ(Get(Xml(Envelope(Rows(Row(kRow)))), OLESTR("{U}"), {OLESTR("it's")}), kRowText);
  EXPECT_EQ(Sent(Method(0)), Sent(kRequest));
}

TEST_F(ListItems, EveryKindOfEnvelopeIsRead) {
  for (const std::string& answer : Envelopes(Rows(Row(kRow)))) {
    EXPECT_EQ(Get(Xml(answer)), kRowText) << answer;
  }
}

TEST_F(ListItems, AFailedCallOrAnAnswerWithoutARowIsFalseAndTouchesNothing) {
  for (const Refusal& refusal : Refusals()) {
    EXPECT_EQ(Get(refusal.answer), "none") << refusal.why;
    EXPECT_EQ(Update(refusal.answer, {}, {}), "none") << refusal.why;
  }
  EXPECT_EQ(Get(Xml(Envelope(Rows("")))), "none") << "an empty rowset looks like a failure";
}

// --- what a row is ---

TEST_F(ListItems, TheFirstRowOfTheRowsetSchemaCounts) {
  const std::string declared = "<a xmlns:z='#RowsetSchema'>";
  const struct {
    std::string answer;
    const char* row;
    const char* why;
  } cases[] = {
      {Rows(Row("ows_ID='1'") + Row("ows_ID='2' ows_X='3'")), "ows_ID='1'",
       "a second one does not"},
      {Rows("<row ows_ID='1' xmlns='#RowsetSchema'/>"),
       kHidesDefaultDeclarations ? "none" : "ows_ID='1' xmlns='#RowsetSchema'", "no prefix"},
      {"<r:row xmlns:r='#RowsetSchema' ows_ID='1'/>", "ows_ID='1' xmlns:r='#RowsetSchema'",
       "a declaration is an attribute like any other"},
      {Rows("<rs:row ows_ID='1'/>"), "none", "the rowset's own namespace is another one"},
      {Rows("<row ows_ID='1'/>"), "none", "and so is the service's"},
      {Rows("<z:Row ows_ID='1'/>"), "none", "names are case-sensitive"},
      {declared + "<b><z:row ows_ID='1'><z:row ows_ID='2'/></z:row></b></a>", "ows_ID='1'",
       "wherever it stands"},
      {Rows(Row("")), "", "a row without attributes is a row"},
      {Rows(Row("ows_A='' ows_B=' x '")), "ows_A='' ows_B=' x '", "empty values, and blanks"},
      {Rows(Row("ows_A='a&amp;b &lt;i&gt; &#233; &#x1F600;'")),
       "ows_A='a&b <i> \\u00e9 \\ud83d\\ude00'", "references"},
      {Rows(Row("a='1' A='2' z:a='3'")), "A='2' a='1' z:a='3'", "names as they stand"},
      {Rows(Row("ows_ID='7' ows_CheckoutUser='3;#Ann Example'")),
       "ows_CheckoutUser='3;#Ann Example' ows_ID='7'", "values are not taken apart"},
      {Rows(Row("ows_ID='7'>text<x/></z:row><z:row y='1'")), "ows_ID='7'", "content is ignored"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Get(Xml(test.answer)), test.row) << test.why;
  }
}

TEST_F(ListItems, ASuccessfulReadLeavesExactlyTheNewRow) {
  m_row = {{OLESTR("ows_ID"), OLESTR("old")}, {OLESTR("ows_Gone"), OLESTR("1")}};
  const auto response = Load("<z:row xmlns:z='#RowsetSchema' ows_ID='new'/>");
  EXPECT_TRUE(ReadRowAttributes(response.Get(), m_row));
  EXPECT_EQ(RowText(m_row), "ows_ID='new' xmlns:z='#RowsetSchema'");
}

TEST_F(ListItems, AFailedReadLeavesTheMapAsItWas) {
  m_row = kBefore;
  EXPECT_FALSE(ReadRowAttributes(Load("<a/>").Get(), m_row));
  EXPECT_EQ(RowText(m_row), kBeforeText);
  EXPECT_FALSE(ReadRowAttributes(nullptr, m_row));
  EXPECT_EQ(RowText(m_row), kBeforeText);
}

TEST_F(ListItems, BehindAReadTheFormerPrefixesAreGone) {
  for (const char* text : {"<z:row xmlns:z='#RowsetSchema'/>", "<a/>"}) {
    const auto response = Load(text);
    SetSelectionNamespaces(response.Get(), OLESTR("xmlns:resp='urn:s'"));
    EXPECT_EQ(testing::OutcomeOf([&] {
                SelectSingleNode(response.Get(), OLESTR("//resp:a"));
                return "searched";
              }),
              "searched");
    ReadRowAttributes(response.Get(), m_row);
    EXPECT_EQ(testing::OutcomeOf([&] {
                SelectSingleNode(response.Get(), OLESTR("//resp:a"));
                return std::string("searched");
              }).rfind("raised", 0),
              0U)
        << text;
  }
}

// --- UpdateListItems ---

TEST_F(ListItems, UpdateWritesTheRowOnAConnectionOfItsOwn) {
  EXPECT_EQ(Update(Xml(Envelope(Rows(Row(kRow), "UpdateListItems"))),
                   {OLESTR("Title"), OLESTR("Tags")}, {OLESTR("A b"), OLESTR("x;#y")}),
            kRowText);
  EXPECT_THAT(Objects(), ElementsAre("h:80/sites/a//_vti_bin/lists.asmx"));
  EXPECT_EQ(Action(0), "http://schemas.microsoft.com/sharepoint/soap/UpdateListItems");
  EXPECT_EQ(
      Sent(Method(0)),
      Sent("UpdateListItems* ( listName* ( '{L}' ) updates* ( Batch ( Method ID=\"1\" "
           "Cmd=\"Update\" ( Field Name=\"ID\" ( '7' ) FileRef Name=\"FileRef\" ( "
           "'http://h/sites/a/D/b.xlsx' ) Field Name=\"Title\" ( 'A b' ) Field Name=\"Tags\" ( "
           "'x;#y' ) ) ) ) )"));
}

struct BatchCase {
  std::list<WideString> names;
  std::list<WideString> values;
  LPCWSTR fields;
  const char* why;
};

TEST_F(ListItems, TheShorterListDecides) {
  const BatchCase cases[] = {
      {{}, {}, OLESTR(""), "only ID and FileRef"},
      {{OLESTR("A"), OLESTR("B"), OLESTR("C")},
       {OLESTR("1"), OLESTR("2")},
       OLESTR("<Field Name='A'>1</Field><Field Name='B'>2</Field>"),
       "three names and two values make two elements"},
      {{OLESTR("A")},
       {OLESTR("1"), OLESTR("2")},
       OLESTR("<Field Name='A'>1</Field>"),
       "a surplus value is dropped"},
      {{OLESTR("A")}, {OLESTR("")}, OLESTR("<Field Name='A'></Field>"), "an empty value is one"},
      {{OLESTR("it's")},
       {OLESTR("a<b & c")},
       OLESTR("<Field Name='it's'>a<b & c</Field>"),
       "nothing is escaped"},
      {{OLESTR("A"), OLESTR("A")},
       {OLESTR("1"), OLESTR("2")},
       OLESTR("<Field Name='A'>1</Field><Field Name='A'>2</Field>"),
       "nothing is checked"},
  };
  for (const BatchCase& test : cases) {
    const WideString expected =
        WideString(OLESTR("<Batch><Method ID='1' Cmd='Update'><Field Name='ID'>7</Field><FileRef "
                          "Name='FileRef'>http://h/b</FileRef>"))
            .append(test.fields)
            .append(OLESTR("</Method></Batch>"));
    EXPECT_EQ(BuildUpdateBatch(OLESTR("7"), OLESTR("http://h/b"), test.names, test.values),
              expected)
        << test.why;
  }
  EXPECT_EQ(BuildUpdateBatch(nullptr, nullptr, {}, {}),
            OLESTR("<Batch><Method ID='1' Cmd='Update'><Field Name='ID'></Field><FileRef "
                   "Name='FileRef'></FileRef></Method></Batch>"));
}

TEST_F(ListItems, ABatchMayBeLong) {
  const WideString value(100'000, 'x');
  const WideString batch = BuildUpdateBatch(OLESTR("7"), OLESTR("u"), {OLESTR("A")}, {value});
  EXPECT_EQ(batch.size(),
            value.size() +
                BuildUpdateBatch(OLESTR("7"), OLESTR("u"), {OLESTR("A")}, {OLESTR("")}).size());
  EXPECT_NE(batch.find(value), WideString::npos);
}

TEST_F(ListItems, AValueWithAnAmpersandLosesTheUpdatesAndTheAnswerDecides) {
  const Answer answer = Xml(Envelope(Rows(Row(kRow), "UpdateListItems")));
  EXPECT_EQ(Update(answer, {OLESTR("Title")}, {OLESTR("R&D")}), kRowText);
  EXPECT_EQ(Method(0), "UpdateListItems* ( listName* ( '{L}' ) )");
  EXPECT_EQ(Update(answer, {OLESTR("Title")}, {OLESTR("a<b")}), kRowText);
  EXPECT_EQ(Method(1), "UpdateListItems* ( listName* ( '{L}' ) )");
  EXPECT_EQ(Update(answer, {OLESTR("it's")}, {OLESTR("x")}), kRowText) << "a name can do it too";
  EXPECT_EQ(Method(2), "UpdateListItems* ( listName* ( '{L}' ) )");
}

TEST_F(ListItems, MarkupInAValueIsMarkupInTheRequest) {
  Update(Xml(Envelope(Rows(Row(kRow)))), {OLESTR("A"), OLESTR("B")},
         {OLESTR("<b>x</b>"), OLESTR("&lt;i&gt;")});
  EXPECT_NE(Sent(Method(0)).find("Field Name=\"A\" ( b ( 'x' ) ) Field Name=\"B\" ( '<i>' )"),
            std::string::npos)
      << Method(0);
}

TEST_F(ListItems, WhatAnUpdateCanCarry) {
  static constexpr OLECHAR kHalfPair[] = {'a', 0xD83D, 'z', 0};
  const struct {
    LPCWSTR value;
    const char* sent;  // the column's element, or "" if the updates are lost
    const char* why;
  } cases[] = {
      {OLESTR("plain"), "Field Name=\"A\" ( 'plain' )", ""},
      {OLESTR(""), "Field Name=\"A\"", "an empty value"},
      {OLESTR("it's \"x\" > y"), "Field Name=\"A\" ( 'it's \"x\" > y' )", "quotes, and >"},
      {OLESTR("\u20ac \U0001F600"), "Field Name=\"A\" ( '\\u20ac \\ud83d\\ude00' )", "any letter"},
      {OLESTR("R&D"), "", "a bare ampersand"},
      {OLESTR("R&amp;D"), "Field Name=\"A\" ( 'R&D' )", "one that the caller escaped"},
      {OLESTR("a < b"), "", "a bracket"},
      {OLESTR("a]]>b"), "", "what ends a section"},
      {OLESTR("a\nb"), "Field Name=\"A\" ( 'a\\u000ab' )", "a line feed"},
      {OLESTR("a\r\nb"), "Field Name=\"A\" ( 'a\\u000ab' )", "a line's end becomes one"},
      {OLESTR(" a  b "), "Field Name=\"A\" ( 'a  b' )", "blanks at the ends go"},
      {OLESTR("  "), "Field Name=\"A\"", "blanks alone too"},
      {OLESTR("a\x01z"), "", "a control character"},
      {OLESTR("a\uffffz"), "", "a code point that XML does not have"},
      {kHalfPair, "", "half a pair of units"},
      {OLESTR("<b>x</b>"), "Field Name=\"A\" ( b ( 'x' ) )", "markup"},
      {OLESTR("a <b>x</b>"), "", "text beside markup"},
      {OLESTR("<!-- x -->"), "Field Name=\"A\"", "a comment goes"},
  };
  for (const auto& test : cases) {
    m_platform.bodies.clear();
    Update(Xml(Envelope(Rows(Row(kRow)))), {OLESTR("A")}, {test.value});
    const std::string expected =
        *test.sent == 0 ? "UpdateListItems* ( listName* ( '{L}' ) )"
                        : "UpdateListItems* ( listName* ( '{L}' ) updates* ( Batch ( Method "
                          "ID=\"1\" Cmd=\"Update\" ( Field Name=\"ID\" ( '7' ) FileRef "
                          "Name=\"FileRef\" ( 'http://h/sites/a/D/b.xlsx' ) " +
                              std::string(test.sent) + " ) ) ) )";
    EXPECT_EQ(Sent(Method(0)), Sent(expected))
        << testing::Printable(test.value) << ": " << test.why;
  }
}

TEST_F(ListItems, TheVerdictOnTheUpdateIsNotLookedAt) {
  const std::string refused =
      std::string("<UpdateListItemsResponse xmlns='") + testing::kService +
      "'><UpdateListItemsResult><Results><Result ID='1,Update'><ErrorCode>0x81020016</ErrorCode>"
      "<ErrorText>The item is checked out.</ErrorText>";
  const std::string end = "</Result></Results></UpdateListItemsResult></UpdateListItemsResponse>";
  EXPECT_EQ(Update(Xml(Envelope(refused + end)), {}, {}), "none") << "no row is a failure";
  EXPECT_EQ(
      Update(Xml(Envelope(refused + "<z:row xmlns:z='#RowsetSchema' ows_ID='7'/>" + end)), {}, {}),
      "ows_ID='7' xmlns:z='#RowsetSchema'")
      << "a row is none";
}

TEST_F(ListItems, NullTextsAreEmpty) {
  m_platform.answers = {};
  m_row = kBefore;
  EXPECT_EQ(Told(UpdateListItems(nullptr, nullptr, nullptr, nullptr, {}, {}, m_row)), "none");
  EXPECT_TRUE(m_platform.bodies.empty()) << "there is no host to send to";
  EXPECT_EQ(m_platform.OpenHandles(), 0);
}

// --- failures ---

TEST_F(ListItems, GetRaisesBeforeTheAnswerAndIsFalseBehindIt) {
  // The envelope; its method and list name; two fragments, which a failure leaves out of the call;
  // the request's text and the answer; the reading.
  EXPECT_EQ(DomFaults({Xml(Envelope(Rows(Row(kRow))))}, RunGet()),
            "6 raised E_POINTER, 5 raised, 122 ok, 1 raised, 2 false, 1 raised, 1 false, 1 raised, "
            "13 false");
}

TEST_F(ListItems, UpdateRaisesBeforeTheAnswerAndIsFalseBehindIt) {
  EXPECT_EQ(DomFaults({Xml(Envelope(Rows(Row(kRow))))}, RunUpdate()),
            "6 raised E_POINTER, 5 raised, 113 ok, 1 raised, 2 false, 1 raised, 1 false, 1 raised, "
            "13 false");
}

TEST_F(ListItems, AFailureOfTheNetworkIsFalse) {
  EXPECT_EQ(NetworkFaults({Xml(Envelope(Rows(Row(kRow))))}, RunGet()), "4 false, 2 ok, 3 false");
  EXPECT_EQ(NetworkFaults({Xml(Envelope(Rows(Row(kRow))))}, RunUpdate()), "4 false, 2 ok, 3 false");
}

TEST_F(ListItems, AFailureOfAConversionIsFalse) {
  // An answer to an empty request is an answer.
  EXPECT_EQ(ConversionFaults({Xml(Envelope(Rows(Row(kRow))))}, RunGet()), "1 false, 1 ok, 1 false");
  EXPECT_EQ(ConversionFaults({Xml(Envelope(Rows(Row(kRow))))}, RunUpdate()),
            "1 false, 1 ok, 1 false");
}

TEST_F(ListItems, AShortageOfMemoryRaises) {
  m_row = kBefore;
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  testing::ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  EXPECT_EQ(testing::OutcomeOf([&] {
              GetListItems(connection, OLESTR("{U}"), OLESTR("{L}"), {}, m_row);
              return "returned";
            }),
            "raised E_OUTOFMEMORY");
  EXPECT_EQ(testing::OutcomeOf(RunUpdate()), "raised E_OUTOFMEMORY");
  EXPECT_EQ(RowText(m_row), kBeforeText);
}

}  // namespace
}  // namespace velandoc
