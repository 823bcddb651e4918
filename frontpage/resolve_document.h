// Where a document lies, and what the FrontPage server says of it.
#pragma once

#include "frontpage/document_meta.h"
#include "platform/owners.h"
#include "platform/text.h"

namespace velandoc {

/// Asks for the web of `url`, then for the meta-info of the document and of its folder: three
/// requests on one connection. Each result may be null if it is not wanted, and stays as it was
/// where the server did not deliver it: all of them if the web cannot be asked for. True if
/// document and folder were both found.
///
/// Raises `_com_error` for a DOM that fails on a page that has loaded, and with E_OUTOFMEMORY;
/// results that were there by then are written.
bool ResolveDocument(LPCWSTR url, Bstr* docIdOut, Bstr* listIdOut, Bstr* contentTypeIdOut,
                     Bstr* webPathOut, CDocumentMeta* metaOut);

}  // namespace velandoc
