// Reading and writing one document's list row.
#pragma once

#include <list>

#include "fields/row_attributes.h"
#include "platform/msxml.h"
#include "soap/soap_connection.h"

namespace velandoc {

/// Reads the row of the document `uniqueId` (its GUID) of the list `listName` (its GUID) over a
/// connection to the lists service. With no `viewFields` the server decides the columns. False,
/// with `attributes` as they were, if no row came. Raises `_com_error` for a failure of the DOM
/// before the answer came.
bool GetListItems(CSoapConnection& connection, LPCWSTR uniqueId, LPCWSTR listName,
                  const std::list<WideString>& viewFields, RowAttributes& attributes);

/// Writes columns of the row `itemId` of the document at `fileRef`, on a connection of its own. The
/// shorter of `names` and `values` decides how many. True, and the row as the server then has it in
/// `attributes`, if a row came back; the server's verdict on the update is not looked at. False,
/// with `attributes` as they were, if none came. Raises as GetListItems does.
bool UpdateListItems(LPCWSTR fileRef, LPCWSTR webUrl, LPCWSTR listName, LPCWSTR itemId,
                     const std::list<WideString>& names, const std::list<WideString>& values,
                     RowAttributes& attributes);

/// The fragment of XML that names the wanted columns. Names are not escaped.
WideString BuildViewFields(const std::list<WideString>& viewFields);

/// The fragment of an update. Nothing in it is escaped: a value with "&" or "<" makes it
/// unreadable, and an unreadable fragment is left out of the call.
WideString BuildUpdateBatch(LPCWSTR itemId, LPCWSTR fileRef, const std::list<WideString>& names,
                            const std::list<WideString>& values);

/// Takes the first row of an answer into `attributes`, whose former content goes. False, with
/// `attributes` as they were, if there is none or the DOM fails. Replaces the selection namespaces
/// of `response`.
bool ReadRowAttributes(IXMLDOMDocument2* response, RowAttributes& attributes);

}  // namespace velandoc
