// What a document costs of our own time once its answers are here: the row's attributes, and the
// columns of its content type. Parsing is timed apart from reading.

#include <benchmark/benchmark.h>

#include <string>

#include "platform/dom.h"
#include "soap/list_fields.h"
#include "soap/list_items.h"

namespace velandoc {
namespace {

constexpr LPCWSTR kPrefixes = OLESTR("xmlns:resp='http://schemas.microsoft.com/sharepoint/soap/'");

// As GetListContentType selects them.
constexpr LPCWSTR kColumns = OLESTR(
    "//resp:Field[@SourceID='{0a3b5c7d-0000-4000-8000-00000000abcd}' or "
    "(@Required='TRUE' and not(contains(@ShowInFileDlg, 'FALSE')))]");

WideString Widen(const std::string& ascii) { return WideString(ascii.begin(), ascii.end()); }

WideString RowAnswer(std::int64_t attributes) {
  std::string xml =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?><soap:Envelope "
      "xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body><GetListItemsResponse "
      "xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\"><GetListItemsResult><listitems "
      "xmlns:rs='urn:schemas-microsoft-com:rowset' xmlns:z='#RowsetSchema'>\r\n<rs:data "
      "ItemCount=\"1\">\r\n   <z:row";
  for (std::int64_t i = 0; i < attributes; ++i) {
    xml += " ows_Column_x0020_" + std::to_string(i) + "='2024-03-01 12:00:00;#Value of a column'";
  }
  return Widen(xml +
               " />\r\n</rs:data>\r\n</listitems></GetListItemsResult></GetListItemsResponse>"
               "</soap:Body></soap:Envelope>");
}

WideString FieldsAnswer(std::int64_t fields) {
  std::string xml =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?><soap:Envelope "
      "xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>"
      "<GetListContentTypeResponse xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">"
      "<GetListContentTypeResult><ContentType ID=\"0x0101\" Name=\"Document\"><Fields>";
  for (std::int64_t i = 0; i < fields; ++i) {
    const std::string number = std::to_string(i);
    xml += "<Field ID=\"{5d36727b-bcb2-47d2-a231-1f0bc63b7439}\" Type=\"Choice\" Name=\"Column" +
           number + "\" DisplayName=\"Column " + number +
           "\" Required=\"TRUE\" Format=\"Dropdown\" FillInChoice=\"FALSE\" StaticName=\"Column" +
           number +
           "\" SourceID=\"{0a3b5c7d-0000-4000-8000-00000000abcd}\" ColName=\"nvarchar1\" "
           "RowOrdinal=\"0\"><Default>Draft</Default><CHOICES>";
    for (const char* choice : {"Draft", "In review", "Approved", "Published", "Withdrawn"}) {
      xml += "<CHOICE>" + std::string(choice) + "</CHOICE>";
    }
    xml += "</CHOICES></Field>";
  }
  return Widen(xml +
               "</Fields></ContentType></GetListContentTypeResult></GetListContentTypeResponse>"
               "</soap:Body></soap:Envelope>");
}

ComPtr<IXMLDOMDocument2> Parse(const Bstr& text) {
  ComPtr<IXMLDOMDocument2> document;
  CheckResult(CreateDomDocument(document));
  CheckResult(document->put_async(VARIANT_FALSE));
  VARIANT_BOOL parsed = VARIANT_FALSE;
  CheckResult(document->loadXML(text.Get(), &parsed));
  if (parsed == VARIANT_FALSE) _com_issue_error(E_FAIL);
  SetSelectionNamespaces(document.Get(), kPrefixes);
  return document;
}

void ParseOnly(benchmark::State& state, const WideString& answer) {
  CheckResult(CoInitialize(nullptr));
  const Bstr text(answer);
  for (auto _ : state) benchmark::DoNotOptimize(Parse(text).Get());
  CoUninitialize();
}

void BM_ParseRow(benchmark::State& state) { ParseOnly(state, RowAnswer(state.range(0))); }
BENCHMARK(BM_ParseRow)->Arg(50)->Arg(2000)->Unit(benchmark::kMicrosecond);

void BM_ReadRowAttributes(benchmark::State& state) {
  CheckResult(CoInitialize(nullptr));
  {
    const auto response = Parse(Bstr(RowAnswer(state.range(0))));
    RowAttributes row;
    for (auto _ : state) {
      if (!ReadRowAttributes(response.Get(), row)) state.SkipWithError("there is no row");
    }
    if (row.size() != static_cast<std::size_t>(state.range(0))) state.SkipWithError("wrong row");
  }
  CoUninitialize();
}
BENCHMARK(BM_ReadRowAttributes)->Arg(50)->Arg(2000)->Unit(benchmark::kMicrosecond);

void BM_ParseContentType(benchmark::State& state) {
  ParseOnly(state, FieldsAnswer(state.range(0)));
}
BENCHMARK(BM_ParseContentType)->Arg(50)->Arg(500)->Unit(benchmark::kMicrosecond);

void BM_ReadListFields(benchmark::State& state) {
  CheckResult(CoInitialize(nullptr));
  {
    const auto response = Parse(Bstr(FieldsAnswer(state.range(0))));
    for (auto _ : state) {
      FieldList fields;
      ReadListFields(SelectNodes(response.Get(), kColumns).Get(), fields);
      if (fields.size() != static_cast<std::size_t>(state.range(0)) ||
          fields.back().m_choices.size() != 5) {
        state.SkipWithError("wrong columns");
      }
    }
  }
  CoUninitialize();
}
BENCHMARK(BM_ReadListFields)->Arg(50)->Arg(500)->Unit(benchmark::kMicrosecond);

void BM_OverlayRow(benchmark::State& state) {
  FieldList fields;
  RowAttributes row;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    const WideString name = Widen("Column" + std::to_string(i));
    fields.emplace_back().m_name = name;
    row[WideString(OLESTR("ows_")).append(name)] = OLESTR("Draft");
  }
  for (auto _ : state) OverlayRow(row, fields);
}
BENCHMARK(BM_OverlayRow)->Arg(50)->Arg(500)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace velandoc

BENCHMARK_MAIN();
