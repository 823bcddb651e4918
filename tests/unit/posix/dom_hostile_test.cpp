// Texts that an unfriendly server could send: the told result, in time and memory that grow with
// their size.

#include <sys/resource.h>

#include <ctime>

#include "tests/unit/platform/dom_fixture.h"

namespace velandoc {
namespace {

/// Of the processor's time, since others may keep the machine busy. A sanitizer's build stays below
/// it, work that grows with the square of the size does not.
constexpr double kTimeLimit = 60;

class DomHostileTest : public DomTest {
 protected:
  void TearDown() override {
    EXPECT_LT(static_cast<double>(std::clock() - m_begin) / CLOCKS_PER_SEC, kTimeLimit);
  }

 private:
  const std::clock_t m_begin = std::clock();
};

std::string Repeat(std::string_view text, std::size_t count) {
  std::string repeated;
  repeated.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) repeated += text;
  return repeated;
}

std::string WithAttributes(std::size_t count) {
  std::string xml = "<a";
  for (std::size_t i = 0; i < count; ++i) xml += " a" + std::to_string(i) + "='1'";
  return xml + "/>";
}

TEST_F(DomHostileTest, DeepNestingEndsAtTheLimit) {
  EXPECT_FALSE(Load(Repeat("<a>", 1'000'000)));
  EXPECT_FALSE(Load(Repeat("<a>", 100'000) + Repeat("</a>", 100'000)));
}

TEST_F(DomHostileTest, TreeBuiltDeepIsReadAndFreed) {
  constexpr int kDepth = 20'000;
  ASSERT_TRUE(Load("<r/>"));
  NodePtr inner = Element();
  for (int i = 0; i < kDepth; ++i) {
    const NodePtr child = Create(NODE_ELEMENT, u"a", u"");
    Append(inner, child);
    inner = child;
  }
  PutText(inner, u"deep");
  EXPECT_EQ(Text(Element()), "deep");
  EXPECT_EQ(Xml(Element()),
            "<r>" + Repeat("<a>", kDepth) + "deep" + Repeat("</a>", kDepth) + "</r>");
  NodePtr copy;
  ASSERT_EQ(Element()->cloneNode(VARIANT_TRUE, copy.Receive()), S_OK);
  EXPECT_EQ(Text(copy), "deep");
}

TEST_F(DomHostileTest, ManySiblingsAreReadInTurn) {
  constexpr LONG kCount = 200'000;
  ASSERT_TRUE(Load("<a>" + Repeat("<b/>", kCount) + "</a>"));
  ComPtr<IXMLDOMNodeList> list;
  ASSERT_EQ(Element()->get_childNodes(list.Receive()), S_OK);
  ASSERT_EQ(Count(list), kCount);
  for (LONG i = 0; i < kCount; ++i) {
    NodePtr node;
    ASSERT_EQ(list->get_item(i, node.Receive()), S_OK);
  }
  EXPECT_EQ(Count(FindAll(Root(), u"//b")), kCount);
  EXPECT_EQ(Count(FindAll(Root(), u"//b/..")), 1);
}

TEST_F(DomHostileTest, AttributesOfOneTagAreLimited) {
  ASSERT_TRUE(Load(WithAttributes(2048)));
  LONG length = 0;
  ASSERT_EQ(Attributes(Element())->get_length(&length), S_OK);
  EXPECT_EQ(length, 2048);
  EXPECT_EQ(Text(Attribute(Element(), u"a2047")), "1");
  EXPECT_FALSE(Load(WithAttributes(2049)));
  EXPECT_FALSE(Load(WithAttributes(1'000'000)));
}

TEST_F(DomHostileTest, LongTextIsNoLongTag) {
  // Nothing that looks like attributes in other places counts.
  const std::string values = Repeat(" a='1'", 10'000);
  EXPECT_TRUE(Load("<a>" + values + "</a>"));
  EXPECT_TRUE(Load("<a><!--<b" + values + "--></a>"));
  EXPECT_TRUE(Load("<a><![CDATA[<b" + values + "]]></a>"));
  EXPECT_TRUE(Load("<a><?p <b" + values + "?></a>"));
  EXPECT_TRUE(Load("<a b=\"" + values + "\"/>"));
}

TEST_F(DomHostileTest, DeclarationsInForceAreLimited) {
  const auto nested = [](int depth, int each) {
    std::string xml;
    for (int i = 0; i < depth; ++i) {
      xml += "<a";
      for (int k = 0; k < each; ++k) xml += " xmlns:p" + std::to_string(i * each + k) + "='u'";
      xml += ">";
    }
    return xml + Repeat("</a>", static_cast<std::size_t>(depth));
  };
  EXPECT_TRUE(Load(nested(128, 8)));
  EXPECT_FALSE(Load(nested(128, 9)));
}

TEST_F(DomHostileTest, DifferentNamesAreLimited) {
  const auto named = [](int count, std::string_view before, std::string_view after) {
    std::string xml = "<r>";
    for (int i = 0; i < count; ++i)
      xml += std::string(before) + std::to_string(i) + std::string(after);
    return xml + "</r>";
  };
  EXPECT_TRUE(Load(named(50'000, "<a", "/>")));
  EXPECT_FALSE(Load(named(1'000'000, "<a", "/>")));
  EXPECT_FALSE(Load(named(1'000'000, "<a xmlns='u", "'/>")));
  EXPECT_FALSE(Load(named(1'000'000, "<?a", "?>")));
  // Values are no names.
  EXPECT_TRUE(Load(named(200'000, "<a b='", "'/>")));
}

// A page of a million pairs, four fifths of the limit, is read by another test.
TEST_F(DomHostileTest, NodesAreLimitedToWhatAQueryCanGather) {
  WideString xml = u"<a>";
  for (int i = 0; i < 2'500'000; ++i) xml.append(u"<b/>x", 5);  // an element and a text
  EXPECT_FALSE(Load(xml.append(u"</a>")));
}

TEST_F(DomHostileTest, ManyTextsBetweenSections) {
  ASSERT_TRUE(Load("<a>" + Repeat("x<![CDATA[y]]>", 100'000) + "</a>"));
  Bstr text;
  ASSERT_EQ(Element()->get_text(text.Receive()), S_OK);
  EXPECT_EQ(text.View().size(), 200'000U);
}

TEST_F(DomHostileTest, ManyReferencesInOneText) {
  ASSERT_TRUE(Load("<a>" + Repeat("&#65;&amp;", 200'000) + "</a>"));
  Bstr text;
  ASSERT_EQ(Element()->get_text(text.Receive()), S_OK);
  EXPECT_EQ(text.View().size(), 400'000U);
}

TEST_F(DomHostileTest, AnswerOf100MegabytesIsReadWhole) {
  constexpr std::size_t kSize = 100'000'000;
  {
    WideString xml = u"<a>";
    xml.append(kSize, u'x');
    xml += u"</a>";
    ASSERT_TRUE(Load(WideView(xml)));
  }
  Bstr text;
  ASSERT_EQ(Element()->get_text(text.Receive()), S_OK);
  EXPECT_EQ(text.View().size(), kSize);
  EXPECT_EQ(text.View().find_first_not_of(u'x'), WideView::npos);
  rusage usage = {};
  ASSERT_EQ(getrusage(RUSAGE_SELF, &usage), 0);
  RecordProperty("peak_megabytes", static_cast<int>(usage.ru_maxrss / 1024));
}

TEST_F(DomHostileTest, AnyPrefixOfAnAnswerIsRefusedOrRead) {
  const std::string xml =
      "<?xml version='1.0'?><a xmlns:p='u'><p:b c='&lt;&#65;'>t<![CDATA[s]]><!--c--><?p "
      "q?></p:b></a>";
  for (std::size_t size = 0; size < xml.size(); ++size)
    EXPECT_FALSE(Load(xml.substr(0, size))) << size;
  EXPECT_TRUE(Load(xml));
}

}  // namespace
}  // namespace velandoc
