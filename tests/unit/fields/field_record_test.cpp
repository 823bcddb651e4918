#include "fields/field_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/dom.h"
#include "tests/support/dom_tree.h"
#include "tests/support/fault_dom.h"
#include "tests/support/field_text.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::ComScope;
using ::testing::ElementsAre;
using testing::FaultDom;
using testing::FieldText;
using testing::FieldTexts;
using testing::Printable;

constexpr LPCWSTR kPrefixes = OLESTR("xmlns:resp='urn:s'");

// A Field element of the namespace that "resp" is bound to.
std::string Field(const std::string& attributes, const std::string& content = "") {
  return "<Field xmlns='urn:s' " + attributes + ">" + content + "</Field>";
}

constexpr char kStatus[] =
    "Name='Status' DisplayName='Status of it' Type='Choice' Format='Dropdown' Required='TRUE' "
    "SourceID='{l}' ows_Status='Draft'";
constexpr char kStatusContent[] =
    "<Default>Open</Default><CHOICES><CHOICE>Open</CHOICE><CHOICE>Draft</CHOICE></CHOICES>";
constexpr char kStatusText[] =
    "name='Status' displayName='Status of it' value='Draft' type='Choice' format='Dropdown' "
    "choices=['Open' 'Draft'] required default='Open' sourceId='{l}'";

class FieldRecord : public ::testing::Test {
 protected:
  // The document's root, kept by the fixture with its document.
  IXMLDOMNode* Load(const std::string& utf8, WideView prefixes = kPrefixes) {
    m_root.Reset();
    CheckResult(CreateDomDocument(m_document));
    CheckResult(m_document->put_async(VARIANT_FALSE));
    VARIANT_BOOL parsed = VARIANT_FALSE;
    const WideString text(utf8.begin(), utf8.end());
    CheckResult(m_document->loadXML(Bstr(text).Get(), &parsed));
    EXPECT_EQ(parsed, VARIANT_TRUE) << utf8;
    SetSelectionNamespaces(m_document.Get(), prefixes);
    m_root = GetFirstChild(m_document.Get());
    return m_root.Get();
  }
  std::string Read(const std::string& xml, WideView prefixes = kPrefixes) {
    return FieldText(CFieldRecord(Load(xml, prefixes)));
  }

  ComScope m_com;
  ComPtr<IXMLDOMDocument2> m_document;
  ComPtr<IXMLDOMNode> m_root;
};

TEST_F(FieldRecord, StartsEmptyAndNotRequired) {
  const CFieldRecord record;
  EXPECT_EQ(FieldText(record), "");
  EXPECT_FALSE(record.m_required);
}

TEST_F(FieldRecord, ReadsAllOfAColumn) {
  EXPECT_EQ(Read(Field(kStatus, kStatusContent)), kStatusText);
}

TEST_F(FieldRecord, AColumnWithoutTheExpectedAttributesIsARecordOfEmptyTexts) {
  EXPECT_EQ(Read(Field("")), "");
  EXPECT_EQ(Read(Field("name='a' NAME='b' displayname='c'")), "") << "names are case-sensitive";
  EXPECT_EQ(Read("<x/>"), "") << "nobody asks for the element's name";
}

TEST_F(FieldRecord, RequiredIsTheWordTrueInAnyCase) {
  const struct {
    const char* attribute;
    bool required;
  } cases[] = {
      {"Required='TRUE'", true},   {"Required='true'", true},   {"Required='True'", true},
      {"Required='1'", false},     {"Required='FALSE'", false}, {"Required='yes'", false},
      {"Required=''", false},      {"Required=' TRUE'", false}, {"Required='TRUE '", false},
      {"Required='TRUES'", false}, {"Required='-1'", false},    {"", false},
      {"required='TRUE'", false},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(CFieldRecord(Load(Field(test.attribute))).m_required, test.required)
        << test.attribute;
  }
}

TEST_F(FieldRecord, TheValueIsTheAttributeNamedAfterTheColumn) {
  EXPECT_EQ(Read(Field("ows_b='1' ows_a='2' Name='a' ows_='3'")), "name='a' value='2'");
  EXPECT_EQ(Read(Field("Name='a' ows_A='1' a='2'")), "name='a'") << "case-sensitive, with prefix";
  EXPECT_EQ(Read(Field("ows_='3'")), "value='3'") << "without a name the key is the prefix alone";
  EXPECT_EQ(Read(Field("Name='' ows_='3'")), "value='3'");
}

TEST_F(FieldRecord, TextsStandAsTheyCame) {
  EXPECT_EQ(Read(Field("Name='a' ows_a=' x;#y &amp;amp; ' DisplayName=' a '")),
            "name='a' displayName=' a ' value=' x;#y &amp; '");
  EXPECT_EQ(Read(Field("Name='a b' ows_a='1'")), "name='a b'")
      << "a key that no attribute can have";
}

TEST_F(FieldRecord, ADefaultIsKeptAndNeverOfferedAsTheValue) {
  const CFieldRecord record(Load(Field("Name='a'", "<Default>Open</Default>")));
  EXPECT_EQ(record.m_value, OLESTR(""));
  EXPECT_EQ(record.m_default, OLESTR("Open"));
}

TEST_F(FieldRecord, OnlyTheColumnsOwnDefaultCounts) {
  EXPECT_EQ(Read(Field("", "<x><Default>inner</Default></x>")), "");
  EXPECT_EQ(Read(Field("", "<Default xmlns=''>other</Default>")), "");
  EXPECT_EQ(Read(Field("", "<Default>1</Default><Default>2</Default>")), "default='1'");
}

TEST_F(FieldRecord, AChoiceColumnWithoutChoicesHasNone) {
  EXPECT_EQ(Read(Field("Type='Choice'")), "type='Choice'");
  EXPECT_EQ(Read(Field("Type='Choice'", "<CHOICES/>")), "type='Choice'");
}

TEST_F(FieldRecord, ChoicesStandInTheOrderOfTheDocument) {
  EXPECT_EQ(Read(Field("",
                       "<CHOICES><CHOICE>b</CHOICE><CHOICE>a</CHOICE><CHOICE/>"
                       "<CHOICE>b</CHOICE></CHOICES>")),
            "choices=['b' 'a' '' 'b']");
  EXPECT_EQ(Read(Field("",
                       "<CHOICES><CHOICE>1</CHOICE></CHOICES><x/>"
                       "<CHOICES><CHOICE>2</CHOICE></CHOICES>")),
            "choices=['1' '2']")
      << "of all lists";
  EXPECT_EQ(Read(Field("",
                       "<CHOICE>1</CHOICE><CHOICES><x><CHOICE>2</CHOICE></x>"
                       "<CHOICE xmlns='urn:x'>3</CHOICE><choice>4</choice></CHOICES>")),
            "")
      << "right inside a list, and of the service's namespace";
}

TEST_F(FieldRecord, AnotherPrefixOfTheServicesNamespaceIsTheSame) {
  EXPECT_EQ(Read("<p:Field xmlns:p='urn:s' Name='a'><p:Default>d</p:Default><p:CHOICES>"
                 "<p:CHOICE>c</p:CHOICE></p:CHOICES></p:Field>"),
            "name='a' choices=['c'] default='d'");
}

TEST_F(FieldRecord, ANullNodeIsAnEmptyRecord) { EXPECT_EQ(FieldText(CFieldRecord(nullptr)), ""); }

TEST_F(FieldRecord, WithoutTheBoundPrefixTheReadingEndsBehindTheAttributes) {
  EXPECT_EQ(Read(Field(kStatus, kStatusContent), OLESTR("xmlns:other='urn:s'")),
            "name='Status' displayName='Status of it' value='Draft' type='Choice' "
            "format='Dropdown' required sourceId='{l}'");
}

// The steps are the DOM's calls; behind a missing attribute there is no second one.
TEST_F(FieldRecord, TheStepsRunInTheirOrder) {
  FaultDom dom(0, E_FAIL);
  {
    IXMLDOMNode* const node =
        Load(Field("Name='a' Required='TRUE'", "<CHOICES><CHOICE>1</CHOICE></CHOICES>"));
    dom.operations.clear();
    const CFieldRecord record(node);
    EXPECT_THAT(dom.operations,
                ElementsAre("get_xml", "get_attributes", "getNamedItem", "get_text", "getNamedItem",
                            "getNamedItem", "getNamedItem", "getNamedItem", "getNamedItem",
                            "get_text", "getNamedItem", "selectSingleNode", "selectNodes",
                            "get_length", "get_item", "get_text"));
    m_root.Reset();
    m_document.Reset();
  }
}

// The DOM's calls one after the other, and what is in the record if that one fails.
TEST_F(FieldRecord, TheFirstFailingCallEndsTheReadingWithoutAWord) {
  const std::string attributes[] = {"name='Status'",     "displayName='Status of it'",
                                    "value='Draft'",     "type='Choice'",
                                    "format='Dropdown'", "required",
                                    "default='Open'",    "sourceId='{l}'"};
  const auto& [name, displayName, value, type, format, required, byDefault, sourceId] = attributes;
  const std::string named = name + " " + displayName + " " + value;
  const std::string read = named + " " + type + " " + format + " " + required;
  const std::vector<std::string> expected = {
      "",  // get_xml
      "",  // get_attributes
      "",
      "",  // Name: getNamedItem, get_text
      name,
      name,  // ows_Status
      name + " " + value,
      name + " " + value,
      named,
      named,
      named + " " + type,
      named + " " + type,
      named + " " + type + " " + format,
      named + " " + type + " " + format,
      read,
      read,
      read + " " + sourceId,                    // selectSingleNode
      read + " " + sourceId,                    // its text
      read + " " + byDefault + " " + sourceId,  // selectNodes
      read + " " + byDefault + " " + sourceId,  // get_length
      read + " " + byDefault + " " + sourceId,  // get_item
      read + " " + byDefault + " " + sourceId,  // its text
      named + " " + type + " " + format + " choices=['Open'] " + required + " " + byDefault + " " +
          sourceId,
      named + " " + type + " " + format + " choices=['Open'] " + required + " " + byDefault + " " +
          sourceId,
      kStatusText,
  };
  for (std::size_t step = 0; step < expected.size(); ++step) {
    SCOPED_TRACE(step);
    int before = 0;
    {
      FaultDom dom(0, E_FAIL);
      Load(Field(kStatus, kStatusContent));
      before = dom.Count();
      m_root.Reset();
      m_document.Reset();
    }
    FaultDom dom(before + 1 + static_cast<int>(step), E_ACCESSDENIED);
    EXPECT_EQ(Read(Field(kStatus, kStatusContent)), expected[step]);
    EXPECT_EQ(dom.Count(), before + std::min(static_cast<int>(step) + 1, 24));
    m_root.Reset();
    m_document.Reset();
  }
}

// --- the row over the records ---

CFieldRecord Record(LPCWSTR name, LPCWSTR value) {
  CFieldRecord record;
  record.m_name = name;
  record.m_value = value;
  return record;
}

TEST(OverlayRow, ARecordTakesTheValueOfItsAttribute) {
  FieldList fields = {Record(OLESTR("a"), OLESTR("1")), Record(OLESTR("b"), OLESTR("")),
                      Record(OLESTR("c"), OLESTR("3"))};
  OverlayRow({{OLESTR("ows_a"), OLESTR("x")},
              {OLESTR("ows_b"), OLESTR("")},
              {OLESTR("ows_d"), OLESTR("y")}},
             fields);
  EXPECT_EQ(FieldTexts(fields), "(name='a' value='x') (name='b') (name='c' value='3')");
}

TEST(OverlayRow, AnEmptyAttributeEmptiesTheValue) {
  FieldList fields = {Record(OLESTR("a"), OLESTR("1"))};
  OverlayRow({{OLESTR("ows_a"), OLESTR("")}}, fields);
  EXPECT_EQ(FieldTexts(fields), "(name='a')");
}

TEST(OverlayRow, KeysAreCaseSensitiveAndCarryThePrefix) {
  FieldList fields = {Record(OLESTR("a"), OLESTR("1"))};
  OverlayRow(
      {{OLESTR("ows_A"), OLESTR("x")}, {OLESTR("a"), OLESTR("y")}, {OLESTR("OWS_a"), OLESTR("z")}},
      fields);
  EXPECT_EQ(FieldTexts(fields), "(name='a' value='1')");
}

TEST(OverlayRow, RecordsOfOneNameAllTakeIt) {
  FieldList fields = {Record(OLESTR("a"), OLESTR("1")), Record(OLESTR("a"), OLESTR("2")),
                      Record(OLESTR(""), OLESTR("3"))};
  OverlayRow({{OLESTR("ows_a"), OLESTR("x")}, {OLESTR("ows_"), OLESTR("none")}}, fields);
  EXPECT_EQ(FieldTexts(fields), "(name='a' value='x') (name='a' value='x') (value='none')");
}

TEST(OverlayRow, AnEmptyRowChangesNothing) {
  FieldList fields = {Record(OLESTR("a"), OLESTR("1"))};
  OverlayRow({}, fields);
  EXPECT_EQ(FieldTexts(fields), "(name='a' value='1')");
}

TEST(OverlayRow, TheRowIsOrderedByCodeUnits) {
  const RowAttributes row = {{OLESTR("ows_b"), OLESTR("")},
                             {OLESTR("ows_a"), OLESTR("")},
                             {OLESTR("ows_B"), OLESTR("")},
                             {OLESTR("ows__"), OLESTR("")},
                             {OLESTR("ows_\u00e4"), OLESTR("")}};
  EXPECT_EQ(testing::RowText(row), "ows_B='' ows__='' ows_a='' ows_b='' ows_\\u00e4=''");
}

}  // namespace
}  // namespace velandoc
