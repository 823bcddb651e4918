// The exact text of get_xml.

#include "tests/unit/platform/dom_fixture.h"

namespace velandoc {
namespace {

struct Case {
  std::string_view in;
  std::string_view out;
};

TEST_F(DomTest, XmlOfWhatWasRead) {
  static constexpr Case cases[] = {
      {"<a/>", "<a/>"},
      {"<a></a>", "<a/>"},
      {"<a b='1' c=\"2\"/>", "<a b=\"1\" c=\"2\"/>"},
      {"<a b='&quot;&apos;&lt;>&amp;'/>", "<a b=\"&quot;'&lt;&gt;&amp;\"/>"},
      {"<a b='&#9;&#10;&#13;'/>", "<a b=\"&#x9;&#xA;&#xD;\"/>"},
      {"<a>&lt;&gt;&amp;\"'</a>", "<a>&lt;&gt;&amp;\"'</a>"},
      {"<a>x&#13;y</a>", "<a>x&#xD;y</a>"},
      {"<a><![CDATA[<b>]]></a>", "<a><![CDATA[<b>]]></a>"},
      {"<a><![CDATA[b]]><![CDATA[c]]></a>", "<a><![CDATA[b]]><![CDATA[c]]></a>"},
      {"<a><!--c--><?p q?><?r?></a>", "<a><!--c--><?p q?><?r?></a>"},
      {"<a xmlns='u'><b/><c xmlns=''/></a>", "<a xmlns=\"u\"><b/><c xmlns=\"\"/></a>"},
      {"<p:a xmlns:p='u' p:b='1'><p:c/></p:a>", "<p:a xmlns:p=\"u\" p:b=\"1\"><p:c/></p:a>"},
      {"<p:a xmlns:p='u'><p:b xmlns:p='v'><p:c/></p:b><p:d/></p:a>",
       "<p:a xmlns:p=\"u\"><p:b xmlns:p=\"v\"><p:c/></p:b><p:d/></p:a>"},
      {"<a xml:lang='en'/>", "<a xml:lang=\"en\"/>"},
      {"<a> <b/> </a>", "<a><b/></a>"},
  };
  for (const Case& each : cases) {
    ASSERT_TRUE(Load(each.in)) << each.in;
    EXPECT_EQ(Xml(Element()), each.out);
    EXPECT_EQ(Xml(Root()), std::string(each.out) + "\\x000D\\x000A");
  }
}

TEST_F(DomTest, XmlOfAPartDeclaresWhatItsParentsDid) {
  ASSERT_TRUE(Load("<p:a xmlns:p='u'><p:b><p:c/></p:b></p:a>"));
  EXPECT_EQ(Xml(Find(u"//*[local-name()='b']")), "<p:b xmlns:p=\"u\"><p:c/></p:b>");
}

TEST_F(DomTest, XmlOfARequest) {
  ASSERT_TRUE(Load("<s:E xmlns:s='urn:s'><s:B/></s:E>"));
  const NodePtr method = Create(NODE_ELEMENT, u"Get", u"urn:m");
  Append(Find(u"/*/*"), method);
  const NodePtr parameter = Create(NODE_ELEMENT, u"p", u"urn:m");
  PutText(parameter, u"1 < 2");
  Append(method, parameter);
  const NodePtr fragment = Create(NODE_ELEMENT, u"Query", u"");
  Append(method, fragment);
  EXPECT_EQ(Xml(Element()),
            "<s:E xmlns:s=\"urn:s\"><s:B><Get xmlns=\"urn:m\"><p>1 &lt; 2</p><Query "
            "xmlns=\"\"/></Get></s:B>"
            "</s:E>");
  EXPECT_EQ(Xml(parameter), "<p xmlns=\"urn:m\">1 &lt; 2</p>");
}

TEST_F(DomTest, PrefixWithoutANamespaceIsDropped) {
  ASSERT_TRUE(Load("<r xmlns='u'/>"));
  const NodePtr query = Create(NODE_ELEMENT, u"q:Query", u"");
  Append(Element(), query);
  EXPECT_EQ(Name(query), "Query");
  EXPECT_EQ(Xml(Element()), "<r xmlns=\"u\"><Query xmlns=\"\"/></r>");
}

TEST_F(DomTest, DeclarationsAreCopiedAsAttributes) {
  ASSERT_TRUE(Load("<r/>"));
  const NodePtr declaration = Create(NODE_ATTRIBUTE, u"xmlns:z", u"");
  PutText(declaration, u"urn:z");
  ASSERT_EQ(Attributes(Element())->setNamedItem(declaration.Get(), nullptr), S_OK);
  Append(Element(), Create(NODE_ELEMENT, u"z:c", u"urn:z"));
  EXPECT_EQ(Xml(Element()), "<r xmlns:z=\"urn:z\"><z:c/></r>");
}

TEST_F(DomTest, ContradictingDeclarationIsLeftOut) {
  ASSERT_TRUE(Load("<r/>"));
  const NodePtr declaration = Create(NODE_ATTRIBUTE, u"xmlns", u"");
  PutText(declaration, u"urn:other");
  ASSERT_EQ(Attributes(Element())->setNamedItem(declaration.Get(), nullptr), S_OK);
  EXPECT_EQ(Xml(Element()), "<r/>");
}

TEST_F(DomTest, ChangedDeclarationChangesNoNamespace) {
  ASSERT_TRUE(Load("<p:r xmlns:p='urn:one'><p:c/></p:r>"));
  PutText(Attribute(Element(), u"xmlns:p"), u"urn:two");
  EXPECT_EQ(Uri(Element()), "urn:one");
  EXPECT_EQ(Xml(Element()), "<p:r xmlns:p=\"urn:one\"><p:c/></p:r>");
}

TEST_F(DomTest, OnePrefixForTwoNamespacesIsToldApart) {
  ASSERT_TRUE(Load("<p:r xmlns:p='urn:one'/>"));
  const NodePtr attribute = Create(NODE_ATTRIBUTE, u"p:a", u"urn:two");
  PutText(attribute, u"1");
  ASSERT_EQ(Attributes(Element())->setNamedItem(attribute.Get(), nullptr), S_OK);
  const NodePtr bare = Create(NODE_ATTRIBUTE, u"b", u"urn:three");
  PutText(bare, u"2");
  ASSERT_EQ(Attributes(Element())->setNamedItem(bare.Get(), nullptr), S_OK);
  Bstr xml;
  ASSERT_EQ(Element()->get_xml(xml.Receive()), S_OK);
  ASSERT_TRUE(Load(xml.View())) << Show(xml.View());
  SetNamespaces(u"xmlns:one='urn:one' xmlns:two='urn:two' xmlns:three='urn:three'");
  EXPECT_TRUE(Find(u"/one:r[@two:a='1' and @three:b='2']")) << Show(xml.View());
}

TEST_F(DomTest, SectionsAndCommentsCannotEndEarly) {
  ASSERT_TRUE(Load("<r/>"));
  const NodePtr section = Create(NODE_CDATA_SECTION, u"", u"");
  PutText(section, u"a]]>b");
  Append(Element(), section);
  Bstr xml;
  ASSERT_EQ(Element()->get_xml(xml.Receive()), S_OK);
  ASSERT_TRUE(Load(xml.View())) << Show(xml.View());
  EXPECT_EQ(Text(Element()), "a]]>b");
  const NodePtr comment = Create(NODE_COMMENT, u"", u"");
  EXPECT_EQ(comment->put_text(Bstr(u"a--b").Get()), E_INVALIDARG);
  EXPECT_EQ(comment->put_text(Bstr(u"a-").Get()), E_INVALIDARG);
  EXPECT_EQ(comment->put_text(Bstr(u"a-b").Get()), S_OK);
}

TEST_F(DomTest, NodeRemovedFromItsNamespaceKeepsIt) {
  ASSERT_TRUE(Load("<p:a xmlns:p='urn:p'><p:b p:c='1'/></p:a>"));
  const NodePtr b = Find(u"/*/*");
  ASSERT_EQ(Element()->removeChild(b.Get(), nullptr), S_OK);
  EXPECT_EQ(Xml(b), "<p:b xmlns:p=\"urn:p\" p:c=\"1\"/>");
}

TEST_F(DomTest, UnpairedSurrogatePutInComesBack) {
  ASSERT_TRUE(Load("<r/>"));
  const WideString text = {u'a', 0xD800, u'b'};
  PutText(Element(), text);
  EXPECT_EQ(Text(Element()), "a\\xD800b");
}

}  // namespace
}  // namespace velandoc
