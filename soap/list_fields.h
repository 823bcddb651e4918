// The columns of a list's content type.
#pragma once

#include "fields/field_record.h"
#include "platform/msxml.h"
#include "platform/owners.h"
#include "soap/soap_connection.h"

namespace velandoc {

/// Asks the lists service at the end of `connection` for a content type and appends a record for
/// each column that was made for this list, or is required and not hidden. False if the server did
/// not answer with a content type, or if the DOM failed; what was read by then stays in `fields`.
/// Raises no `_com_error`.
bool GetListContentType(CSoapConnection& connection, LPCWSTR listName, LPCWSTR contentTypeId,
                        FieldList& fields);

/// The call behind it: the nodes of those columns, null if the call or the selection failed. Raises
/// `_com_error` for a failure of the DOM before the answer came.
ComPtr<IXMLDOMNodeList> SelectListFields(CSoapConnection& connection, LPCWSTR listName,
                                         LPCWSTR contentTypeId);

/// Appends a record for each node. Always true. Raises `_com_error` with E_POINTER for null `nodes`
/// and for a missing node, else with what the DOM says; the records before stay.
bool ReadListFields(IXMLDOMNodeList* nodes, FieldList& fields);

}  // namespace velandoc
