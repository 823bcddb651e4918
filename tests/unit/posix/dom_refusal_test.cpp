// What MSXML 6 refuses and Wine's DOM takes: document types, undeclared prefixes, anything from
// outside.

#include <cstdio>
#include <fstream>

#include "tests/unit/platform/dom_fixture.h"

namespace velandoc {
namespace {

constexpr LONG kDtdProhibited = static_cast<LONG>(0xC00CE584U);

TEST_F(DomTest, AnyDocumentTypeIsRefused) {
  for (const std::string_view xml : {
           "<!DOCTYPE a><a/>",
           "<!DOCTYPE a []><a/>",
           "<!DOCTYPE a SYSTEM 'http://127.0.0.1:1/a.dtd'><a/>",
           "<!DOCTYPE a PUBLIC 'p' 'file:///etc/passwd'><a/>",
           "<!DOCTYPE a [<!ELEMENT a ANY>]><a/>",
           "<!DOCTYPE html><html/>",
           "<?xml version='1.0'?>\n<!-- c -->\n<!DOCTYPE a><a/>",
       }) {
    EXPECT_FALSE(Load(xml)) << xml;
    ComPtr<IXMLDOMParseError> error;
    ASSERT_EQ(m_document->get_parseError(error.Receive()), S_OK);
    LONG code = 0;
    EXPECT_EQ(error->get_errorCode(&code), S_OK);
    EXPECT_EQ(code, kDtdProhibited) << xml;
  }
}

TEST_F(DomTest, DtdsCannotBeAllowed) {
  Variant value;
  value.Get().vt = VT_BOOL;
  value.Get().boolVal = VARIANT_FALSE;
  EXPECT_EQ(m_document->setProperty(Bstr(OLESTR("ProhibitDTD")).Get(), value.Get()), E_FAIL);
  EXPECT_FALSE(Load("<!DOCTYPE a><a/>"));
}

TEST_F(DomTest, ExternalEntityIsNotRead) {
  const std::string file = testing::TempDir() + "velandoc_dom_secret.txt";
  std::ofstream(file) << "secret";
  EXPECT_FALSE(Load("<!DOCTYPE a [<!ENTITY e SYSTEM 'file://" + file + "'>]><a>&e;</a>"));
  EXPECT_EQ(Text(Root()).find("secret"), std::string::npos);
  std::remove(file.c_str());
}

TEST_F(DomTest, EntitiesThatGrowAreRefused) {
  std::string xml = "<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxx'>";
  for (int i = 1; i < 12; ++i) {
    xml += "<!ENTITY e" + std::to_string(i) + " '";
    for (int k = 0; k < 10; ++k) xml += "&e" + std::to_string(i - 1) + ";";
    xml += "'>";
  }
  EXPECT_FALSE(Load(xml + "]><a>&e11;</a>"));
}

TEST_F(DomTest, NamespacesMustBeWellFormed) {
  for (const std::string_view xml : {
           "<p:a/>",
           "<a p:b='1'/>",
           "<a><p:b xmlns:p='u'/><p:c/></a>",
           "<a xmlns:p=''/>",
           "<a:b:c xmlns:a='u'/>",
           "<a xmlns:p='u' xmlns:q='u' p:b='1' q:b='2'/>",
           "<a xmlns:xmlns='u'/>",
           "<a xmlns:xml='u'/>",
       }) {
    EXPECT_FALSE(Load(xml)) << xml;
  }
}

TEST_F(DomTest, NamesOfNamespacesNeedNotBeUris) {
  EXPECT_TRUE(Load("<a xmlns='not a URI' xmlns:p='%%%' p:b='1'/>"));
  EXPECT_EQ(Uri(Element()), "not a URI");
}

TEST_F(DomTest, OnlyVersion10IsXml) {
  EXPECT_FALSE(Load("<?xml version='1.1'?><a/>"));
  EXPECT_FALSE(Load("<?xml version='2.0'?><a/>"));
  EXPECT_FALSE(Load("<?xml encoding='utf-8'?><a/>"));
}

TEST_F(DomTest, ByteOrderMarkInFrontIsPassedOver) {
  EXPECT_TRUE(Load(WideView(u"\uFEFF<?xml version='1.0'?><a/>")));
  EXPECT_EQ(Name(Element()), "a");
}

TEST_F(DomTest, DeclarationIsTheFirstNode) {
  ASSERT_TRUE(Load("<?xml version='1.0' encoding='utf-8' standalone='yes'?><a/>"));
  NodePtr first;
  ASSERT_EQ(m_document->get_firstChild(first.Receive()), S_OK);
  EXPECT_EQ(Name(first), "xml");
  EXPECT_EQ(Text(first), "version='1.0' encoding='utf-8' standalone='yes'");
  EXPECT_EQ(Xml(Root()), "<?xml version='1.0'  standalone='yes'?>\\x000D\\x000A<a/>\\x000D\\x000A");
}

TEST_F(DomTest, WhiteSpaceThatStays) {
  struct Case {
    std::string_view in;
    std::string_view out;
  };
  static constexpr Case cases[] = {
      {"<a>&#32;<b/>&#10;</a>", "<a> <b/>\\x000A</a>"},
      {"<a> &#32; <b/> </a>", "<a>   <b/></a>"},
      {"<a> x <b/> y </a>", "<a> x <b/> y </a>"},
      {"<a> <![CDATA[ ]]> </a>", "<a><![CDATA[ ]]></a>"},
      {"<a xml:space='preserve'> <b> </b> <b xml:space='default'> <c/> </b> </a>",
       "<a xml:space=\"preserve\"> <b> </b> <b xml:space=\"default\"><c/></b> </a>"},
      {"<a xml:space='default'> <b xml:space='preserve'> </b> </a>",
       "<a xml:space=\"default\"><b xml:space=\"preserve\"> </b></a>"},
  };
  for (const Case& each : cases) {
    ASSERT_TRUE(Load(each.in)) << each.in;
    EXPECT_EQ(Xml(Element()), each.out) << each.in;
  }
}

TEST_F(DomTest, ARefusedQueryWritesNothingToStandardError) {
  ASSERT_TRUE(Load("<a/>"));
  ::testing::internal::CaptureStderr();
  for (const WideView query : {u"unbound:function()", u"unbound:name", u"//a[", u"no-such()"}) {
    NodePtr found;
    EXPECT_EQ(m_document->selectSingleNode(Bstr(query).Get(), found.Receive()), E_FAIL);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(DomTest, WhatIsLeftOutSaysSo) {
  ASSERT_TRUE(Load("<a/>"));
  VARIANT_BOOL success = VARIANT_TRUE;
  Variant source(WideView(u"file:///etc/passwd"));
  EXPECT_EQ(m_document->load(source.Get(), &success), E_NOTIMPL);
  EXPECT_EQ(success, VARIANT_FALSE);
  EXPECT_EQ(m_document->save(source.Get()), E_NOTIMPL);
  Bstr text;
  EXPECT_EQ(m_document->transformNode(Element().Get(), text.Receive()), E_NOTIMPL);
  Bstr name(u"loadXML");
  LPOLESTR names[] = {name.Get()};
  DISPID id = 0;
  EXPECT_EQ(m_document->GetIDsOfNames(IID_NULL, names, 1, 0, &id), DISP_E_UNKNOWNNAME);
}

}  // namespace
}  // namespace velandoc
