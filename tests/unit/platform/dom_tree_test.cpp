// Walking and changing trees; who keeps what alive.

#include <set>

#include "tests/unit/platform/dom_differences.h"
#include "tests/unit/platform/dom_fixture.h"

namespace velandoc {
namespace {

ComPtr<IXMLDOMNodeList> Children(const NodePtr& node) {
  ComPtr<IXMLDOMNodeList> list;
  CheckResult(node->get_childNodes(list.Receive()));
  return list;
}

TEST_F(DomTest, Navigation) {
  ASSERT_TRUE(Load("<a><b/>text<c/></a>"));
  const NodePtr a = Element();
  NodePtr b;
  ASSERT_EQ(a->get_firstChild(b.Receive()), S_OK);
  EXPECT_EQ(Name(b), "b");
  NodePtr text;
  ASSERT_EQ(b->get_nextSibling(text.Receive()), S_OK);
  EXPECT_EQ(Name(text), "#text");
  NodePtr c;
  ASSERT_EQ(a->get_lastChild(c.Receive()), S_OK);
  EXPECT_EQ(Name(c), "c");
  NodePtr other;
  ASSERT_EQ(c->get_previousSibling(other.Receive()), S_OK);
  EXPECT_EQ(Name(other), "#text");
  EXPECT_EQ(c->get_nextSibling(other.Receive()), S_FALSE);
  EXPECT_FALSE(other);
  EXPECT_EQ(c->get_firstChild(other.Receive()), S_FALSE);
  ASSERT_EQ(c->get_parentNode(other.Receive()), S_OK);
  EXPECT_EQ(Name(other), "a");
  EXPECT_EQ(Root()->get_parentNode(other.Receive()), S_FALSE);
}

TEST_F(DomTest, KindsOfNodes) {
  ASSERT_TRUE(Load("<a b='1'>x<![CDATA[y]]><!--z--><?p q?></a>"));
  struct Kind {
    const OLECHAR* query;
    DOMNodeType type;
    std::string_view name;
    std::string_view value;
  };
  static constexpr Kind kinds[] = {
      {OLESTR("/a"), NODE_ELEMENT, "a", ""},
      {OLESTR("/a/@b"), NODE_ATTRIBUTE, "b", "1"},
      {OLESTR("/a/text()[1]"), NODE_TEXT, "#text", "x"},
      {OLESTR("/a/comment()"), NODE_COMMENT, "#comment", "z"},
      {OLESTR("/a/processing-instruction()"), NODE_PROCESSING_INSTRUCTION, "p", "q"},
      {OLESTR("/"), NODE_DOCUMENT, "#document", ""},
  };
  for (const Kind& kind : kinds) {
    const NodePtr node = Find(kind.query);
    ASSERT_TRUE(node) << kind.name;
    DOMNodeType type = NODE_INVALID;
    EXPECT_EQ(node->get_nodeType(&type), S_OK);
    EXPECT_EQ(type, kind.type) << kind.name;
    EXPECT_EQ(Name(node), kind.name);
    Variant value;
    const bool hasValue = type != NODE_ELEMENT && type != NODE_DOCUMENT;
    EXPECT_EQ(node->get_nodeValue(value.Receive()), hasValue ? S_OK : S_FALSE) << kind.name;
    if (!hasValue) {
      EXPECT_EQ(value.Get().vt, VT_NULL);
      continue;
    }
    ASSERT_EQ(value.Get().vt, VT_BSTR);
    EXPECT_EQ(Show(value.Get().bstrVal), kind.value);
  }
  NodePtr section;
  ASSERT_EQ(Children(Element())->get_item(1, section.Receive()), S_OK);
  EXPECT_EQ(Name(section), "#cdata-section");
}

TEST_F(DomTest, NamesWithNamespaces) {
  ASSERT_TRUE(Load("<p:a xmlns:p='urn:p' p:x='1' y='2'><b xmlns='urn:d'/></p:a>"));
  EXPECT_EQ(Name(Element()), "p:a");
  EXPECT_EQ(Uri(Element()), "urn:p");
  Bstr part;
  EXPECT_EQ(Element()->get_prefix(part.Receive()), S_OK);
  EXPECT_EQ(Show(part.View()), "p");
  EXPECT_EQ(Element()->get_baseName(part.Receive()), S_OK);
  EXPECT_EQ(Show(part.View()), "a");
  EXPECT_EQ(Uri(Attribute(Element(), OLESTR("p:x"))), "urn:p");
  EXPECT_EQ(Uri(Attribute(Element(), OLESTR("y"))), "");
  NodePtr b;
  ASSERT_EQ(Element()->get_firstChild(b.Receive()), S_OK);
  EXPECT_EQ(Name(b), "b");
  EXPECT_EQ(Uri(b), "urn:d");
  EXPECT_FALSE(Attribute(Element(), OLESTR("x")));
}

TEST_F(DomTest, AttributeMapHoldsTheDeclarations) {
  ASSERT_TRUE(Load("<z:row xmlns:z='#RowsetSchema' ows_ID='7' ows_Title=''/>"));
  const auto map = Attributes(Element());
  LONG length = 0;
  ASSERT_EQ(map->get_length(&length), S_OK);
  ASSERT_EQ(length, 3);
  std::set<std::string> read;
  for (LONG i = 0; i < length; ++i) {
    NodePtr attribute;
    ASSERT_EQ(map->get_item(i, attribute.Receive()), S_OK);
    read.insert(Name(attribute) + "=" + Text(attribute));
  }
  // Where the declarations stand among the others is the home's choice.
  const std::set<std::string> expected = {"ows_ID=7", "ows_Title=", "xmlns:z=#RowsetSchema"};
  EXPECT_EQ(read, expected);
  NodePtr outside;
  EXPECT_NE(map->get_item(3, outside.Receive()), S_OK);
  EXPECT_FALSE(outside);
  EXPECT_FALSE(Attribute(Element(), OLESTR("none")));
  const NodePtr declaration = Attribute(Element(), OLESTR("xmlns:z"));
  ASSERT_EQ(static_cast<bool>(declaration), !kFindsNoDeclarationByName);
  if (declaration) {
    EXPECT_EQ(Uri(declaration), "http://www.w3.org/2000/xmlns/");
  }
}

TEST_F(DomTest, OnlyElementsHaveAttributes) {
  ASSERT_TRUE(Load("<a>x</a>"));
  ComPtr<IXMLDOMNamedNodeMap> map;
  EXPECT_EQ(Root()->get_attributes(map.Receive()), S_FALSE);
  EXPECT_FALSE(map);
}

TEST_F(DomTest, ChildListIsReadInAnyOrder) {
  ASSERT_TRUE(Load("<a><b0/><b1/><b2/><b3/></a>"));
  const auto list = Children(Element());
  ASSERT_EQ(Count(list), 4);
  for (const int i : {0, 3, 1, 2, 2, 0}) {
    NodePtr node;
    ASSERT_EQ(list->get_item(static_cast<LONG>(i), node.Receive()), S_OK);
    EXPECT_EQ(Name(node), "b" + std::to_string(i));
  }
  for (const int i : {-1, 4}) {
    NodePtr node;
    EXPECT_NE(list->get_item(static_cast<LONG>(i), node.Receive()), S_OK);
    EXPECT_FALSE(node);
  }
}

TEST_F(DomTest, ChildListFollowsTheTree) {
  ASSERT_TRUE(Load("<a><b/><c/></a>"));
  const auto list = Children(Element());
  NodePtr first;
  ASSERT_EQ(list->get_item(0, first.Receive()), S_OK);
  ASSERT_EQ(Element()->removeChild(first.Get(), nullptr), S_OK);
  EXPECT_EQ(Count(list), 1);
  ASSERT_EQ(list->get_item(0, first.Receive()), S_OK);
  EXPECT_EQ(Name(first), "c");
  Append(Element(), Create(NODE_ELEMENT, OLESTR("d"), OLESTR("")));
  EXPECT_EQ(Count(list), 2);
}

TEST_F(DomTest, InsertRemoveReplace) {
  ASSERT_TRUE(Load("<a><b/></a>"));
  NodePtr b;
  ASSERT_EQ(Element()->get_firstChild(b.Receive()), S_OK);
  const NodePtr c = Create(NODE_ELEMENT, OLESTR("c"), OLESTR(""));
  Variant place;
  place.Get().vt = VT_UNKNOWN;
  place.Get().punkVal = b.Get();
  b->AddRef();
  NodePtr inserted;
  ASSERT_EQ(Element()->insertBefore(c.Get(), place.Get(), inserted.Receive()), S_OK);
  EXPECT_EQ(inserted.Get(), c.Get());
  NodePtr next;
  ASSERT_EQ(c->get_nextSibling(next.Receive()), S_OK);
  EXPECT_EQ(Name(next), "b");

  const NodePtr d = Create(NODE_ELEMENT, OLESTR("d"), OLESTR(""));
  NodePtr replaced;
  ASSERT_EQ(Element()->replaceChild(d.Get(), b.Get(), replaced.Receive()), S_OK);
  EXPECT_EQ(replaced.Get(), b.Get());
  NodePtr parent;
  EXPECT_EQ(b->get_parentNode(parent.Receive()), S_FALSE);

  NodePtr removed;
  ASSERT_EQ(Element()->removeChild(c.Get(), removed.Receive()), S_OK);
  EXPECT_EQ(removed.Get(), c.Get());
  EXPECT_EQ(Count(Children(Element())), 1);
  EXPECT_TRUE(FAILED(Element()->removeChild(c.Get(), nullptr)));
}

TEST_F(DomTest, AppendMovesANode) {
  ASSERT_TRUE(Load("<a><b><x/></b><c/></a>"));
  Append(Find(OLESTR("/a/c")), Find(OLESTR("//x")));
  EXPECT_TRUE(Find(OLESTR("/a/c/x")));
  EXPECT_FALSE(Find(OLESTR("/a/b/x")));
}

TEST_F(DomTest, ImpossibleChildrenAreRefused) {
  if (kTakesImpossibleChildren) return;
  ASSERT_TRUE(Load("<a b='1'><c/></a>"));
  EXPECT_TRUE(FAILED(Element()->appendChild(nullptr, nullptr)));
  EXPECT_TRUE(FAILED(Find(OLESTR("//c"))->appendChild(Element().Get(), nullptr)));
  EXPECT_TRUE(FAILED(Element()->appendChild(Element().Get(), nullptr)));
  EXPECT_TRUE(FAILED(Element()->appendChild(Attribute(Element(), OLESTR("b")).Get(), nullptr)));
  EXPECT_TRUE(FAILED(Element()->appendChild(Root().Get(), nullptr)));
}

TEST_F(DomTest, NodeOfAnotherDocumentIsRefused) {
  ASSERT_TRUE(Load("<a/>"));
  const DocumentPtr other = NewDocument();
  ASSERT_TRUE(Load(other, OLESTR("<b c='1'/>")));
  ComPtr<IXMLDOMElement> foreign;
  ASSERT_EQ(other->get_documentElement(foreign.Receive()), S_OK);
  EXPECT_EQ(SUCCEEDED(Element()->appendChild(foreign.Get(), nullptr)), kMovesNodesBetweenDocuments);
  EXPECT_EQ(Count(Children(Element())), kMovesNodesBetweenDocuments ? 1 : 0);
}

TEST_F(DomTest, AttributeInUseIsRefused) {
  if (kTakesImpossibleChildren) return;
  ASSERT_TRUE(Load("<a b='1'><c/></a>"));
  const NodePtr used = Attribute(Element(), OLESTR("b"));
  EXPECT_TRUE(FAILED(Attributes(Find(OLESTR("//c")))->setNamedItem(used.Get(), nullptr)));
  EXPECT_EQ(Text(Attribute(Element(), OLESTR("b"))), "1");
}

TEST_F(DomTest, CloneIsACopyThatHangsNowhere) {
  ASSERT_TRUE(Load("<a><b x='1' xmlns:q='u'><q:c>t</q:c><!--d--></b></a>"));
  const NodePtr b = Find(OLESTR("//b"));
  NodePtr copy;
  ASSERT_EQ(b->cloneNode(VARIANT_TRUE, copy.Receive()), S_OK);
  NodePtr parent;
  EXPECT_EQ(copy->get_parentNode(parent.Receive()), S_FALSE);
  EXPECT_EQ(Text(Attribute(copy, OLESTR("x"))), "1");
  EXPECT_EQ(Count(Children(copy)), 2);
  PutText(copy, OLESTR("changed"));
  EXPECT_EQ(Text(b), "t");
  ASSERT_EQ(b->cloneNode(VARIANT_FALSE, copy.Receive()), S_OK);
  EXPECT_EQ(Count(Children(copy)), 0);
  EXPECT_EQ(Text(Attribute(copy, OLESTR("x"))), "1");
}

TEST_F(DomTest, OneNodeIsOneObject) {
  if (kMakesObjectsAnew) return;
  ASSERT_TRUE(Load("<a xmlns:p='u' b='1'><c/></a>"));
  EXPECT_EQ(Element().Get(), Find(OLESTR("/a")).Get());
  EXPECT_EQ(Attribute(Element(), OLESTR("b")).Get(), Find(OLESTR("/a/@b")).Get());
  const NodePtr declaration = Attribute(Element(), OLESTR("xmlns:p"));
  EXPECT_EQ(declaration.Get(), Attribute(Element(), OLESTR("xmlns:p")).Get());
  EXPECT_EQ(Root().Get(), static_cast<IXMLDOMNode*>(m_document.Get()));
  EXPECT_EQ(Find(OLESTR("/")).Get(), static_cast<IXMLDOMNode*>(m_document.Get()));
}

TEST_F(DomTest, NodesKeepWhatTheyNeed) {
  ASSERT_TRUE(Load("<a xmlns:p='urn:p'><b><p:c d='1'>text</p:c></b></a>"));
  NodePtr c = Find(OLESTR("//*[@d]"));
  NodePtr d = Attribute(c, OLESTR("d"));
  NodePtr text;
  ASSERT_EQ(c->get_firstChild(text.Receive()), S_OK);
  auto list = Children(c);
  auto map = Attributes(c);
  // The subtree goes, and everything above it, and the document.
  NodePtr b = Find(OLESTR("//b"));
  ASSERT_EQ(Element()->removeChild(b.Get(), nullptr), S_OK);
  b.Reset();
  m_document.Reset();
  EXPECT_EQ(Uri(c), "urn:p");
  EXPECT_EQ(Text(d), "1");
  c.Reset();
  EXPECT_EQ(Text(text), "text");
  EXPECT_EQ(Count(list), 1);
  text.Reset();
  d.Reset();
  NodePtr again;
  ASSERT_EQ(map->get_item(0, again.Receive()), S_OK);
  list = {};
  map = {};
  EXPECT_EQ(Text(again), "1");
}

TEST_F(DomTest, FoundNodesOutliveTheirRemoval) {
  if (kFreesHeldNodes) return;
  ASSERT_TRUE(Load("<a><b>1</b><b>2</b></a>"));
  const auto found = FindAll(Root(), OLESTR("//b"));
  PutText(Element(), OLESTR(""));
  ASSERT_EQ(Count(found), 2);
  NodePtr second;
  ASSERT_EQ(found->get_item(1, second.Receive()), S_OK);
  EXPECT_EQ(Text(second), "2");
}

}  // namespace
}  // namespace velandoc
