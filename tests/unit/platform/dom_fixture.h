// What the tests of the DOM share: a document, and short words for its calls.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/msxml.h"
#include "platform/owners.h"

namespace velandoc {

using DocumentPtr = ComPtr<IXMLDOMDocument2>;
using NodePtr = ComPtr<IXMLDOMNode>;

/// ASCII, and code points below 256 as themselves.
inline WideString Wide(std::string_view text) {
  WideString wide;
  for (const char c : text) wide += static_cast<OLECHAR>(static_cast<unsigned char>(c));
  return wide;
}

/// For comparing in assertions: what is not printable ASCII becomes \xXXXX.
inline std::string Show(WideView text) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string shown;
  for (const OLECHAR unit : text) {
    if (unit >= 0x20 && unit < 0x7F) {
      shown += static_cast<char>(unit);
      continue;
    }
    shown += "\\x";
    for (int shift = 12; shift >= 0; shift -= 4) {
      shown += digits[(static_cast<unsigned>(unit) >> shift) & 0xF];
    }
  }
  return shown;
}

class DomTest : public testing::Test {
 protected:
  // COM is entered and left around all references of the test.
  struct Apartment {
    Apartment() { CheckResult(CoInitialize(nullptr)); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
  };

  DomTest() : m_document(NewDocument()) {}

  static DocumentPtr NewDocument() {
    DocumentPtr document;
    CheckResult(CoCreateInstance(CLSID_DOMDocument60, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument2,
                                 document.ReceiveVoid()));
    CheckResult(document->put_async(VARIANT_FALSE));
    return document;
  }

  /// True if the text was parsed. The result code and the flag always agree.
  static bool Load(const DocumentPtr& document, WideView xml) {
    VARIANT_BOOL success = 7;
    const HRESULT result = document->loadXML(Bstr(xml).Get(), &success);
    EXPECT_EQ(result, success == VARIANT_FALSE ? S_FALSE : S_OK);
    EXPECT_TRUE(success == VARIANT_TRUE || success == VARIANT_FALSE);
    return success != VARIANT_FALSE;
  }
  bool Load(WideView xml) { return Load(m_document, xml); }
  bool Load(std::string_view xml) { return Load(m_document, Wide(xml)); }

  void SetNamespaces(WideView text) {
    CheckResult(
        m_document->setProperty(Bstr(OLESTR("SelectionNamespaces")).Get(), Variant(text).Get()));
  }

  static NodePtr Find(const NodePtr& from, WideView query) {
    NodePtr found;
    const HRESULT result = from->selectSingleNode(Bstr(query).Get(), found.Receive());
    CheckResult(result);
    EXPECT_EQ(result, found ? S_OK : S_FALSE);
    return found;
  }
  NodePtr Find(WideView query) { return Find(Root(), query); }

  static ComPtr<IXMLDOMNodeList> FindAll(const NodePtr& from, WideView query) {
    ComPtr<IXMLDOMNodeList> found;
    CheckResult(from->selectNodes(Bstr(query).Get(), found.Receive()));
    return found;
  }
  static LONG Count(const ComPtr<IXMLDOMNodeList>& list) {
    LONG length = -1;
    CheckResult(list->get_length(&length));
    return length;
  }

  NodePtr Root() { return NodePtr(m_document.Get()); }
  NodePtr Element() {
    ComPtr<IXMLDOMElement> element;
    CheckResult(m_document->get_documentElement(element.Receive()));
    return NodePtr(element.Get());
  }

  NodePtr Create(DOMNodeType type, WideView name, WideView uri) {
    NodePtr node;
    CheckResult(m_document->createNode(Variant(type, VT_INT).Get(), Bstr(name).Get(),
                                       Bstr(uri).Get(), node.Receive()));
    return node;
  }
  static void Append(const NodePtr& parent, const NodePtr& child) {
    CheckResult(parent->appendChild(child.Get(), nullptr));
  }
  static void PutText(const NodePtr& node, WideView text) {
    CheckResult(node->put_text(Bstr(text).Get()));
  }

  static std::string Text(const NodePtr& node) {
    Bstr text;
    CheckResult(node->get_text(text.Receive()));
    return Show(text.View());
  }
  static std::string Xml(const NodePtr& node) {
    Bstr text;
    CheckResult(node->get_xml(text.Receive()));
    return Show(text.View());
  }
  static std::string Name(const NodePtr& node) {
    Bstr text;
    CheckResult(node->get_nodeName(text.Receive()));
    return Show(text.View());
  }
  static std::string Uri(const NodePtr& node) {
    Bstr text;
    CheckResult(node->get_namespaceURI(text.Receive()));
    return Show(text.View());
  }
  static ComPtr<IXMLDOMNamedNodeMap> Attributes(const NodePtr& node) {
    ComPtr<IXMLDOMNamedNodeMap> map;
    CheckResult(node->get_attributes(map.Receive()));
    return map;
  }
  static NodePtr Attribute(const NodePtr& node, WideView name) {
    NodePtr attribute;
    CheckResult(Attributes(node)->getNamedItem(Bstr(name).Get(), attribute.Receive()));
    return attribute;
  }

  Apartment m_apartment;
  DocumentPtr m_document;
};

}  // namespace velandoc
