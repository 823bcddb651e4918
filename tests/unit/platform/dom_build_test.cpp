// Building a request: createNode, put_text, appendChild, attributes, get_xml.

#include "tests/unit/platform/dom_differences.h"
#include "tests/unit/platform/dom_fixture.h"

namespace velandoc {
namespace {

constexpr WideView kEnvelope = OLESTR(
    "<soap:Envelope "
    "xmlns:soap='http://schemas.xmlsoap.org/soap/envelope/'><soap:Body/></soap:Envelope>");

/// Reads a serialized text again and asserts that it parses.
class DomBuildTest : public DomTest {
 protected:
  NodePtr Body() {
    NodePtr envelope;
    CheckResult(m_document->get_firstChild(envelope.Receive()));
    NodePtr body;
    CheckResult(envelope->get_firstChild(body.Receive()));
    return body;
  }

  /// Loads what get_xml gives into the document itself.
  void Reload() {
    Bstr xml;
    CheckResult(m_document->get_xml(xml.Receive()));
    ASSERT_TRUE(Load(xml.View())) << Show(xml.View());
  }
};

TEST_F(DomBuildTest, RequestHasTheServiceNamespaceThroughout) {
  ASSERT_TRUE(Load(kEnvelope));
  const NodePtr method = Create(NODE_ELEMENT, OLESTR("GetList"), OLESTR("urn:service/"));
  Append(Body(), method);
  const NodePtr parameter = Create(NODE_ELEMENT, OLESTR("listName"), OLESTR("urn:service/"));
  PutText(parameter, OLESTR("a<b>&\"c\""));
  Append(method, parameter);
  Reload();
  SetNamespaces(
      OLESTR("xmlns:soap='http://schemas.xmlsoap.org/soap/envelope/' xmlns:resp='urn:service/'"));
  const NodePtr found = Find(OLESTR("/soap:Envelope/soap:Body/resp:GetList/resp:listName"));
  ASSERT_TRUE(found);
  EXPECT_EQ(Text(found), "a<b>&\"c\"");
  EXPECT_EQ(Name(found), "listName");
}

TEST_F(DomBuildTest, ChildWithoutNamespaceKeepsNone) {
  ASSERT_TRUE(Load("<r xmlns='urn:a'/>"));
  const NodePtr child = Create(NODE_ELEMENT, OLESTR("Query"), OLESTR(""));
  Append(Element(), child);
  EXPECT_EQ(Uri(child), "");
  Reload();
  NodePtr read;
  ASSERT_EQ(Element()->get_firstChild(read.Receive()), S_OK);
  EXPECT_EQ(Uri(Element()), "urn:a");
  EXPECT_EQ(Uri(read), kLosesEmptyNamespace ? "urn:a" : "");
}

TEST_F(DomBuildTest, PutTextReplacesAllChildren) {
  ASSERT_TRUE(Load("<r>old<a/><b><c/></b></r>"));
  PutText(Element(), OLESTR("new"));
  EXPECT_EQ(Text(Element()), "new");
  ComPtr<IXMLDOMNodeList> children;
  ASSERT_EQ(Element()->get_childNodes(children.Receive()), S_OK);
  EXPECT_EQ(Count(children), 1);
}

TEST_F(DomBuildTest, PutTextTakesNullAsEmpty) {
  ASSERT_TRUE(Load("<r>old</r>"));
  EXPECT_EQ(Element()->put_text(nullptr), S_OK);
  EXPECT_EQ(Text(Element()), "");
}

TEST_F(DomBuildTest, AttributeIsSetWithItsText) {
  ASSERT_TRUE(Load("<r/>"));
  const NodePtr attribute = Create(NODE_ATTRIBUTE, OLESTR("Name"), OLESTR(""));
  PutText(attribute, OLESTR("a\"<&>'\n\tb"));
  ComPtr<IXMLDOMNode> set;
  ASSERT_EQ(Attributes(Element())->setNamedItem(attribute.Get(), set.Receive()), S_OK);
  EXPECT_EQ(set.Get() == attribute.Get(), !kMakesObjectsAnew);
  EXPECT_EQ(Text(Attribute(Element(), OLESTR("Name"))), "a\"<&>'\\x000A\\x0009b");
  Reload();
  EXPECT_EQ(Text(Attribute(Element(), OLESTR("Name"))), "a\"<&>'\\x000A\\x0009b");
}

TEST_F(DomBuildTest, SetNamedItemReplacesTheOneOfThatName) {
  ASSERT_TRUE(Load("<r a='1' b='2' c='3'/>"));
  NodePtr old;
  if (!kFreesHeldNodes) old = Attribute(Element(), OLESTR("b"));
  const NodePtr attribute = Create(NODE_ATTRIBUTE, OLESTR("b"), OLESTR(""));
  PutText(attribute, OLESTR("new"));
  ASSERT_EQ(Attributes(Element())->setNamedItem(attribute.Get(), nullptr), S_OK);
  LONG length = 0;
  ASSERT_EQ(Attributes(Element())->get_length(&length), S_OK);
  EXPECT_EQ(length, 3);
  EXPECT_EQ(Text(Attribute(Element(), OLESTR("b"))), "new");
  if (old) {
    EXPECT_EQ(Text(old), "2");
  }
}

TEST_F(DomBuildTest, CreateNodeWantsAKindAndAName) {
  NodePtr node;
  for (const OLECHAR* name :
       {OLESTR(""), OLESTR("a b"), OLESTR("1a"), OLESTR("a:b:c"), OLESTR("<")}) {
    if (kTakesAnyName && *name != 0) continue;
    EXPECT_TRUE(FAILED(m_document->createNode(Variant(NODE_ELEMENT, VT_INT).Get(), Bstr(name).Get(),
                                              Bstr(OLESTR("u")).Get(), node.Receive())))
        << Show(name);
    EXPECT_FALSE(node);
  }
  for (const INT type : {-1, 0, 13, 1000}) {
    EXPECT_TRUE(FAILED(m_document->createNode(Variant(type, VT_INT).Get(), Bstr(OLESTR("a")).Get(),
                                              nullptr, node.Receive())));
    EXPECT_FALSE(node);
  }
  EXPECT_EQ(m_document->createNode(Variant(NODE_ELEMENT, VT_I4).Get(), Bstr(OLESTR("a")).Get(),
                                   nullptr, node.Receive()),
            S_OK);
}

TEST_F(DomBuildTest, CreatedNodeOutlivesTheDocumentsReference) {
  ASSERT_TRUE(Load("<r/>"));
  const NodePtr node = Create(NODE_ELEMENT, OLESTR("a"), OLESTR("u"));
  m_document.Reset();
  EXPECT_EQ(Name(node), "a");
  ComPtr<IXMLDOMDocument> owner;
  ASSERT_EQ(node->get_ownerDocument(owner.Receive()), S_OK);
  ASSERT_TRUE(owner);
  VARIANT_BOOL success = VARIANT_FALSE;
  EXPECT_EQ(owner->loadXML(Bstr(OLESTR("<b/>")).Get(), &success), S_OK);
}

}  // namespace
}  // namespace velandoc
