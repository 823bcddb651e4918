#include "hosts/command/known_columns.h"

#include "hosts/command/server_word.h"
#include "hosts/text_encoding.h"
#include "platform/dom.h"

namespace velandoc {
namespace {

constexpr WideView kRowPrefix = OLESTR("ows_");

WideString AttributeText(IXMLDOMNode* node, LPCWSTR name) {
  ComPtr<IXMLDOMNamedNodeMap> attributes;
  CheckResult(node->get_attributes(attributes.Receive()));
  ComPtr<IXMLDOMNode> attribute;
  CheckResult(attributes->getNamedItem(Bstr(name).Get(), attribute.Receive()));
  return attribute ? GetNodeText(attribute.Get()) : WideString();
}

}  // namespace

std::vector<KnownColumn> ReadContentTypeColumns(std::string_view answer) try {
  std::vector<KnownColumn> columns;
  const ComPtr<IXMLDOMDocument2> document = LoadAnswer(answer);
  if (!document) return columns;
  // Display patterns hold elements of the same name, but elsewhere.
  const Bstr xpath(
      OLESTR("//*[local-name()='ContentType']/*[local-name()='Fields']"
             "/*[local-name()='Field']"));
  ComPtr<IXMLDOMNodeList> nodes;
  CheckResult(document->selectNodes(xpath.Get(), nodes.Receive()));
  for (;;) {
    ComPtr<IXMLDOMNode> node;
    CheckResult(nodes->nextNode(node.Receive()));
    if (!node) return columns;
    KnownColumn column{AttributeText(node.Get(), OLESTR("Name")),
                       AttributeText(node.Get(), OLESTR("DisplayName"))};
    if (!column.name.empty()) columns.push_back(std::move(column));
  }
} catch (const _com_error&) {
  return {};
}

std::vector<KnownColumn> FindKnownColumns(const DocumentSession& session) {
  std::vector<KnownColumn> columns;
  for (const ExchangeRecord& record : session.Records()) {
    if (record.operation == "GetListContentType") columns = ReadContentTypeColumns(record.answer);
  }
  for (const CFieldRecord& field : session.Own().Fields()) {
    columns.push_back({field.m_name, field.m_displayName});
  }
  for (const auto& [name, value] : session.Own().ItemAttributes()) {
    if (name.starts_with(kRowPrefix)) columns.push_back({name.substr(kRowPrefix.size()), {}});
  }
  return columns;
}

}  // namespace velandoc
