#include "soap/list_fields.h"

#include <gmock/gmock.h>

#include "platform/code_page.h"
#include "platform/dom.h"
#include "soap/list_items.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/field_text.h"
#include "tests/support/no_enumerator.h"
#include "tests/unit/soap/service_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using testing::FieldTexts;
using testing::Printable;

constexpr LPCWSTR kList = OLESTR("{0A3B5C7D-0000-4000-8000-00000000ABCD}");
constexpr LPCWSTR kContentType = OLESTR("0x010100AB");
constexpr char kListInSmallLetters[] = "{0a3b5c7d-0000-4000-8000-00000000abcd}";

std::string ContentType(const std::string& fields, const std::string& behind = "") {
  return std::string("<GetListContentTypeResponse xmlns=\"") + testing::kService +
         "\"><GetListContentTypeResult><ContentType ID=\"0x010100AB\" Name=\"Document\" "
         "Group=\"Document Content Types\" Version=\"1\"><Fields>" +
         fields + "</Fields>" + behind +
         "</ContentType></GetListContentTypeResult></GetListContentTypeResponse>";
}

std::string OfThisList(const std::string& attributes, const std::string& content = "") {
  return std::string("<Field SourceID=\"") + kListInSmallLetters + "\" " + attributes + ">" +
         content + "</Field>";
}

const std::string kTwoFields =
    OfThisList("Name='A' Type='Choice'", "<CHOICES><CHOICE>x</CHOICE></CHOICES>") +
    OfThisList("Name='B' Required='TRUE'");
constexpr char kTwoTexts[] =
    "(name='A' type='Choice' choices=['x'] sourceId='{0a3b5c7d-0000-4000-8000-00000000abcd}') "
    "(name='B' required sourceId='{0a3b5c7d-0000-4000-8000-00000000abcd}')";

class ListFields : public testing::ServiceTest {
 protected:
  // The records, "none" for false.
  std::string Ask(Answer answer, LPCWSTR listName = kList) {
    m_platform.answers = {std::move(answer)};
    CSoapConnection connection(OLESTR("http://h/sites/a//_vti_bin/lists.asmx"));
    m_fields.clear();
    const bool found = GetListContentType(connection, listName, kContentType, m_fields);
    return found ? FieldTexts(m_fields) : "none";
  }
  // The names of the columns selected among `fields`, "none" for a null list.
  std::string Select(const std::string& fields, LPCWSTR listName = kList) {
    m_platform.answers = {Xml(Envelope(fields))};
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    const auto nodes = SelectListFields(connection, listName, kContentType);
    if (!nodes) return "none";
    std::string names;
    for (LONG index = 0; index < GetLength(nodes.Get()); ++index) {
      const auto node = GetItem(nodes.Get(), index);
      const auto name = GetNamedItem(GetNodeAttributes(node.Get()).Get(), OLESTR("Name"));
      if (!names.empty()) names += ' ';
      names += name ? Printable(GetNodeText(name.Get()).c_str()) : "-";
    }
    return names;
  }
  std::function<std::string()> Run() {
    return [this] {
      CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
      m_fields.clear();
      const bool found = GetListContentType(connection, kList, kContentType, m_fields);
      if (!found) return "false with " + std::to_string(m_fields.size());
      return std::string(m_fields.size() == 2 ? "ok" : "wrong");
    };
  }

  FieldList m_fields;
};

TEST_F(ListFields, AsksForTheContentTypeOverTheGivenConnection) {
  EXPECT_EQ(Ask(Xml(Envelope(ContentType(kTwoFields)))), kTwoTexts);
  EXPECT_THAT(Objects(), ElementsAre("h:80/sites/a//_vti_bin/lists.asmx"));
  EXPECT_EQ(Action(0), "http://schemas.microsoft.com/sharepoint/soap/GetListContentType");
  EXPECT_EQ(Method(0),
            "GetListContentType* ( listName* ( '{0A3B5C7D-0000-4000-8000-00000000ABCD}' ) "
            "contentTypeId* ( '0x010100AB' ) )")
      << "the name goes out in its own case";
}

TEST_F(ListFields, NullNamesGoOutEmpty) {
  m_platform.answers = {Xml(Envelope(ContentType("<Field SourceID='' Name='A'/>")))};
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  EXPECT_TRUE(GetListContentType(connection, nullptr, nullptr, m_fields));
  EXPECT_EQ(Method(0), "GetListContentType* ( listName* contentTypeId* )");
  EXPECT_EQ(FieldTexts(m_fields), "(name='A')");
}

TEST_F(ListFields, AListNameInCapitalsIsMatchedInSmallLetters) {
  const std::string capitals =
      "<Field SourceID='{0A3B5C7D-0000-4000-8000-00000000ABCD}' Name='A'/>";
  const std::string small = "<Field SourceID='{0a3b5c7d-0000-4000-8000-00000000abcd}' Name='B'/>";
  EXPECT_EQ(Select(ContentType(capitals + small)), "B");
  EXPECT_EQ(Select(ContentType(capitals + small), OLESTR("{0a3b5c7d-0000-4000-8000-00000000abcd}")),
            "B");
}

TEST_F(ListFields, OnlyTheLettersOfAsciiChange) {
  const std::string fields =
      "<Field SourceID='azaz@[`{09' Name='A'/><Field SourceID='\xC3\x84' Name='B'/>"
      "<Field SourceID='\xC3\xA4' Name='C'/>";
  EXPECT_EQ(Select(ContentType(fields), OLESTR("AZaz@[`{09")), "A");
  EXPECT_EQ(Select(ContentType(fields), OLESTR("\u00c4")), "B");
  EXPECT_EQ(Select(ContentType(fields), OLESTR("\u00e4")), "C");
}

// The name stands in the query as it is.
TEST_F(ListFields, AnApostropheInTheListNameBreaksTheQuery) {
  EXPECT_EQ(Select(ContentType(kTwoFields), OLESTR("it's")), "none");
  m_fields.clear();
  EXPECT_EQ(Ask(Xml(Envelope(ContentType(kTwoFields))), OLESTR("it's")), "none");
  EXPECT_TRUE(m_fields.empty());
  EXPECT_EQ(Select(ContentType("<Field Name='A'/>"), OLESTR("x' or @name='a' or 'x'='x")), "A")
      << "or makes another of it";
  EXPECT_EQ(Select(ContentType("<Field SourceID='&quot;' Name='A'/>"), OLESTR("\"")), "A")
      << "a quotation mark does no harm";
}

TEST_F(ListFields, ColumnsOfThisListAndRequiredOnesThatAreShownAreSelected) {
  const struct {
    const char* attributes;
    bool selected;
    const char* why;
  } cases[] = {
      {"SourceID='{0a3b5c7d-0000-4000-8000-00000000abcd}'", true, "made for this list"},
      {"SourceID='{0a3b5c7d-0000-4000-8000-00000000abcd}' Required='FALSE'", true,
       "be it optional"},
      {"SourceID='{0a3b5c7d-0000-4000-8000-00000000abcd}' ShowInFileDlg='FALSE'", true,
       "or hidden"},
      {"SourceID='http://schemas.microsoft.com/sharepoint/v3'", false, "a column of the site"},
      {"Required='FALSE'", false, "an optional column of the site"},
      {"Required='TRUE'", true, "a required one"},
      {"Required='TRUE' ShowInFileDlg='TRUE'", true, "that is shown"},
      {"Required='TRUE' ShowInFileDlg=''", true, "or says nothing of it"},
      {"Required='TRUE' ShowInFileDlg='FALSE'", false, "unless it is hidden"},
      {"Required='TRUE' ShowInFileDlg='xFALSEx'", false, "by the word anywhere"},
      {"Required='TRUE' ShowInFileDlg='false'", true, "in capitals"},
      {"Required='true'", false, "here the word is case-sensitive"},
      {"Required='TRUE' Hidden='TRUE'", true, "no other attribute counts"},
      {"", false, "no attributes"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Select(ContentType(std::string("<Field Name='A' ") + test.attributes + "/>")),
              test.selected ? "A" : "")
        << test.why;
  }
}

TEST_F(ListFields, AServerWithoutAMatchingColumnIsTrueAndLeavesTheRecords) {
  m_fields.emplace_back();
  m_platform.answers = {Xml(Envelope(ContentType("<Field Name='A'/>")))};
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  EXPECT_TRUE(GetListContentType(connection, kList, kContentType, m_fields));
  EXPECT_EQ(m_fields.size(), 1U);
}

TEST_F(ListFields, RecordsAreAppended) {
  m_fields.emplace_back();
  m_platform.answers = {Xml(Envelope(ContentType(kTwoFields)))};
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  EXPECT_TRUE(GetListContentType(connection, kList, kContentType, m_fields));
  EXPECT_EQ(FieldTexts(m_fields), std::string("() ") + kTwoTexts);
}

TEST_F(ListFields, EveryKindOfEnvelopeIsRead) {
  for (const std::string& answer : Envelopes(ContentType(kTwoFields))) {
    EXPECT_EQ(Ask(Xml(answer)), kTwoTexts) << answer;
  }
  const std::string prefixed =
      std::string("<p:GetListContentTypeResponse xmlns:p='") + testing::kService +
      "'>\n <p:Fields>\n  <p:Field Name='A' SourceID='" + kListInSmallLetters +
      "'>\n   <p:CHOICES>\n    <p:CHOICE>x</p:CHOICE>\n   </p:CHOICES>\n  </p:Field>\n "
      "</p:Fields>\n</p:GetListContentTypeResponse>";
  EXPECT_EQ(Ask(Xml(Envelope(prefixed))),
            "(name='A' choices=['x'] sourceId='{0a3b5c7d-0000-4000-8000-00000000abcd}')");
}

TEST_F(ListFields, ElementsNamedFieldInOtherPlacesAreNoColumns) {
  const std::string pattern =
      "<Field Name='Doc' Required='FALSE'><DisplayPattern><HTML><![CDATA[<a>]]></HTML>"
      "<Field Name='Inner'/><IfEqual><Expr1><Field Name='Inner' Required='FALSE'/></Expr1>"
      "</IfEqual></DisplayPattern></Field>";
  const std::string documents =
      std::string("<XmlDocuments><XmlDocument NamespaceURI='urn:x'><Form xmlns='urn:x'>") +
      "<Field Name='X' Required='TRUE' SourceID='" + kListInSmallLetters +
      "'/></Form></XmlDocument><XmlDocument><Field xmlns='' Name='Y' Required='TRUE'/>"
      "</XmlDocument></XmlDocuments>";
  EXPECT_EQ(Select(ContentType(pattern + kTwoFields, documents)), "A B");
}

TEST_F(ListFields, AColumnInsideAnotherIsOneOfItsOwn) {
  EXPECT_EQ(Select(ContentType(OfThisList("Name='A'", OfThisList("Name='B'")))), "A B");
}

TEST_F(ListFields, TheListHoldsWhatItNeeds) {
  m_platform.answers = {Xml(Envelope(ContentType(kTwoFields)))};
  ComPtr<IXMLDOMNodeList> nodes;
  {
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    nodes = SelectListFields(connection, kList, kContentType);
  }
  EXPECT_TRUE(ReadListFields(nodes.Get(), m_fields));
  EXPECT_EQ(FieldTexts(m_fields), kTwoTexts);
}

TEST_F(ListFields, AFailedCallIsANullListAndFalse) {
  for (const Refusal& refusal : Refusals()) {
    // Where the answer is XML, it has no columns, and that is told as true.
    const bool is_xml = refusal.answer.status == OLESTR("200") && refusal.answer.error == 0 &&
                        refusal.answer.readError == 0 && !refusal.answer.chunks.empty() &&
                        refusal.answer.chunks[0].rfind("</") != std::string::npos &&
                        refusal.answer.chunks[0].find("<br>") == std::string::npos;
    EXPECT_EQ(Ask(refusal.answer), is_xml ? "" : "none") << refusal.why;
    EXPECT_TRUE(m_fields.empty());
    m_platform.answers = {refusal.answer};
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    EXPECT_EQ(static_cast<bool>(SelectListFields(connection, kList, kContentType)), is_xml)
        << refusal.why;
  }
}

TEST_F(ListFields, NoFailureOfTheDomGetsOutOfGetListContentType) {
  // The envelope and its two parameters, the answer, the selection, the length; then the records:
  // a node that is not to be had ends the list, a failure inside a record only the record.
  EXPECT_EQ(DomFaults({Xml(Envelope(ContentType(kTwoFields)))}, Run()),
            "23 false with 0, 17 ok, 1 false with 1, 15 ok");
}

TEST_F(ListFields, SelectListFieldsRaisesBeforeTheAnswerAndIsNullBehindIt) {
  EXPECT_EQ(DomFaults({Xml(Envelope(ContentType(kTwoFields)))},
                      [] {
                        CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
                        return SelectListFields(connection, kList, kContentType) ? "ok" : "null";
                      }),
            "6 raised E_POINTER, 9 raised, 2 null, 1 raised, 1 null, 1 raised, 1 null");
}

TEST_F(ListFields, AFailureOfTheNetworkIsFalse) {
  EXPECT_EQ(NetworkFaults({Xml(Envelope(ContentType(kTwoFields)))}, Run()),
            "4 false with 0, 2 ok, 3 false with 0");
}

TEST_F(ListFields, AFailureOfAConversionIsFalse) {
  // An answer to an empty request is an answer.
  EXPECT_EQ(ConversionFaults({Xml(Envelope(ContentType(kTwoFields)))}, Run()),
            "1 false with 0, 1 ok, 1 false with 0");
}

TEST_F(ListFields, AShortageOfMemoryIsFalse) {
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  testing::ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  EXPECT_FALSE(GetListContentType(connection, kList, kContentType, m_fields));
}

TEST_F(ListFields, AShortageOfMemoryRaisesFromSelectListFields) {
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  testing::ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  EXPECT_EQ(testing::OutcomeOf([&] {
              SelectListFields(connection, kList, kContentType);
              return "returned";
            }),
            "raised E_OUTOFMEMORY");
}

TEST_F(ListFields, ReadListFieldsRaisesEPointerForNoList) {
  EXPECT_EQ(testing::OutcomeOf([&] {
              ReadListFields(nullptr, m_fields);
              return "returned";
            }),
            "raised E_POINTER");
}

// Says that it has two nodes, and has one.
class ShortList final : public testing::NoEnumerator<IXMLDOMNodeList> {
 public:
  explicit ShortList(IXMLDOMNode* node) : m_node(node) {}
  virtual ~ShortList() = default;

  HRESULT STDMETHODCALLTYPE get_length(LONG* length) override {
    *length = 2;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_item(LONG index, IXMLDOMNode** item) override {
    *item = index == 0 ? ComPtr<IXMLDOMNode>(m_node).Detach() : nullptr;
    return index == 0 ? S_OK : S_FALSE;
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE nextNode(IXMLDOMNode**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reset() override { return E_NOTIMPL; }

 private:
  IXMLDOMNode* m_node;
};

TEST_F(ListFields, AMissingNodeRaisesEPointerAndTheRecordsBeforeStay) {
  ComPtr<IXMLDOMDocument2> document;
  ASSERT_EQ(CreateDomDocument(document), S_OK);
  ShortList list(document.Get());
  EXPECT_EQ(testing::OutcomeOf([&] {
              ReadListFields(&list, m_fields);
              return "returned";
            }),
            "raised E_POINTER");
  EXPECT_EQ(m_fields.size(), 1U);
}

// As an open does it.
TEST_F(ListFields, TheRowIsReadOverTheSameConnection) {
  m_platform.expectedLeaks = 1;
  m_platform.answers = {
      Xml(Envelope(ContentType(kTwoFields))),
      Xml("<z:row xmlns:z='#RowsetSchema' ows_A='1' ows_B='2'/>"),
  };
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  RowAttributes row;
  EXPECT_TRUE(GetListContentType(connection, kList, kContentType, m_fields));
  EXPECT_TRUE(GetListItems(connection, OLESTR("{1}"), kList, {}, row));
  OverlayRow(row, m_fields);
  EXPECT_EQ(m_fields.front().m_value, OLESTR("1"));
  EXPECT_EQ(m_fields.back().m_value, OLESTR("2"));
  EXPECT_EQ(m_platform.CallsOf("InternetOpenW").size(), 1U);
  EXPECT_EQ(m_platform.CallsOf("InternetConnectW").size(), 1U);
}

}  // namespace
}  // namespace velandoc
