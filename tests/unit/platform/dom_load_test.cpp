// loadXML: which texts are taken, and what a refused one leaves behind.

#include "tests/unit/platform/dom_differences.h"
#include "tests/unit/platform/dom_fixture.h"

namespace velandoc {
namespace {

struct Case {
  std::string_view xml;
  std::string_view why;
};

TEST_F(DomTest, LoadTakesWellFormedText) {
  static constexpr Case cases[] = {
      {"<a/>", "the least"},
      {"<?xml version='1.0'?><a/>", "a declaration"},
      {"<?xml version='1.0' encoding='utf-8'?><a/>", "a declared encoding counts for nothing"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", "nor one that is not UTF"},
      {"<a/>\r\n", "white space behind the root"},
      {"\r\n <a/>", "white space before the root where nothing is declared"},
      {"<!-- c --><a/><?p q?>", "comments and instructions around the root"},
      {"<a xmlns='urn:x' xmlns:z='#RowsetSchema'><z:b z:c='1'/></a>", "relative namespace names"},
      {"<a b='&#10;&lt;&amp;&quot;'>&gt;&apos;&#x41;</a>", "references of XML itself"},
      {"<a><![CDATA[<&]]></a>", "a section"},
      {"<a b='1' xmlns:b='u' b:b='2'/>", "names that differ by namespace only"},
  };
  for (const Case& each : cases) EXPECT_TRUE(Load(each.xml)) << each.why;
}

TEST_F(DomTest, LoadRefuses) {
  static constexpr Case cases[] = {
      {"", "empty text"},
      {"   ", "only white space"},
      {"plain", "no element"},
      {"<a>&</a>", "a bare ampersand"},
      {"<a>&nbsp;</a>", "an entity of HTML"},
      {"<a b=1/>", "an attribute without quotes"},
      {"<a b/>", "an attribute without a value"},
      {"<a b='1' b='2'/>", "an attribute twice"},
      {"<a/>x", "text behind the root"},
      {"<a/><b/>", "two roots"},
      {"<a>", "an open element"},
      {"<a></b>", "the wrong end tag"},
      {"<a><b></a></b>", "crossing elements"},
      {" <?xml version='1.0'?><a/>", "white space in front of a declaration"},
      {"<?xml version='1.0'?><?xml version='1.0'?><a/>", "a second declaration"},
      {"<a b='<'/>", "a raw less-than in an attribute"},
      {"<a>]]></a>", "the end of a section that never began"},
      {"<a><!-- -- --></a>", "two dashes in a comment"},
      {"<a>\x01</a>", "a control character"},
      {"<a>&#0;</a>", "a reference to the character zero"},
      {"<a>&#xD800;</a>", "a reference to a surrogate"},
      {"<br>", "HTML"},
  };
  for (const Case& each : cases) EXPECT_FALSE(Load(each.xml)) << each.why;
}

TEST_F(DomTest, LoadRefusesNoTextAtAll) {
  VARIANT_BOOL success = VARIANT_TRUE;
  EXPECT_NE(m_document->loadXML(nullptr, &success), S_OK);
  EXPECT_EQ(success, VARIANT_FALSE);
}

TEST_F(DomTest, RefusedLoadEmptiesTheDocument) {
  ASSERT_TRUE(Load("<a/>"));
  EXPECT_FALSE(Load("<b>"));
  NodePtr child;
  EXPECT_EQ(m_document->get_firstChild(child.Receive()), S_FALSE);
  EXPECT_FALSE(child);
  EXPECT_FALSE(Element());
}

TEST_F(DomTest, ParseErrorTellsOfTheLatestLoad) {
  EXPECT_FALSE(Load("<a>\n<b></a>"));
  ComPtr<IXMLDOMParseError> error;
  ASSERT_EQ(m_document->get_parseError(error.Receive()), S_OK);
  LONG code = 0;
  EXPECT_EQ(error->get_errorCode(&code), S_OK);
  EXPECT_NE(code, 0);
  LONG line = 0;
  EXPECT_EQ(error->get_line(&line), S_OK);
  EXPECT_EQ(line, kTellsNoLine ? 0 : 2);
  Bstr reason;
  EXPECT_EQ(error->get_reason(reason.Receive()), S_OK);
  EXPECT_FALSE(reason.View().empty());

  ASSERT_TRUE(Load("<a/>"));
  ASSERT_EQ(m_document->get_parseError(error.Receive()), S_OK);
  EXPECT_EQ(error->get_errorCode(&code), S_FALSE);
  EXPECT_EQ(code, 0);
}

TEST_F(DomTest, LoadReadsUpToTheFirstZeroUnit) {
  EXPECT_TRUE(Load(WideView(OLESTR("<a/>\0<"), 6)));
  EXPECT_FALSE(Load(WideView(OLESTR("<a\0/>"), 5)));
  EXPECT_FALSE(Load(WideView(OLESTR("\0<a/>"), 5)));
}

TEST_F(DomTest, LoadRefusesUnpairedSurrogates) {
  const WideString before = OLESTR("<a>");
  const WideString after = OLESTR("</a>");
  const OLECHAR high = 0xD83D;
  const OLECHAR low = 0xDE00;
  EXPECT_TRUE(Load(WideView(before + high + low + after)));
  EXPECT_EQ(Text(Element()), "\\xD83D\\xDE00");
  EXPECT_FALSE(Load(WideView(before + high + after)));
  EXPECT_FALSE(Load(WideView(before + low + after)));
  EXPECT_FALSE(Load(WideView(before + low + high + after)));
  EXPECT_FALSE(Load(WideView(before + high)));
}

TEST_F(DomTest, TextOfAllSizesOfUtf8ComesBack) {
  // Lengths around the blocks in which the text is converted.
  for (std::size_t ascii = 0; ascii < 40; ++ascii) {
    WideString text(ascii, OLESTR('x'));
    text += static_cast<OLECHAR>(0x7F);
    text += static_cast<OLECHAR>(0x80);
    text += static_cast<OLECHAR>(0x7FF);
    text += static_cast<OLECHAR>(0x800);
    text += static_cast<OLECHAR>(0xFFFD);
    text += static_cast<OLECHAR>(0xDBFF);
    text += static_cast<OLECHAR>(0xDFFD);
    text += WideString(ascii, OLESTR('y'));
    ASSERT_TRUE(Load(WideView(OLESTR("<a>") + text + OLESTR("</a>"))));
    Bstr read;
    ASSERT_EQ(Element()->get_text(read.Receive()), S_OK);
    EXPECT_EQ(Show(read.View()), Show(text)) << ascii;
  }
}

TEST_F(DomTest, NestingEndsAt256) {
  const auto nested = [](int depth) {
    WideString xml;
    for (int i = 0; i < depth; ++i) xml += OLESTR("<a>");
    for (int i = 0; i < depth; ++i) xml += OLESTR("</a>");
    return xml;
  };
  EXPECT_TRUE(Load(WideView(nested(256))));
  EXPECT_EQ(Load(WideView(nested(257))), kHasNoDepthLimit);
}

TEST_F(DomTest, LoadReplacesWhatWasThere) {
  ASSERT_TRUE(Load("<a><b/></a>"));
  const NodePtr old = Find(OLESTR("//b"));
  ASSERT_TRUE(Load("<c/>"));
  EXPECT_EQ(Name(Element()), "c");
  EXPECT_EQ(Name(old), "b");
}

}  // namespace
}  // namespace velandoc
