// The answer pages of the FrontPage server on any text: the repair, every handler, the values that
// the flows take, and the next request made of them.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "frontpage/form_body.h"
#include "frontpage/front_page_handler.h"
#include "frontpage/page_reader.h"
#include "platform/owners.h"

namespace {

using velandoc::CDocumentMeta;
using velandoc::CFrontPageHandler;
using velandoc::CMetaInfoHandler;
using velandoc::ComPtr;
using velandoc::COpenServiceHandler;
using velandoc::CUrlToWebUrlHandler;
using velandoc::WideString;
using velandoc::WideView;

void Check(bool isTrue) {
  if (!isTrue) std::abort();
}

/// What is closed on its line is all that the repair adds, and line feeds are all that it takes.
void CheckRepair(WideView page, WideView repaired) {
  std::size_t lines = 0;
  for (const OLECHAR unit : page) lines += unit == '\n' ? 1 : 0;
  constexpr std::size_t longest = 5;  // of the closing tags
  Check(repaired.find('\n') == WideView::npos);
  Check(repaired.size() >= page.size() - lines);
  Check(repaired.size() <= page.size() + longest * (lines + 1));
}

/// A value of a page goes out in characters that stand for themselves in a body.
void CheckEncoding(const WideString& value) {
  for (const OLECHAR unit : velandoc::EncodeFormValue(value)) Check(unit > ' ' && unit < 127);
}

void CheckMeta(const CDocumentMeta& meta) {
  Check(!(meta.m_hasDocument && meta.m_hasUrlEntry));
  Check(meta.m_documentName.empty() || meta.m_urlEntry.empty());
  for (const auto& [key, value] : meta.m_values) {
    Check(meta.FindRawValue(key.c_str()) == value);
    CheckEncoding(value);
  }
  Check(meta.GetDocGuid().size() <= meta.GetTextValue(OLESTR("vti_etag")).size());
}

/// A flag without pairs, or pairs of an odd number read as a whole list, would be a mistake.
void CheckHandler(CFrontPageHandler& handler, IXMLDOMDocument2* document) {
  handler.ParseDocument(document);
  const velandoc::CFrontPageResult& result = handler.m_result;
  CheckMeta(result.m_meta);
  Check(result.m_extraText.empty());
  Check(!result.m_meta.m_hasDocument || result.m_hasMeta);
  Check(!result.m_hasMeta || !result.m_meta.m_values.empty());
  Check(result.m_hasStatus || (result.m_status == 0 && result.m_statusMessage.empty()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Bytes as the code page has them; its few exceptions are no concern of the reader.
  const WideString page(data, data + size);
  CheckRepair(page, velandoc::RepairPage(page));
  ComPtr<IXMLDOMDocument2> document;
  if (velandoc::LoadResponseDom(page, document) != S_OK) {
    Check(!document);
    return 0;
  }

  CUrlToWebUrlHandler web(OLESTR("http://h/a"));
  CheckHandler(web, document.Get());
  CheckEncoding(web.m_webUrlResult);
  CMetaInfoHandler meta(web.m_webUrlResult, web.m_fileUrlResult);
  CheckHandler(meta, document.Get());
  Check(meta.m_foundMeta.m_values.empty() == !meta.m_result.m_hasMeta);
  velandoc::BuildRequestBody(meta);
  COpenServiceHandler service;
  CheckHandler(service, document.Get());
  return 0;
}
