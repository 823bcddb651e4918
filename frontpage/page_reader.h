// Reads the answer pages of the FrontPage server.
//
// A page is HTML of an old kind: each "p" and each "li" is opened at the start of a line and never
// closed. A list is no child of the item that it belongs to but comes behind it, and the queries
// here count on that.
#pragma once

#include "frontpage/front_page_result.h"
#include "platform/msxml.h"
#include "platform/owners.h"
#include "platform/text.h"

namespace velandoc {

/// The page as XML, if it was a proper one: each line that begins with "<p>" or "<li>" gets its
/// closing tag, and the line feeds are gone. Nothing else is mended. A carriage return stays at the
/// end of its line, and so within the element.
WideString RepairPage(WideView page);

/// Makes a document of a page. S_OK and the document; the first failure of making or loading it;
/// E_FAIL if the page is no XML after the repair. Raises `_com_error` if the document cannot be
/// prepared, with E_OUTOFMEMORY if the text finds no memory. `document` is null unless the result
/// is S_OK.
HRESULT LoadResponseDom(WideView page, ComPtr<IXMLDOMDocument2>& document);

/// Reads number and message of the page's status. True if it has a status paragraph; what is not
/// there, or cannot be read, stays as it was. False for a null document. Raises `_com_error` for a
/// query that fails.
bool ParseStatus(CFrontPageResult& result, IXMLDOMDocument2* document);

/// Reads the entry of a document, else of a folder, else the pairs of a page that names neither.
/// True if there was a list of pairs of an even length above 0; only then the entry's flag is set.
/// Its name is taken and whole pairs are stored all the same. Raises `_com_error` for a failing DOM
/// call; what was read by then stays.
bool ParseMetaInfo(CDocumentMeta& meta, IXMLDOMDocument2* document);

/// Stores the pairs of the list behind `node`, the item "meta_info=", which may be null. A key that
/// is there already keeps its value, and an item without a partner is passed over. Result and
/// failures as above.
bool ParseMetaPairs(CDocumentMeta& meta, IXMLDOMNode* node);

}  // namespace velandoc
