#include "frontpage/resolve_document.h"

#include "frontpage/front_page_connection.h"
#include "platform/out_of_memory.h"

namespace velandoc {
namespace {

void Give(Bstr* out, WideView text) {
  if (out != nullptr) *out = Bstr(text);
}

// A URL without a slash lies in the web's root, whose relative URL is empty. One whose only slash
// comes first stays whole.
WideString FolderOf(const WideString& fileUrl) {
  const std::size_t slash = fileUrl.rfind('/');
  if (slash == 0) return fileUrl;
  return slash != WideString::npos ? fileUrl.substr(0, slash) : WideString();
}

void GiveDocument(const CDocumentMeta& meta, Bstr* docIdOut, Bstr* contentTypeIdOut,
                  CDocumentMeta* metaOut) {
  Give(docIdOut, meta.GetDocGuid());
  const WideString contentTypeId = meta.GetTextValue(OLESTR("ContentTypeId"));
  if (!contentTypeId.empty()) Give(contentTypeIdOut, contentTypeId);
  if (metaOut != nullptr) *metaOut = meta;
}

}  // namespace

bool ResolveDocument(LPCWSTR url, Bstr* docIdOut, Bstr* listIdOut, Bstr* contentTypeIdOut,
                     Bstr* webPathOut, CDocumentMeta* metaOut) {
  return RaiseOutOfMemory([&] {
    CUrlToWebUrlHandler urlHandler(url);
    CFrontPageConnection connection(url);
    connection.m_handler = &urlHandler;
    if (!RunRequest(connection)) return false;
    const WideString& web = urlHandler.m_webUrlResult;
    const WideString& file = urlHandler.m_fileUrlResult;
    Give(webPathOut, web);

    // What these two requests deliver is looked at, not how they end.
    CMetaInfoHandler documentHandler(web, file);
    connection.NextHandler(documentHandler);
    RunRequest(connection);
    const CDocumentMeta& document = documentHandler.m_foundMeta;
    if (document.m_hasDocument) GiveDocument(document, docIdOut, contentTypeIdOut, metaOut);

    // The list is learnt from the folder: only its answer names one.
    CMetaInfoHandler folderHandler(web, FolderOf(file));
    connection.NextHandler(folderHandler);
    RunRequest(connection);
    const CDocumentMeta& folder = folderHandler.m_foundMeta;
    if (folder.m_hasUrlEntry) Give(listIdOut, folder.GetListName());
    return document.m_hasDocument && folder.m_hasUrlEntry;
  });
}

}  // namespace velandoc
