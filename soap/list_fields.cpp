#include "soap/list_fields.h"

#include <algorithm>

#include "platform/ascii_case.h"
#include "platform/dom.h"
#include "platform/out_of_memory.h"
#include "soap/read_or.h"

namespace velandoc {
namespace {

// The columns that were made for this list, and the required ones of the whole site that are not
// hidden from the dialogs of files.
//
// Servers write a SourceID in small letters, whatever the case of the list's name that they hand
// out. That name is a GUID, so the letters of ASCII are all there are to change. It stands in the
// query as it is: an apostrophe in it makes another query or none.
WideString FieldQuery(LPCWSTR listName) {
  WideString list(ViewOf(listName));
  std::transform(list.begin(), list.end(), list.begin(), ToAsciiLower);
  return WideString(OLESTR("//resp:Field[@SourceID='"))
      .append(list)
      .append(OLESTR("' or (@Required='TRUE' and not(contains(@ShowInFileDlg, 'FALSE')))]"));
}

ComPtr<IXMLDOMNodeList> AskForFields(CSoapConnection& connection, LPCWSTR listName,
                                     LPCWSTR contentTypeId) {
  CSoapEnvelope envelope(OLESTR("GetListContentType"));
  envelope.AddParameter(OLESTR("listName"), listName);
  envelope.AddParameter(OLESTR("contentTypeId"), contentTypeId);
  ComPtr<IXMLDOMDocument2> response;
  if (FAILED(connection.Call(envelope, response))) return nullptr;
  return ReadOr(ComPtr<IXMLDOMNodeList>(),
                [&] { return SelectNodes(response.Get(), FieldQuery(listName)); });
}

}  // namespace

bool GetListContentType(CSoapConnection& connection, LPCWSTR listName, LPCWSTR contentTypeId,
                        FieldList& fields) {
  return ReadOr(false, [&] {
    const auto nodes = SelectListFields(connection, listName, contentTypeId);
    return ReadListFields(nodes.Get(), fields);
  });
}

ComPtr<IXMLDOMNodeList> SelectListFields(CSoapConnection& connection, LPCWSTR listName,
                                         LPCWSTR contentTypeId) {
  return RaiseOutOfMemory([&] { return AskForFields(connection, listName, contentTypeId); });
}

bool ReadListFields(IXMLDOMNodeList* nodes, FieldList& fields) {
  return RaiseOutOfMemory([&] {
    const LONG count = GetLength(nodes);
    for (LONG index = 0; index < count; ++index) {
      fields.emplace_back(GetItem(nodes, index).Get());
    }
    return true;
  });
}

}  // namespace velandoc
