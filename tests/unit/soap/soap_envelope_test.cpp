#include "soap/soap_envelope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "soap/soap_namespaces.h"
#include "tests/support/dom_tree.h"
#include "tests/support/fault_dom.h"
#include "tests/support/scripted_wininet.h"
#include "tests/unit/platform/dom_differences.h"

namespace velandoc {
namespace {

using testing::ChildrenOf;
using testing::ComScope;
using ::testing::ElementsAre;
using testing::FaultDom;
using testing::Printable;

template <class Function>
HRESULT RaisedBy(Function function) {
  try {
    function();
  } catch (const _com_error& error) {
    return error.Error();
  }
  return S_OK;
}

class SoapEnvelope : public ::testing::Test {
 protected:
  // The method's element with its parameters.
  static std::string MethodOf(const CSoapEnvelope& envelope) {
    const std::string tree = ChildrenOf(envelope.Document());
    const std::string before =
        "soap:Envelope{http://schemas.xmlsoap.org/soap/envelope/} ( "
        "soap:Body{http://schemas.xmlsoap.org/soap/envelope/} ( ";
    const std::string behind = " ) )";
    if (tree.rfind(before, 0) != 0) {
      ADD_FAILURE() << tree;
      return tree;
    }
    return tree.substr(before.size(), tree.size() - before.size() - behind.size());
  }

  static std::string WithXml(LPCWSTR fragment) {
    CSoapEnvelope envelope;
    envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
    envelope.AddXmlParameter(OLESTR("p"), fragment);
    return MethodOf(envelope);
  }

  ComScope m_com;
};

TEST_F(SoapEnvelope, StartsWithAnEmptyBody) {
  const CSoapEnvelope envelope;
  ASSERT_NE(envelope.Document(), nullptr);
  EXPECT_EQ(ChildrenOf(envelope.Document()),
            "soap:Envelope{http://schemas.xmlsoap.org/soap/envelope/} ( "
            "soap:Body{http://schemas.xmlsoap.org/soap/envelope/} )");
  EXPECT_EQ(envelope.MethodName(), OLESTR(""));
  EXPECT_EQ(envelope.Namespace(), OLESTR(""));
}

TEST_F(SoapEnvelope, SetMethodPutsTheElementIntoTheBody) {
  CSoapEnvelope envelope;
  envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
  EXPECT_EQ(MethodOf(envelope), "M{urn:s}");
  EXPECT_EQ(envelope.MethodName(), OLESTR("M"));
  EXPECT_EQ(envelope.Namespace(), OLESTR("urn:s"));
}

TEST_F(SoapEnvelope, TheShortFormTakesTheServicesNamespace) {
  const CSoapEnvelope envelope(OLESTR("GetListItems"));
  EXPECT_EQ(MethodOf(envelope), "GetListItems{http://schemas.microsoft.com/sharepoint/soap/}");
  EXPECT_EQ(envelope.Namespace(), SoapServiceNamespace);
  EXPECT_EQ(envelope.MethodName(), OLESTR("GetListItems"));
}

TEST_F(SoapEnvelope, ASecondMethodRaisesEFail) {
  CSoapEnvelope envelope(OLESTR("M"));
  EXPECT_EQ(RaisedBy([&] { envelope.SetMethod(OLESTR("N"), OLESTR("urn:s")); }), E_FAIL);
  EXPECT_EQ(envelope.MethodName(), OLESTR("M"));
}

TEST_F(SoapEnvelope, ParametersStandInTheOrderOfTheCalls) {
  CSoapEnvelope envelope;
  envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
  envelope.AddParameter(OLESTR("b"), OLESTR("1"));
  envelope.AddParameter(OLESTR("a"), OLESTR("\u00e9"));
  envelope.AddParameter(OLESTR("b"), OLESTR("2"));
  EXPECT_EQ(MethodOf(envelope),
            "M{urn:s} ( b{urn:s} ( '1' ) a{urn:s} ( '\\u00e9' ) b{urn:s} ( '2' ) )");
}

TEST_F(SoapEnvelope, TheDomEscapesAParametersText) {
  CSoapEnvelope envelope;
  envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
  envelope.AddParameter(OLESTR("p"), OLESTR("<a> & \"b\" 'c' ]]>"));
  EXPECT_EQ(MethodOf(envelope), "M{urn:s} ( p{urn:s} ( '<a> & \"b\" 'c' ]]>' ) )");
  Bstr xml;
  ASSERT_EQ(envelope.Document()->get_xml(xml.Receive()), S_OK);
  EXPECT_EQ(testing::TreeOfText(xml.Text()), ChildrenOf(envelope.Document()));
}

TEST_F(SoapEnvelope, ANullParameterIsEmpty) {
  CSoapEnvelope envelope;
  envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
  envelope.AddParameter(OLESTR("p"), nullptr);
  envelope.AddParameter(OLESTR("q"), OLESTR(""));
  EXPECT_EQ(RaisedBy([&] { envelope.AddParameter(OLESTR("r"), OLESTR("1")); }), S_OK);
  const std::string tree = MethodOf(envelope);
  EXPECT_NE(tree.find("p{urn:s}"), std::string::npos) << tree;
  EXPECT_NE(tree.find("q{urn:s}"), std::string::npos) << tree;
  EXPECT_EQ(tree.find("null"), std::string::npos) << tree;
}

TEST_F(SoapEnvelope, AParameterBeforeTheMethodRaisesEPointer) {
  CSoapEnvelope envelope;
  EXPECT_EQ(RaisedBy([&] { envelope.AddParameter(OLESTR("p"), OLESTR("1")); }), E_POINTER);
}

TEST_F(SoapEnvelope, CheckInTypeGoesOutAsTextAndIsCleared) {
  CSoapEnvelope envelope;
  envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
  Variant number(2, VT_INT);
  envelope.AddCheckInType(number.Get());
  EXPECT_EQ(number.Get().vt, VT_EMPTY);
  Variant negative(-7, VT_I4);
  envelope.AddCheckInType(negative.Get());
  Variant text(OLESTR("a<b"));
  envelope.AddCheckInType(text.Get());
  EXPECT_EQ(text.Get().vt, VT_EMPTY);
  EXPECT_EQ(MethodOf(envelope),
            "M{urn:s} ( checkinType{urn:s} ( '2' ) checkinType{urn:s} ( '-7' ) "
            "checkinType{urn:s} ( 'a<b' ) )");
}

TEST_F(SoapEnvelope, ACheckInTypeThatIsNoTextRaisesAndIsKept) {
  CSoapEnvelope envelope;
  envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
  Variant object;
  object.Get().vt = VT_UNKNOWN;
  object.Get().punkVal = nullptr;
  EXPECT_EQ(RaisedBy([&] { envelope.AddCheckInType(object.Get()); }), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(object.Get().vt, VT_UNKNOWN);
  EXPECT_EQ(MethodOf(envelope), "M{urn:s}");
}

struct FragmentCase {
  const OLECHAR* fragment;
  const char* parameter;
  const char* why;
};

const FragmentCase kFragmentCases[] = {
    {OLESTR("<Q/>"), "Q", "the root is in no namespace"},
    {OLESTR("<Q xmlns='urn:q'/>"), "Q", "whatever it says"},
    {OLESTR("<Q a='1' b='x &amp; y'/>"), "Q a=\"1\" b=\"x & y\"", "attributes in order"},
    {OLESTR("<Q>text</Q>"), "Q ( 'text' )", "one text"},
    {OLESTR("<Q><A/></Q>"), "Q ( A )", "one element"},
    {OLESTR("<Q><A>1</A><B b='2'/><C><D>3</D></C></Q>"),
     "Q ( A ( '1' ) B b=\"2\" C ( D ( '3' ) ) )", "several elements"},
    {OLESTR("<Q><A xmlns='urn:a' k='v'><B>1</B></A></Q>"),
     "Q ( A{urn:a} k=\"v\" ( B{urn:a} ( '1' ) ) )", "children keep their namespace"},
    {OLESTR("<Q><A></A></Q>"), "Q ( A )", "an element with no children"},
    {OLESTR("<Q><!-- c --></Q>"), "Q", "a lone comment is dropped"},
    {OLESTR("<Q><?i d?></Q>"), "Q", "a lone instruction is dropped"},
    {OLESTR("<Q><![CDATA[c]]></Q>"), "Q", "a lone section is dropped, its text too"},
};

TEST_F(SoapEnvelope, XmlParametersHoldACopyOfTheFragment) {
  for (const FragmentCase& test : kFragmentCases) {
    std::string expected = "M{urn:s} ( p{urn:s} ( ";
    expected.append(test.parameter).append(" ) )");
    const bool hasDefault = WideView(test.fragment).find(OLESTR(" xmlns=")) != WideView::npos;
    if (kHidesDefaultDeclarations && hasDefault) expected = "M{urn:s}";
    EXPECT_EQ(WithXml(test.fragment), expected) << Printable(test.fragment) << ": " << test.why;
  }
}

TEST_F(SoapEnvelope, AQueryComesOutWhole) {
  EXPECT_EQ(WithXml(OLESTR("<Query><Where><Eq><FieldRef Name='UniqueId' />"
                           "<Value Type='string'>{7}</Value></Eq></Where></Query>")),
            "M{urn:s} ( p{urn:s} ( Query ( Where ( Eq ( FieldRef Name=\"UniqueId\" "
            "Value Type=\"string\" ( '{7}' ) ) ) ) ) )");
}

TEST_F(SoapEnvelope, ARootWithAPrefixLosesItsNamespaceAndItsChildrenKeepTheirs) {
  std::string tree = WithXml(OLESTR("<q:Q xmlns:q='urn:q'><q:A q:k='v'/><B>1</B></q:Q>"));
  // Whether a name without a namespace keeps its prefix is the DOM's own affair.
  if (const auto prefix = tree.find("q:Q"); prefix != std::string::npos) tree.erase(prefix, 2);
  EXPECT_EQ(tree, "M{urn:s} ( p{urn:s} ( Q ( q:A{urn:q} q:k{urn:q}=\"v\" B ( '1' ) ) ) )");
}

TEST_F(SoapEnvelope, AFragmentThatDoesNotParseLeavesTheParameterOut) {
  const LPCWSTR fragments[] = {
      OLESTR(""),
      OLESTR("text"),
      OLESTR("<Q>a & b</Q>"),
      OLESTR("<Q><A></Q>"),
      OLESTR("<Q/><Q/>"),
      OLESTR("<Q a=1/>"),
      nullptr,
  };
  for (const LPCWSTR fragment : fragments) {
    EXPECT_EQ(WithXml(fragment), "M{urn:s}") << Printable(fragment);
  }
}

// Among several children none is asked for its kind: each is taken for an element.
TEST_F(SoapEnvelope, WhateverStandsBesideElementsLeavesTheParameterOut) {
  for (const LPCWSTR fragment :
       {OLESTR("<Q>a<B/>c</Q>"), OLESTR("<Q><B/>c</Q>"), OLESTR("<Q><B/><!-- c --></Q>"),
        OLESTR("<Q><![CDATA[c]]><B/></Q>")}) {
    EXPECT_EQ(WithXml(fragment), "M{urn:s}") << Printable(fragment);
  }
}

TEST_F(SoapEnvelope, AnXmlParameterBeforeTheMethodIsLeftOut) {
  CSoapEnvelope envelope;
  EXPECT_EQ(RaisedBy([&] { envelope.AddXmlParameter(OLESTR("p"), OLESTR("<Q/>")); }), S_OK);
}

TEST_F(SoapEnvelope, MakesItsDocumentInOrderAndReleasesItLast) {
  FaultDom dom(0, E_FAIL);
  {
    CSoapEnvelope envelope(OLESTR("M"));
    envelope.AddParameter(OLESTR("p"), OLESTR("1"));
    EXPECT_THAT(dom.operations,
                ElementsAre("CreateInstance", "QueryInterface", "put_async(false)", "loadXML",
                            "get_firstChild", "get_firstChild", "createNode", "appendChild",
                            "createNode", "put_text", "appendChild"));
    dom.operations.clear();
    envelope.AddXmlParameter(OLESTR("q"), OLESTR("<Q/>"));
    ASSERT_GE(dom.operations.size(), 4U);
    dom.operations.resize(4);
    EXPECT_THAT(dom.operations,
                ElementsAre("CreateInstance", "QueryInterface", "put_async(true)", "loadXML"));
    dom.released.clear();
  }
  EXPECT_THAT(dom.released, ElementsAre("M", "soap:Body", "soap:Envelope", "#document"));
}

TEST_F(SoapEnvelope, StaysEmptyWhateverFailsWhileItIsMade) {
  for (int failAt = 1; failAt <= 6; ++failAt) {
    SCOPED_TRACE(failAt);
    FaultDom dom(failAt, E_UNEXPECTED);
    CSoapEnvelope envelope;
    EXPECT_EQ(envelope.Document(), nullptr);
    EXPECT_EQ(dom.alive, 0);
    EXPECT_EQ(dom.Count(), failAt);
    EXPECT_EQ(RaisedBy([&] { envelope.SetMethod(OLESTR("M"), OLESTR("urn:s")); }), E_FAIL);
    EXPECT_EQ(RaisedBy([&] { envelope.AddParameter(OLESTR("p"), OLESTR("1")); }), E_POINTER);
    EXPECT_EQ(RaisedBy([&] { envelope.AddXmlParameter(OLESTR("p"), OLESTR("<Q/>")); }), S_OK);
  }
}

TEST_F(SoapEnvelope, StaysEmptyIfItsTextIsRefused) {
  FaultDom dom(0, E_FAIL);
  dom.refuseText = true;
  const CSoapEnvelope envelope(OLESTR("M"));
  EXPECT_EQ(envelope.Document(), nullptr);
  EXPECT_EQ(envelope.MethodName(), OLESTR(""));
  EXPECT_EQ(dom.alive, 0);
}

struct RaisingOperation {
  const char* name;
  int before;  // operations of the DOM before it
  int own;
  std::function<void(CSoapEnvelope&)> run;
};

TEST_F(SoapEnvelope, AFailingCallOfTheDomIsRaised) {
  const RaisingOperation operations[] = {
      {"SetMethod", 6, 2,
       [](CSoapEnvelope& envelope) { envelope.SetMethod(OLESTR("M"), OLESTR("urn:s")); }},
      {"AddParameter", 8, 3,
       [](CSoapEnvelope& envelope) { envelope.AddParameter(OLESTR("p"), OLESTR("1")); }},
      {"AddCheckInType", 8, 3,
       [](CSoapEnvelope& envelope) {
         Variant type(2, VT_INT);
         envelope.AddCheckInType(type.Get());
       }},
  };
  for (const RaisingOperation& operation : operations) {
    SCOPED_TRACE(operation.name);
    for (int step = 1; step <= operation.own; ++step) {
      FaultDom dom(operation.before + step, E_ACCESSDENIED);
      CSoapEnvelope envelope;
      if (operation.before == 8) envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
      EXPECT_EQ(dom.Count(), operation.before);
      EXPECT_EQ(RaisedBy([&] { operation.run(envelope); }), E_ACCESSDENIED) << step;
    }
  }
}

TEST_F(SoapEnvelope, AnyFailureWhileCopyingAFragmentLeavesTheParameterOut) {
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE(failAt);
    FaultDom dom(failAt == 0 ? 0 : 8 + failAt, E_UNEXPECTED);
    CSoapEnvelope envelope;
    envelope.SetMethod(OLESTR("M"), OLESTR("urn:s"));
    ASSERT_EQ(dom.Count(), 8);
    EXPECT_EQ(RaisedBy([&] {
                envelope.AddXmlParameter(OLESTR("p"), OLESTR("<Q a='1'><A>t</A><B><C/></B></Q>"));
              }),
              S_OK);
    if (failAt == 0) operations = dom.Count() - 8;
    Bstr xml;
    ASSERT_EQ(envelope.Document()->get_xml(xml.Receive()), S_OK);
    const std::string text = Printable(xml.Text().c_str());
    EXPECT_EQ(text.find("<p") == std::string::npos, failAt != 0) << text;
  }
  EXPECT_GT(operations, 30);
}

TEST(SoapNamespaces, EndInASlash) {
  EXPECT_EQ(SoapServiceNamespace, OLESTR("http://schemas.microsoft.com/sharepoint/soap/"));
  EXPECT_EQ(WideView(kSoapDirectoryNamespace),
            OLESTR("http://schemas.microsoft.com/sharepoint/soap/directory/"));
}

TEST(SoapNamespaces, TheListsPathIsAppendedAsItStands) {
  EXPECT_EQ(AppendListsPath(OLESTR("http://h/a")), OLESTR("http://h/a/_vti_bin/lists.asmx"));
  EXPECT_EQ(AppendListsPath(OLESTR("http://h/a/")), OLESTR("http://h/a//_vti_bin/lists.asmx"));
  EXPECT_EQ(AppendListsPath(OLESTR("")), OLESTR("/_vti_bin/lists.asmx"));
}

}  // namespace
}  // namespace velandoc
