#include "frontpage/page_reader.h"

#include <algorithm>

#include "connection/text_to_integer.h"
#include "platform/dom.h"
#include "platform/out_of_memory.h"

namespace velandoc {
namespace {

// One of the two that a page never closes.
struct OpenElement {
  WideView opening;
  WideView closing;
};

constexpr OpenElement kOpenElements[] = {
    {OLESTR("<p>"), OLESTR("</p>")},
    {OLESTR("<li>"), OLESTR("</li>")},
};

void AppendRepaired(WideView line, WideString& repaired) {
  repaired.append(line);
  for (const OpenElement& element : kOpenElements) {
    if (line.starts_with(element.opening)) repaired.append(element.closing);
  }
}

// Text behind the first "=" of an item of the status list. Such an item is for people: one that
// cannot be read is passed over like one that is missing.
bool ReadStatusItem(IXMLDOMNode* list, WideView xpath, WideString& value) {
  const ComPtr<IXMLDOMNode> item = SelectSingleNode(list, xpath);
  if (!item) return false;
  Bstr text;
  if (FAILED(item->get_text(text.Receive()))) return false;
  const std::size_t equals = text.View().find('=');
  if (equals == WideView::npos) return false;
  value = text.View().substr(equals + 1);
  return true;
}

// The prefix is known by its length: the query that found the entry has compared it.
WideString TextBehind(WideView prefix, IXMLDOMNode* entry) {
  const WideString text = GetNodeText(entry);
  return text.substr(std::min(prefix.size(), text.size()));
}

bool ParseEntryPairs(CDocumentMeta& meta, IXMLDOMNode* entry) {
  return ParseMetaPairs(meta, SelectSingleNode(entry, OLESTR("../li[.='meta_info=']")).Get());
}

}  // namespace

WideString RepairPage(WideView page) {
  constexpr std::size_t lineOfMetaInfo = 16;  // a short guess; what it misses is grown
  WideString repaired;
  repaired.reserve(page.size() + page.size() / lineOfMetaInfo * kOpenElements[1].closing.size());
  while (!page.empty()) {
    const std::size_t end = std::min(page.find('\n'), page.size());
    AppendRepaired(page.substr(0, end), repaired);
    page.remove_prefix(std::min(end + 1, page.size()));
  }
  return repaired;
}

HRESULT LoadResponseDom(WideView page, ComPtr<IXMLDOMDocument2>& document) {
  document.Reset();
  return LoadDomDocument(RaiseOutOfMemory([&] { return Bstr(RepairPage(page)); }), document);
}

bool ParseStatus(CFrontPageResult& result, IXMLDOMDocument2* document) {
  if (document == nullptr) return false;
  const ComPtr<IXMLDOMNode> paragraph = SelectSingleNode(document, OLESTR("//body/p[.='status=']"));
  if (!paragraph) return false;
  const ComPtr<IXMLDOMNode> list = GetNextSibling(paragraph.Get());
  if (!list) return true;
  WideString value;
  if (ReadStatusItem(list.Get(), OLESTR("li[starts-with(.,'status=')]"), value)) {
    result.m_status = TextToInteger(value);
  }
  if (ReadStatusItem(list.Get(), OLESTR("li[starts-with(., 'msg=')]"), value)) {
    result.m_statusMessage = value;
  }
  return true;
}

bool ParseMetaInfo(CDocumentMeta& meta, IXMLDOMDocument2* document) {
  const ComPtr<IXMLDOMNode> named =
      SelectSingleNode(document, OLESTR("//li[starts-with(.,'document_name=')]"));
  const ComPtr<IXMLDOMNode> folder =
      SelectSingleNode(document, OLESTR("//body/ul/ul/li[starts-with(.,'url=')]"));
  if (named) {
    meta.m_documentName = TextBehind(OLESTR("document_name="), named.Get());
    const bool read = ParseEntryPairs(meta, named.Get());
    if (read) meta.m_hasDocument = true;
    return read;
  }
  if (folder) {
    meta.m_urlEntry = TextBehind(OLESTR("url="), folder.Get());
    const bool read = ParseEntryPairs(meta, folder.Get());
    if (read) meta.m_hasUrlEntry = true;
    return read;
  }
  return ParseMetaPairs(meta, SelectSingleNode(document, OLESTR("//body/p[.='meta_info=']")).Get());
}

bool ParseMetaPairs(CDocumentMeta& meta, IXMLDOMNode* node) {
  if (node == nullptr) return false;
  const ComPtr<IXMLDOMNode> list = GetNextSibling(node);
  if (!list) return false;
  const ComPtr<IXMLDOMNodeList> items = SelectNodes(list.Get(), OLESTR("li"));
  if (!items) return false;
  const LONG count = GetLength(items.Get());
  for (LONG index = 0; index + 1 < count; index += 2) {
    ComPtr<IXMLDOMNode> key;
    CheckResult(items->get_item(index, key.Receive()));
    ComPtr<IXMLDOMNode> value;
    CheckResult(items->get_item(index + 1, value.Receive()));
    if (!key || !value) continue;
    WideString keyText = GetNodeText(key.Get());
    meta.m_values.try_emplace(std::move(keyText), GetNodeText(value.Get()));
  }
  return count > 0 && count % 2 == 0;
}

}  // namespace velandoc
