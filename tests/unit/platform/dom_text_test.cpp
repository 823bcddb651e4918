// What get_text reads: MSXML's white space.

#include "tests/unit/platform/dom_differences.h"
#include "tests/unit/platform/dom_fixture.h"

namespace velandoc {
namespace {

struct Case {
  std::string_view xml;
  std::string_view text;
  std::string_view why;
};

TEST_F(DomTest, TextOfTheRoot) {
  static constexpr Case cases[] = {
      {"<a/>", "", "nothing"},
      {"<a>x</a>", "x", "one text"},
      {"<a> x </a>", "x", "white space at both ends"},
      {"<a>\r\n\tx y\r\n</a>", "x y", "any kind of it"},
      {"<a>x<b>y</b>z</a>", "xyz", "texts at all depths"},
      {"<a><![CDATA[<x>]]></a>", "<x>", "a section"},
      {"<a>x<!-- c --><?p q?>y</a>", "xy", "comments and instructions are no text"},
      {"<a><b>x</b> <b>y</b></a>", "x y", "white space between elements"},
      {"<a><b>x</b>\r\n\t<b>y</b></a>", "x y", "is one blank"},
      {"<a> <b>x</b> </a>", "x", "but not at the ends"},
      {"<a xml:space='preserve'> x </a>", " x ", "kept on demand"},
      {"<a>&lt;&#65;&gt;</a>", "<A>", "references"},
  };
  for (const Case& each : cases) {
    ASSERT_TRUE(Load(each.xml)) << each.xml;
    EXPECT_EQ(Text(Element()), each.text) << each.xml << ": " << each.why;
  }
}

// Behind a start tag it is none.
TEST_F(DomTest, StrippedWhiteSpaceIsABlankAtAnyDepth) {
  ASSERT_TRUE(Load("<a><b>x</b> <!-- c --><d><e>y</e> </d><f>z</f><g> <h>w</h></g></a>"));
  EXPECT_EQ(Text(Element()), "x y zw");
}

TEST_F(DomTest, XPathSeesTheUntrimmedText) {
  ASSERT_TRUE(Load("<a><b> x </b></a>"));
  EXPECT_FALSE(Find(OLESTR("//b[.='x']")));
  EXPECT_TRUE(Find(OLESTR("//b[.=' x ']")));
}

TEST_F(DomTest, CarriageReturnInTheTextIsNotPassedOver) {
  // Lines of an answer that end in CR LF, joined at the line feeds.
  ASSERT_TRUE(Load("<a><p>status=\r</p></a>"));
  EXPECT_EQ(static_cast<bool>(Find(OLESTR("//p[.='status=']"))), kMatchesAcrossCarriageReturn);
  ASSERT_TRUE(Load("<a><p>status=</p></a>"));
  EXPECT_TRUE(Find(OLESTR("//p[.='status=']")));
}

TEST_F(DomTest, AttributeTextIsNotTrimmed) {
  ASSERT_TRUE(Load("<a b='  x  ' c='x\ny\tz' d='&#10;' e=''/>"));
  EXPECT_EQ(Text(Attribute(Element(), OLESTR("b"))), "  x  ");
  EXPECT_EQ(Text(Attribute(Element(), OLESTR("c"))), "x y z");
  EXPECT_EQ(Text(Attribute(Element(), OLESTR("d"))), kTrimsLineFeedAttribute ? "" : "\\x000A");
  EXPECT_EQ(Text(Attribute(Element(), OLESTR("e"))), "");
}

TEST_F(DomTest, WhiteSpaceBetweenTagsIsNoNode) {
  ASSERT_TRUE(Load("<a>\n <b/>\n <b/>\n</a>"));
  ComPtr<IXMLDOMNodeList> children;
  ASSERT_EQ(Element()->get_childNodes(children.Receive()), S_OK);
  EXPECT_EQ(Count(children), 2);
}

TEST_F(DomTest, PreservedWhiteSpaceIsNodes) {
  ASSERT_EQ(m_document->put_preserveWhiteSpace(VARIANT_TRUE), S_OK);
  ASSERT_TRUE(Load("<a> <b/> </a>"));
  ComPtr<IXMLDOMNodeList> children;
  ASSERT_EQ(Element()->get_childNodes(children.Receive()), S_OK);
  EXPECT_EQ(Count(children), 3);
  EXPECT_EQ(Text(Element()), "  ");
}

TEST_F(DomTest, TextPutIntoANodeIsRaw) {
  constexpr WideView kRaw = OLESTR("a &amp; &#65; &none; <b> & c");
  ASSERT_TRUE(Load("<r>x<![CDATA[y]]><!--z--><?p q?></r>"));
  for (NodePtr node = Find(OLESTR("/r/node()")); node;) {
    PutText(node, kRaw);
    EXPECT_EQ(Text(node), kEscapesPutText ? "a &amp;amp; &amp;#65; &amp;none; &lt;b&gt; &amp; c"
                                          : "a &amp; &#65; &none; <b> & c");
    PutText(node, OLESTR(""));
    EXPECT_EQ(Text(node), "");
    NodePtr next;
    ASSERT_TRUE(SUCCEEDED(node->get_nextSibling(next.Receive())));
    node = std::move(next);
  }
}

TEST_F(DomTest, TextCountsUnitsOfTheBstr) {
  ASSERT_TRUE(Load("<a>\xE9\xFC</a>"));
  Bstr text;
  ASSERT_EQ(Element()->get_text(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), WideView(OLESTR("\u00E9\u00FC")));
}

}  // namespace
}  // namespace velandoc
