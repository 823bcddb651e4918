// Reading a 1 MB answer of a web service: parse, find the rows by XPath, read all their attributes.
// Once through the DOM's interfaces, from UTF-16, and once with libxml2 alone, from UTF-8.

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "platform/msxml.h"
#include "platform/owners.h"

namespace velandoc {
namespace {

constexpr std::size_t kSize = 1'000'000;

/// An answer in the shape of GetListItems.
std::string MakeAnswer() {
  std::string xml =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<soap:Envelope "
      "xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body><GetListItemsResponse "
      "xmlns=\"urn:lists\"><GetListItemsResult><listitems xmlns:z=\"#RowsetSchema\">\r\n";
  for (int i = 0; xml.size() < kSize; ++i) {
    const std::string id = std::to_string(i);
    xml += "   <z:row ows_ID=\"" + id + "\" ows_LinkFilename=\"Report of the year " + id +
           ".docx\" ows_Modified=\"2024-03-01 12:00:00\" ows_Editor=\"7;#J\xC3\xBCrgen Example\" "
           "ows_FileRef=\"" +
           id + ";#sites/a/Shared Documents/Report of the year " + id +
           ".docx\" ows_ContentType=\"Document\" ows_CheckoutUser=\"\" ows_owshiddenversion=\"3\" "
           "/>\r\n";
  }
  return xml +
         "</listitems></GetListItemsResult></GetListItemsResponse></soap:Body></soap:Envelope>";
}

const std::string& Answer() {
  static const std::string answer = MakeAnswer();
  return answer;
}

WideString Widen(const std::string& utf8) {
  WideString wide;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte < 0x80) {
      wide += static_cast<OLECHAR>(byte);
    } else {
      const auto next = static_cast<unsigned char>(utf8[++i]);
      wide += static_cast<OLECHAR>((byte & 0x1FU) << 6 | (next & 0x3FU));
    }
  }
  return wide;
}

void ReadAnswerThroughDom(benchmark::State& state) {
  CheckResult(CoInitialize(nullptr));
  const Bstr xml{Widen(Answer())};
  const Bstr namespacesName{OLESTR("SelectionNamespaces")};
  const Variant namespaces(OLESTR("xmlns:resp='urn:lists' xmlns:z='#RowsetSchema'"));
  const Bstr query{OLESTR("//resp:listitems")};
  std::size_t read = 0;
  for (auto _ : state) {
    ComPtr<IXMLDOMDocument2> document;
    CheckResult(CoCreateInstance(CLSID_DOMDocument60, nullptr, CLSCTX_ALL, IID_IXMLDOMDocument2,
                                 document.ReceiveVoid()));
    VARIANT_BOOL success = VARIANT_FALSE;
    CheckResult(document->loadXML(xml.Get(), &success));
    CheckResult(document->setProperty(namespacesName.Get(), namespaces.Get()));
    ComPtr<IXMLDOMNode> items;
    CheckResult(document->selectSingleNode(query.Get(), items.Receive()));
    ComPtr<IXMLDOMNodeList> rows;
    CheckResult(items->get_childNodes(rows.Receive()));
    LONG count = 0;
    CheckResult(rows->get_length(&count));
    for (LONG i = 0; i < count; ++i) {
      ComPtr<IXMLDOMNode> row;
      CheckResult(rows->get_item(i, row.Receive()));
      ComPtr<IXMLDOMNamedNodeMap> attributes;
      CheckResult(row->get_attributes(attributes.Receive()));
      LONG length = 0;
      CheckResult(attributes->get_length(&length));
      for (LONG k = 0; k < length; ++k) {
        ComPtr<IXMLDOMNode> attribute;
        CheckResult(attributes->get_item(k, attribute.Receive()));
        Bstr name;
        CheckResult(attribute->get_nodeName(name.Receive()));
        Bstr text;
        CheckResult(attribute->get_text(text.Receive()));
        read += name.View().size() + text.View().size();
      }
    }
  }
  benchmark::DoNotOptimize(read);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * Answer().size()));
  CoUninitialize();
}
BENCHMARK(ReadAnswerThroughDom)->Unit(benchmark::kMillisecond);

void ReadAnswerWithLibxml2(benchmark::State& state) {
  std::size_t read = 0;
  for (auto _ : state) {
    const std::string& answer = Answer();
    xmlDoc* document = xmlReadMemory(answer.data(), static_cast<int>(answer.size()), nullptr,
                                     nullptr, XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_COMPACT);
    if (document == nullptr) std::abort();
    xmlXPathContext* context = xmlXPathNewContext(document);
    xmlXPathRegisterNs(context, reinterpret_cast<const xmlChar*>("resp"),
                       reinterpret_cast<const xmlChar*>("urn:lists"));
    xmlXPathObject* found =
        xmlXPathEval(reinterpret_cast<const xmlChar*>("//resp:listitems"), context);
    if (found == nullptr || found->nodesetval == nullptr || found->nodesetval->nodeNr != 1)
      std::abort();
    for (xmlNode* row = found->nodesetval->nodeTab[0]->children; row != nullptr; row = row->next) {
      if (row->type != XML_ELEMENT_NODE) continue;
      for (xmlAttr* attribute = row->properties; attribute != nullptr;
           attribute = attribute->next) {
        xmlChar* text = xmlNodeListGetString(document, attribute->children, 1);
        const std::string name(reinterpret_cast<const char*>(attribute->name));
        read += name.size() + static_cast<std::size_t>(xmlStrlen(text));
        xmlFree(text);
      }
    }
    xmlXPathFreeObject(found);
    xmlXPathFreeContext(context);
    xmlFreeDoc(document);
  }
  benchmark::DoNotOptimize(read);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * Answer().size()));
}
BENCHMARK(ReadAnswerWithLibxml2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velandoc

BENCHMARK_MAIN();
