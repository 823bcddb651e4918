#include "frontpage/front_page_handler.h"

#include <algorithm>

#include "frontpage/front_page_connection.h"
#include "frontpage/page_reader.h"
#include "platform/ansi_text.h"
#include "platform/dom.h"
#include "platform/out_of_memory.h"

namespace velandoc {
namespace {

constexpr WideView kAuthorPath = OLESTR("_vti_bin/_vti_aut/author.dll");
constexpr WideView kRpcPath = OLESTR("/_vti_bin/shtml.dll/_vti_rpc");

// The text behind `prefix` of the first match, if there is one.
void ReadParagraph(IXMLDOMDocument2* document, WideView xpath, WideView prefix, WideString& value) {
  const ComPtr<IXMLDOMNode> paragraph = SelectSingleNode(document, xpath);
  if (!paragraph) return;
  const WideString text = GetNodeText(paragraph.Get());
  value = text.substr(std::min(prefix.size(), text.size()));
}

}  // namespace

WideString CFrontPageHandler::GetPath() { return m_path; }

void CFrontPageHandler::HandleResponse(CFrontPageConnection& connection) {
  RaiseOutOfMemory([&] {
    ComPtr<IXMLDOMDocument2> document;
    if (LoadResponseDom(FromAnsi(connection.GetResponseText()), document) != S_OK) return;
    ParseDocument(document.Get());
    connection.m_lastResult = m_result;
  });
}

void CFrontPageHandler::ParseDocument(IXMLDOMDocument2* document) { ParseCommon(document); }

void CFrontPageHandler::ParseCommon(IXMLDOMDocument2* document) {
  m_result.m_hasStatus = ParseStatus(m_result, document);
  m_result.m_hasMeta = ParseMetaInfo(m_result.m_meta, document);
}

void CFrontPageHandler::AddParam(WideView name, WideView value) {
  m_params.emplace_back(name, value);
}

CFrontPageDocUrlHandlerBase::CFrontPageDocUrlHandlerBase(WideView webPath, WideView fileUrl)
    : CFrontPageHandler(kAuthorPath), m_webPathArg(webPath), m_fileUrl(fileUrl) {}

WideString CFrontPageDocUrlHandlerBase::GetPath() {
  if (m_webPathArg == OLESTR("/")) return m_webPathArg + m_path;
  return m_webPathArg + OLESTR("/") + m_path;
}

CMetaInfoHandler::CMetaInfoHandler(WideView webPath, WideView fileUrl)
    : CFrontPageDocUrlHandlerBase(webPath, fileUrl) {
  AddParam(OLESTR("method"), OLESTR("getDocsMetaInfo:12.0.0.6665"));
  AddParam(OLESTR("service_name"), OLESTR("/"));
  AddParam(OLESTR("url_list"), OLESTR("[") + m_fileUrl + OLESTR("]"));
  AddParam(OLESTR("listHiddenDocs"), OLESTR("false"));
  AddParam(OLESTR("listLinkInfo"), OLESTR("true"));
}

void CMetaInfoHandler::ParseDocument(IXMLDOMDocument2* document) {
  ParseCommon(document);
  if (m_result.m_hasMeta) m_foundMeta = m_result.m_meta;
}

COpenServiceHandler::COpenServiceHandler() : CFrontPageHandler(kAuthorPath) {
  AddParam(OLESTR("method"), OLESTR("open service"));
}

// A page with the service's pairs is read for them alone, be they well-formed or not; status and
// flags are those of pages that have none.
void COpenServiceHandler::ParseDocument(IXMLDOMDocument2* document) {
  const ComPtr<IXMLDOMNode> pairs =
      SelectSingleNode(document, OLESTR("//body/ul/li[.='meta_info=']"));
  if (pairs) {
    ParseMetaPairs(m_result.m_meta, pairs.Get());
  } else {
    ParseCommon(document);
  }
}

CUrlToWebUrlHandler::CUrlToWebUrlHandler(LPCWSTR url) : CFrontPageHandler(kRpcPath) {
  CrackUrl(url, m_components);
  AddParam(OLESTR("method"), OLESTR("url to web url:12.0.0.6665"));
  AddParam(OLESTR("url"), m_components.UrlPath());
}

void CUrlToWebUrlHandler::ParseDocument(IXMLDOMDocument2* document) {
  ParseCommon(document);
  ReadParagraph(document, OLESTR("//p[starts-with(.,'webUrl=')]"), OLESTR("webUrl="),
                m_webUrlResult);
  ReadParagraph(document, OLESTR("//p[starts-with(.,'fileUrl=')]"), OLESTR("fileUrl="),
                m_fileUrlResult);
}

}  // namespace velandoc
