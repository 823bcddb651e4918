// Where a document lies, and what the FrontPage server says of it.
#pragma once

#include "frontpage/document_meta.h"
#include "platform/owners.h"
#include "platform/text.h"

namespace velandoc {

/// Asks for the web of `url`, then for the meta-info of the document and of its folder: three
/// requests on one connection. Each result may be null if it is not wanted, and stays as it was
/// where the server did not deliver it. True if document and folder were both found.
bool ResolveDocument(LPCWSTR url, Bstr* docIdOut, Bstr* listIdOut, Bstr* contentTypeIdOut,
                     Bstr* webPathOut, CDocumentMeta* metaOut);

}  // namespace velandoc
