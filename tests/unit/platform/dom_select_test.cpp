// XPath through selectSingleNode and selectNodes, and the property SelectionNamespaces.

#include "tests/unit/platform/dom_differences.h"
#include "tests/unit/platform/dom_fixture.h"

namespace velandoc {
namespace {

constexpr std::string_view kAnswer =
    "<s:Envelope xmlns:s='urn:soap'><s:Body><R xmlns='urn:resp'><Field Name='a'/><Field Name='b'/>"
    "<z:row xmlns:z='#RowsetSchema' ows_ID='7'/></R></s:Body></s:Envelope>";

HRESULT SetNamespacesResult(const DocumentPtr& document, WideView text) {
  return document->setProperty(Bstr(OLESTR("SelectionNamespaces")).Get(), Variant(text).Get());
}

template <class Node>
HRESULT SelectOne(const ComPtr<Node>& node, WideView query) {
  NodePtr found;
  const HRESULT result = node->selectSingleNode(Bstr(query).Get(), found.Receive());
  EXPECT_EQ(static_cast<bool>(found), result == S_OK);
  return result;
}

TEST_F(DomTest, PrefixesAreThoseOfTheProperty) {
  ASSERT_TRUE(Load(kAnswer));
  SetNamespaces(OLESTR("xmlns:soap='urn:soap' xmlns:resp=\"urn:resp\""));
  ASSERT_TRUE(Find(OLESTR("/soap:Envelope/soap:Body/resp:R")));
  EXPECT_EQ(Count(FindAll(Root(), OLESTR("//resp:Field"))), 2);
  EXPECT_EQ(Text(Attribute(Find(OLESTR("//resp:Field[2]")), OLESTR("Name"))), "b");
  // The document's own prefixes and default namespaces mean nothing to a query.
  EXPECT_FALSE(Find(OLESTR("//Field")));
  EXPECT_EQ(SelectOne(Root(), OLESTR("//s:Body")), E_FAIL);
}

TEST_F(DomTest, NamespacesStayOverALoad) {
  SetNamespaces(OLESTR("xmlns:r='urn:resp'"));
  ASSERT_TRUE(Load(kAnswer));
  EXPECT_TRUE(Find(OLESTR("//r:Field")));
  ASSERT_TRUE(Load(kAnswer));
  EXPECT_TRUE(Find(OLESTR("//r:Field")));
}

TEST_F(DomTest, NewNamespacesDropTheOldPrefixes) {
  ASSERT_TRUE(Load(kAnswer));
  SetNamespaces(OLESTR("xmlns:one='urn:resp'"));
  EXPECT_TRUE(Find(OLESTR("//one:Field")));
  SetNamespaces(OLESTR("xmlns:two='urn:resp'"));
  EXPECT_TRUE(Find(OLESTR("//two:Field")));
  EXPECT_EQ(SelectOne(Root(), OLESTR("//one:Field")), E_FAIL);
}

TEST_F(DomTest, ADocumentsNamespacesAreItsOwn) {
  // One document after the other, and while the first is still there.
  for (const bool isFirstKept : {false, true}) {
    DocumentPtr first = NewDocument();
    ASSERT_TRUE(Load(first, Wide(kAnswer)));
    ASSERT_EQ(SetNamespacesResult(first, OLESTR("xmlns:one='urn:resp'")), S_OK);
    ASSERT_EQ(SelectOne(first, OLESTR("//one:Field")), S_OK);
    if (!isFirstKept) first.Reset();

    const DocumentPtr second = NewDocument();
    ASSERT_TRUE(Load(second, Wide(kAnswer)));
    EXPECT_EQ(SelectOne(second, OLESTR("//one:Field")), E_FAIL);
    ASSERT_EQ(SetNamespacesResult(second, OLESTR("xmlns:one='urn:soap'")), S_OK);
    EXPECT_EQ(SelectOne(second, OLESTR("//one:Field")), S_FALSE);
    EXPECT_EQ(SelectOne(second, OLESTR("//one:Body")), S_OK);
  }
}

TEST_F(DomTest, AFailedQuerySpoilsNoOther) {
  for (int i = 0; i < 3; ++i) {
    const DocumentPtr document = NewDocument();
    ASSERT_TRUE(Load(document, Wide(kAnswer)));
    EXPECT_EQ(SelectOne(document, OLESTR("//Field[")), E_FAIL);
    EXPECT_EQ(SelectOne(document, OLESTR("//*[local-name()='Field']")), S_OK);
  }
  // A query that fails in the midst of its evaluation, more often than evaluations may be nested.
  const DocumentPtr document = NewDocument();
  ASSERT_TRUE(Load(document, Wide(kAnswer)));
  for (int i = 0; i < 6000; ++i) {
    ASSERT_EQ(SelectOne(document, OLESTR("//*[1 + (1 + (1 + $none))]")), E_FAIL);
  }
  EXPECT_EQ(SelectOne(document, OLESTR("//*[local-name()='Field']")), S_OK);
}

TEST_F(DomTest, BadNamespacesFail) {
  for (const OLECHAR* text : {OLESTR("xmlns:a=urn"), OLESTR("xmlns:a='urn"), OLESTR("a='urn'"),
                              OLESTR("xmlns:a"), OLESTR("<")}) {
    const HRESULT result = SetNamespacesResult(m_document, text);
    EXPECT_TRUE(result == E_FAIL || result == E_INVALIDARG) << Show(text);
  }
  EXPECT_EQ(SetNamespacesResult(m_document, OLESTR("")), S_OK);
}

TEST_F(DomTest, NoMatchIsNoError) {
  ASSERT_TRUE(Load(kAnswer));
  EXPECT_EQ(SelectOne(Root(), OLESTR("//none")), S_FALSE);
  EXPECT_EQ(Count(FindAll(Root(), OLESTR("//none"))), 0);
}

TEST_F(DomTest, WrongQueriesFail) {
  ASSERT_TRUE(Load(kAnswer));
  for (const OLECHAR* query : {OLESTR("//"), OLESTR("a["), OLESTR("//x:y"), OLESTR("")}) {
    EXPECT_TRUE(FAILED(SelectOne(Root(), query))) << Show(query);
    ComPtr<IXMLDOMNodeList> list;
    EXPECT_TRUE(FAILED(Root()->selectNodes(Bstr(query).Get(), list.Receive()))) << Show(query);
    EXPECT_FALSE(list);
  }
}

TEST_F(DomTest, QueriesStartAtTheirNode) {
  ASSERT_TRUE(Load("<a><b><c n='1'/></b><b><c n='2'/></b></a>"));
  const NodePtr second = Find(OLESTR("/a/b[2]"));
  EXPECT_EQ(Text(Attribute(Find(second, OLESTR("c")), OLESTR("n"))), "2");
  EXPECT_EQ(Text(Find(second, OLESTR("c/@n"))), "2");
  EXPECT_EQ(Text(Attribute(Find(second, OLESTR("../b/c")), OLESTR("n"))), "1");
  // Two slashes in front search the whole document from anywhere.
  EXPECT_EQ(Count(FindAll(second, OLESTR("//c"))), 2);
  EXPECT_EQ(Count(FindAll(second, OLESTR(".//c"))), 1);
}

TEST_F(DomTest, FoundNodesAreInDocumentOrder) {
  ASSERT_TRUE(Load("<a><b/><c/><b/><c/></a>"));
  for (const OLECHAR* query : {OLESTR("//c | //b"), OLESTR("/a/c[2] | /a/c[2]/preceding::*")}) {
    const auto list = FindAll(Root(), query);
    std::string names;
    for (LONG i = 0; i < Count(list); ++i) {
      NodePtr node;
      ASSERT_EQ(list->get_item(i, node.Receive()), S_OK);
      names += Name(node);
    }
    EXPECT_EQ(names, "bcbc") << Show(query);
    NodePtr outside;
    EXPECT_EQ(list->get_item(4, outside.Receive()), S_FALSE);
    EXPECT_FALSE(outside);
  }
}

TEST_F(DomTest, SelectionOfAnAnswerOfTheOldKind) {
  ASSERT_TRUE(Load(
      "<html><body><p>status=</p><ul><li>status=589830</li><li>msg=a=b</li></ul></body></html>"));
  const NodePtr p = Find(OLESTR("//body/p[.='status=']"));
  ASSERT_TRUE(p);
  NodePtr list;
  ASSERT_EQ(p->get_nextSibling(list.Receive()), S_OK);
  EXPECT_EQ(Text(Find(list, OLESTR("li[starts-with(.,'status=')]"))), "status=589830");
  EXPECT_EQ(Text(Find(list, OLESTR("li[starts-with(., 'msg=')]"))), "msg=a=b");
}

}  // namespace
}  // namespace velandoc
