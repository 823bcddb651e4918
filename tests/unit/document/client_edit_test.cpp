// CClient: reading the form's values, writing them, and the page.
#include <gmock/gmock.h>

#include "fields/form_generator.h"
#include "platform/mfc/exceptions.h"
#include "tests/support/field_text.h"
#include "tests/support/scripted_document.h"
#include "tests/unit/document/client_fixture.h"
#include "tests/unit/platform/dom_differences.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using testing::FieldTexts;
using ::testing::IsEmpty;
using testing::kService;
using testing::PlayForm;
using testing::Printable;
using testing::RowText;
using testing::ScriptedDocument;
using testing::ScriptedScript;

using Values = std::list<WideString>;

class ClientEdit : public testing::ClientTest {
 protected:
  // Opens a document of the columns Title (required), Status, and Tags (of three).
  void OpenThree(const std::string& more = "") {
    m_site.contentType = testing::ContentTypeAnswer(
        "<Field Name='Title' DisplayName='Title of it' Type='Text' Required='TRUE'/>"
        "<Field Name='Status' DisplayName='State' Type='Choice' "
        "SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'><CHOICES><CHOICE>Draft</"
        "CHOICE><CHOICE>Final</CHOICE></CHOICES></Field>"
        "<Field Name='Tags' DisplayName='Tags' Type='MultiChoice' Required='TRUE'><CHOICES>"
        "<CHOICE>A</CHOICE><CHOICE>B</CHOICE></CHOICES></Field>" +
        more);
    m_site.row = testing::RowAnswer("ows_ID='7' ows_Title='Plan' ows_Status='Final'");
    ASSERT_TRUE(Open());
    m_platform.answers.clear();
    m_platform.bodies.clear();
    m_platform.calls.clear();
  }
  // "true A|B" or "false A".
  std::string Read(IHTMLDocument2* document) {
    Values values = {OLESTR("from before")};
    const bool complete = m_client->ReadFormValues(document, values);
    std::string text = complete ? "true" : "false";
    for (const WideString& value : values) text += " [" + Printable(value.c_str()) + "]";
    return text;
  }
  static Answer Updated(const std::string& attributes) {
    return Xml(Envelope(std::string("<UpdateListItemsResponse xmlns='") + kService +
                        "'><UpdateListItemsResult><Results><Result ID='1,Update'>"
                        "<ErrorCode>0x00000000</ErrorCode><z:row xmlns:z='#RowsetSchema' " +
                        attributes +
                        "/></Result></Results></UpdateListItemsResult>"
                        "</UpdateListItemsResponse>"));
  }
  std::string ValuesNow() {
    std::string text;
    for (const CFieldRecord& field : m_client->Fields()) {
      text += (text.empty() ? "" : "|") + Printable(field.m_value.c_str());
    }
    return text;
  }

  ScriptedDocument m_document;
};

// --- ReadFormValues ---

TEST_F(ClientEdit, EachFieldIsAskedForByNameAndWhetherItIsRequired) {
  OpenThree();
  PlayForm(m_document, {{OLESTR("Title"), OLESTR("New")}, {OLESTR("Tags"), OLESTR("A;#B")}});
  EXPECT_EQ(Read(&m_document), "true [New] [] [A;#B]");
  EXPECT_THAT(m_document.script.calls,
              ElementsAre("GetFieldValue('Title', -1)", "GetFieldValue('Status', 0)",
                          "GetFieldValue('Tags', -1)"));
}

TEST_F(ClientEdit, WithoutADocumentOrAScriptNothingIsRead) {
  OpenThree();
  EXPECT_EQ(Read(nullptr), "false");
  PlayForm(m_document, {});
  m_document.hasScript = false;
  EXPECT_EQ(Read(&m_document), "false");
  EXPECT_THAT(m_document.script.calls, IsEmpty());
}

TEST_F(ClientEdit, WithoutFieldsNothingIsMissing) {
  PlayForm(m_document, {});
  EXPECT_EQ(Read(&m_document), "true");
  EXPECT_EQ(Read(nullptr), "false");
}

TEST_F(ClientEdit, AMissingRequiredValueIsToldWithOneArgumentAndEndsTheWalk) {
  OpenThree();
  PlayForm(m_document, {{OLESTR("Status"), OLESTR("Draft")}});
  EXPECT_EQ(Read(&m_document), "false []");
  EXPECT_THAT(m_document.script.calls,
              ElementsAre("GetFieldValue('Title', -1)", "AlertRequired('Title of it')"));
}

TEST_F(ClientEdit, AMissingRequiredValueEndsTheWalkWhateverBecomesOfTheAlert) {
  OpenThree();
  PlayForm(m_document, {});
  m_document.script.functions[OLESTR("AlertRequired")] = [](const auto&, VARIANT* result) {
    EXPECT_EQ(result, nullptr);
    return DISP_E_EXCEPTION;
  };
  EXPECT_EQ(Read(&m_document), "false []");
  m_document.script.functions.erase(OLESTR("AlertRequired"));
  EXPECT_EQ(Read(&m_document), "false []");
  EXPECT_EQ(m_document.script.calls.back(), "no AlertRequired");
}

TEST_F(ClientEdit, AFieldThatCannotBeReadPutsTheValuesOutOfStep) {
  OpenThree();
  m_document.script.functions[OLESTR("GetFieldValue")] =
      [](const ScriptedScript::Arguments& arguments, VARIANT* result) {
        const WideView name = arguments.at(0)->bstrVal;
        // Required, and still no reason to complain.
        if (name == OLESTR("Title")) return DISP_E_EXCEPTION;
        result->bstrVal = Bstr(name).Detach();
        result->vt = VT_BSTR;
        return S_OK;
      };
  EXPECT_EQ(Read(&m_document), "true [Status] [Tags]");
}

TEST_F(ClientEdit, OfAPageThatGoesWhileItIsReadNothingIsSent) {
  OpenThree();
  m_document.script.functions[OLESTR("GetFieldValue")] =
      [this](const ScriptedScript::Arguments& arguments, VARIANT* result) {
        const WideView name = arguments.at(0)->bstrVal;
        if (!m_document.hasScript || name == OLESTR("Status")) {
          m_document.hasScript = false;
          return E_FAIL;
        }
        result->bstrVal = Bstr(name).Detach();
        result->vt = VT_BSTR;
        return S_OK;
      };
  EXPECT_EQ(Read(&m_document), "false [Title]");
}

TEST_F(ClientEdit, APageWithoutTheFunctionGivesNoValues) {
  OpenThree();
  EXPECT_EQ(Read(&m_document), "true");
  EXPECT_THAT(m_document.script.calls,
              ElementsAre("no GetFieldValue", "no GetFieldValue", "no GetFieldValue"))
      << "asked for anew each time";
}

TEST_F(ClientEdit, TheResultsTextIsTakenWhateverItsTypeSays) {
  OpenThree();
  const Bstr kept(OLESTR("kept"));
  m_document.script.functions[OLESTR("GetFieldValue")] = [&](const auto&, VARIANT* result) {
    EXPECT_EQ(result->vt, VT_EMPTY);
    EXPECT_EQ(result->bstrVal, nullptr);
    result->bstrVal = kept.Get();
    return S_OK;
  };
  EXPECT_EQ(Read(&m_document), "true [kept] [kept] [kept]");
  m_document.script.functions[OLESTR("GetFieldValue")] = [](const auto&, VARIANT*) { return S_OK; };
  EXPECT_EQ(Read(&m_document), "false []") << "nothing is empty text";
}

TEST_F(ClientEdit, NamesAndLabelsGoToTheScriptAsTheyStand) {
  m_site.contentType = testing::ContentTypeAnswer(
      "<Field Name=\"it's\" DisplayName='&lt;b&gt; &amp; %s' Required='TRUE'/><Field Name='' "
      "Required='TRUE'/>");
  ASSERT_TRUE(Open());
  PlayForm(m_document, {});
  EXPECT_EQ(Read(&m_document), "false []");
  EXPECT_THAT(m_document.script.calls,
              ElementsAre("GetFieldValue('it's', -1)", "AlertRequired('<b> & %s')"));
}

// --- UpdateFields ---

TEST_F(ClientEdit, AnUpdateSendsNamesAndValuesByPlaceAndTakesOverTheAnswer) {
  OpenThree();
  m_platform.answers = {Updated("ows_ID='7' ows_Title='New' ows_Tags=';#A;#B;#' ows_Other='x'")};
  const std::string row = RowText(m_client->ItemAttributes());
  m_client->UpdateFields({OLESTR("New "), OLESTR("Draft"), OLESTR("A;#B")});
  EXPECT_THAT(Objects(), ElementsAre("docs.example.test:80/sites/a//_vti_bin/lists.asmx"));
  ASSERT_EQ(m_platform.bodies.size(), 1U);
  for (const char* text :
       {"<Field Name=\"ID\">7</Field>",
        "<FileRef Name=\"FileRef\">http://docs.example.test/sites/a/Shared/b.xlsx</FileRef>",
        "<Field Name=\"Status\">Draft</Field>", "<Field Name=\"Tags\">A;#B</Field>"}) {
    EXPECT_NE(m_platform.bodies[0].find(text), std::string::npos) << text;
  }
  EXPECT_EQ(ValuesNow(), "New|Final|;#A;#B;#") << "a column that did not come back keeps its value";
  EXPECT_EQ(RowText(m_client->ItemAttributes()), row) << "the row is the open's";
}

TEST_F(ClientEdit, TheItemsIdIsWhatStandsBehindTheSeparator) {
  const struct {
    const char* attributes;
    const char* id;
  } cases[] = {{"ows_ID='12;#7'", ">7<"}, {"ows_ID='12;#7;#8'", ">7;#8<"}, {"ows_X=''", "/>"}};
  for (const auto& test : cases) {
    m_site.row = testing::RowAnswer(test.attributes);
    ASSERT_TRUE(Open());
    m_platform.bodies.clear();
    m_platform.answers = {Updated("ows_ID='7'")};
    m_client->UpdateFields({});
    ASSERT_EQ(m_platform.bodies.size(), 1U);
    const std::string sent = m_platform.bodies[0];
    const std::string wanted = std::string("<Field Name=\"ID\"") + test.id;
    EXPECT_NE(sent.find(wanted), std::string::npos) << sent;
  }
}

TEST_F(ClientEdit, ARefusedOrFailingUpdateLeavesTheRecordsAsTheyWere) {
  OpenThree();
  const std::string before = FieldTexts(m_client->Fields());
  for (const Refusal& refusal : Refusals()) {
    m_platform.answers = {refusal.answer};
    m_client->UpdateFields({OLESTR("New"), OLESTR("Draft"), OLESTR("A")});
    EXPECT_EQ(FieldTexts(m_client->Fields()), before) << refusal.why;
  }
}

TEST_F(ClientEdit, FewerValuesThanFieldsWriteTheFirstOnes) {
  OpenThree();
  m_platform.answers = {Updated("ows_ID='7'")};
  m_client->UpdateFields({OLESTR("New")});
  EXPECT_NE(m_platform.bodies[0].find("<Field Name=\"Title\">New</Field>"), std::string::npos);
  EXPECT_EQ(m_platform.bodies[0].find("Status"), std::string::npos);
}

TEST_F(ClientEdit, AValueThatIsNoXmlLosesTheWholeUpdateAndTheCallStillGoesOut) {
  OpenThree();
  m_platform.answers = {Updated("ows_ID='7' ows_Title='Plan'")};
  m_client->UpdateFields({OLESTR("a < b & c"), OLESTR("Draft"), OLESTR("A")});
  ASSERT_EQ(m_platform.bodies.size(), 1U);
  EXPECT_EQ(m_platform.bodies[0].find("<updates"), std::string::npos) << m_platform.bodies[0];
  EXPECT_EQ(ValuesNow(), "Plan|Final|");
}

TEST_F(ClientEdit, TheQuestionsAnswerAfterwardsAsBefore) {
  m_site.row = testing::RowAnswer("ows_ID='7' ows_Title=''");
  ASSERT_TRUE(Open());
  m_platform.answers = {Updated("ows_ID='7' ows_Title='Plan' ows_Status='Draft'")};
  m_client->UpdateFields({OLESTR("Plan"), OLESTR("Draft")});
  EXPECT_EQ(ValuesNow(), "Plan|Draft");
  EXPECT_EQ(Flag(&IClient::HasUnfilledFields), "true");
  EXPECT_EQ(Flag(&IClient::HasUnfilledRequiredFields), "false");
}

// --- the page ---

TEST_F(ClientEdit, ThePageIsThatOfTheRecords) {
  EXPECT_EQ(m_client->BuildFieldsForm(), BuildFieldsForm({})) << "no document open";
  OpenThree("<Field Name='D' DisplayName='d' Required='TRUE'><Default>x</Default></Field>");
  const WideString page = m_client->BuildFieldsForm();
  EXPECT_EQ(page, BuildFieldsForm(m_client->Fields()));
  EXPECT_NE(page.find(OLESTR("<input type='text' name='D' value=''>")), WideString::npos)
      << "a default is not offered as the value";
}

}  // namespace
}  // namespace velandoc
