#include "soap/list_items.h"

#include "platform/dom.h"
#include "platform/out_of_memory.h"
#include "soap/read_or.h"
#include "soap/soap_namespaces.h"

namespace velandoc {
namespace {

// What most updates fit into without growing.
constexpr std::size_t kUsualBatch = 2048;

WideString RowQuery(LPCWSTR uniqueId) {
  return WideString(OLESTR("<Query><Where><Eq><FieldRef Name='UniqueId' /><Value Type='string'>"))
      .append(ViewOf(uniqueId))
      .append(OLESTR("</Value></Eq></Where></Query>"));
}

bool CallAndReadRow(CSoapConnection& connection, const CSoapEnvelope& envelope,
                    RowAttributes& attributes) {
  ComPtr<IXMLDOMDocument2> response;
  if (FAILED(connection.Call(envelope, response)) || !response) return false;
  return ReadRowAttributes(response.Get(), attributes);
}

RowAttributes AttributesOf(IXMLDOMNode* row) {
  RowAttributes attributes;
  const auto map = GetNodeAttributes(row);
  const LONG count = GetLength(map.Get());
  for (LONG index = 0; index < count; ++index) {
    const ComPtr<IXMLDOMNode> attribute = GetItem(map.Get(), index);
    attributes.insert_or_assign(GetNodeName(attribute.Get()), GetNodeText(attribute.Get()));
  }
  return attributes;
}

}  // namespace

bool GetListItems(CSoapConnection& connection, LPCWSTR uniqueId, LPCWSTR listName,
                  const std::list<WideString>& viewFields, RowAttributes& attributes) {
  return RaiseOutOfMemory([&] {
    CSoapEnvelope envelope(OLESTR("GetListItems"));
    envelope.AddParameter(OLESTR("listName"), listName);
    envelope.AddXmlParameter(OLESTR("query"), RowQuery(uniqueId).c_str());
    // The document may lie in any folder of the list.
    envelope.AddXmlParameter(
        OLESTR("queryOptions"),
        OLESTR("<QueryOptions><ViewAttributes Scope='Recursive'/></QueryOptions>"));
    if (!viewFields.empty()) {
      envelope.AddXmlParameter(OLESTR("viewFields"), BuildViewFields(viewFields).c_str());
    }
    return CallAndReadRow(connection, envelope, attributes);
  });
}

bool UpdateListItems(LPCWSTR fileRef, LPCWSTR webUrl, LPCWSTR listName, LPCWSTR itemId,
                     const std::list<WideString>& names, const std::list<WideString>& values,
                     RowAttributes& attributes) {
  return RaiseOutOfMemory([&] {
    CSoapEnvelope envelope(OLESTR("UpdateListItems"));
    envelope.AddParameter(OLESTR("listName"), listName);
    envelope.AddXmlParameter(OLESTR("updates"),
                             BuildUpdateBatch(itemId, fileRef, names, values).c_str());
    CSoapConnection connection(AppendListsPath(ViewOf(webUrl)).c_str());
    return CallAndReadRow(connection, envelope, attributes);
  });
}

WideString BuildViewFields(const std::list<WideString>& viewFields) {
  if (viewFields.empty()) return OLESTR("<ViewFields/>");
  WideString xml = OLESTR("<ViewFields>");
  for (const WideString& name : viewFields) {
    xml.append(OLESTR("<FieldRef Name='")).append(name).append(OLESTR("'/>"));
  }
  return xml.append(OLESTR("</ViewFields>"));
}

WideString BuildUpdateBatch(LPCWSTR itemId, LPCWSTR fileRef, const std::list<WideString>& names,
                            const std::list<WideString>& values) {
  WideString xml;
  xml.reserve(kUsualBatch);
  xml.append(OLESTR("<Batch><Method ID='1' Cmd='Update'>"));
  xml.append(OLESTR("<Field Name='ID'>")).append(ViewOf(itemId)).append(OLESTR("</Field>"));
  // Not a Field like the columns: the document's URL has an element of its own.
  xml.append(OLESTR("<FileRef Name='FileRef'>"));
  xml.append(ViewOf(fileRef)).append(OLESTR("</FileRef>"));
  auto value = values.begin();
  for (auto name = names.begin(); name != names.end() && value != values.end(); ++name, ++value) {
    xml.append(OLESTR("<Field Name='")).append(*name).append(OLESTR("'>"));
    xml.append(*value).append(OLESTR("</Field>"));
  }
  return xml.append(OLESTR("</Method></Batch>"));
}

bool ReadRowAttributes(IXMLDOMDocument2* response, RowAttributes& attributes) {
  return ReadOr(false, [&] {
    SetSelectionNamespaces(response, OLESTR("xmlns:rs='#RowsetSchema'"));
    const auto row = SelectSingleNode(response, OLESTR("//rs:row"));
    if (!row) return false;
    attributes = AttributesOf(row.Get());
    return true;
  });
}

}  // namespace velandoc
