// What opening a document costs of our own processor time: a whole InitFromURL, its seven requests
// answered from memory, so that neither the network nor the HTTP stack counts. Beside it the same
// over the real HTTP stack, if http_proxy names the stand-in server; the server's own time does not
// count, the processor's is that of the calling thread.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "document/client.h"
#include "host/velandoc_module.h"
#include "platform/atl/com_object.h"
#include "platform/owners.h"
#include "platform/wininet.h"

namespace velandoc {
namespace {

constexpr LPCOLESTR kBook = OLESTR("http://docs.example.test/sites/a/Shared Documents/b.xlsx");

std::string Page(const std::string& lines) {
  return "<html><head><title>vermeer RPC packet</title></head>\n<body>\n<p>method=x:12.0.0.6665\n" +
         lines + "</body>\n</html>\n";
}

std::string Envelope(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?><soap:Envelope "
         "xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>" +
         content + "</soap:Body></soap:Envelope>";
}

constexpr char kService[] = " xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">";

std::string Fields(std::int64_t count) {
  std::string xml = std::string("<GetListContentTypeResponse") + kService +
                    "<GetListContentTypeResult><ContentType ID=\"0x0101\"><Fields>";
  for (std::int64_t i = 0; i < count; ++i) {
    const std::string name = "Column" + std::to_string(i);
    xml += "<Field ID=\"{5d36727b-bcb2-47d2-a231-1f0bc63b7439}\" Type=\"Choice\" Name=\"" + name +
           "\" DisplayName=\"" + name + "\" Required=\"TRUE\" Format=\"Dropdown\" StaticName=\"" +
           name +
           "\" SourceID=\"{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}\"><Default>Draft</Default>"
           "<CHOICES><CHOICE>Draft</CHOICE><CHOICE>In review</CHOICE><CHOICE>Final</CHOICE>"
           "</CHOICES></Field>";
  }
  return Envelope(xml +
                  "</Fields></ContentType></GetListContentTypeResult>"
                  "</GetListContentTypeResponse>");
}

std::string Row(std::int64_t count) {
  std::string xml = std::string("<GetListItemsResponse") + kService +
                    "<GetListItemsResult><listitems xmlns:rs='urn:schemas-microsoft-com:rowset' "
                    "xmlns:z='#RowsetSchema'>\r\n<rs:data ItemCount=\"1\">\r\n   <z:row";
  for (std::int64_t i = 0; i < count; ++i) {
    xml += " ows_Column" + std::to_string(i) + "='Value of a column'";
  }
  return Envelope(xml +
                  " />\r\n</rs:data>\r\n</listitems></GetListItemsResult></GetListItemsResponse>");
}

std::string Pairs(int count) {
  std::string lines =
      "<ul>\n<li>vti_username\n<li>SX|EXAMPLE&#92;jane\n<li>vti_etag\n"
      "<li>SX|&#34;&#123;5D1F0E3A-6B2C-4A7D-8E90-1F2A3B4C5D6E&#125;,5&#34;\n<li>ContentTypeId\n"
      "<li>SW|0x0101\n<li>vti_listname\n<li>SX|&#123;3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10&#125;\n";
  for (int i = 0; i < count; ++i) {
    lines += "<li>vti_key" + std::to_string(i) + "\n<li>SW|a value of usual length\n";
  }
  return lines + "</ul>\n";
}

/// The answers of one server, in the order of an open.
class MemoryWinInet final : public WinInet {
 public:
  MemoryWinInet(std::int64_t attributes, std::int64_t fields)
      : m_answers{
            Page("<p>service=\n<ul>\n<li>service_name=/\n<li>meta_info=\n" + Pairs(10) + "</ul>\n"),
            Envelope("<GetUserInfoResponse "
                     "xmlns=\"http://schemas.microsoft.com/sharepoint/soap/directory/\">"
                     "<GetUserInfoResult><GetUserInfo><User ID=\"12\" Name=\"Jane Doe\"/>"
                     "</GetUserInfo></GetUserInfoResult></GetUserInfoResponse>"),
            Page("<p>webUrl=/sites/a\n<p>fileUrl=Shared Documents/b.xlsx\n"),
            Page("<p>document_list=\n<ul>\n<ul>\n<li>document_name=b.xlsx\n<li>meta_info=\n" +
                 Pairs(40) + "</ul>\n</ul>\n"),
            Page("<p>document_list=\n<ul>\n</ul>\n<p>urldirs=\n<ul>\n<ul>\n"
                 "<li>url=Shared Documents\n<li>meta_info=\n" +
                 Pairs(40) + "</ul>\n</ul>\n"),
            Fields(fields),
            Row(attributes)} {}

  void Rewind() { m_next = 0; }
  std::size_t Asked() const { return m_next; }

  HINTERNET InternetOpenW(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD) override { return this; }
  HINTERNET InternetConnectW(HINTERNET, LPCWSTR, INTERNET_PORT, LPCWSTR, LPCWSTR, DWORD, DWORD,
                             DWORD_PTR) override {
    return this;
  }
  HINTERNET HttpOpenRequestW(HINTERNET, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR*, DWORD,
                             DWORD_PTR) override {
    return this;
  }
  BOOL HttpSendRequestW(HINTERNET, LPCWSTR, DWORD, LPVOID, DWORD) override {
    if (m_next == std::size(m_answers)) return FALSE;
    m_rest = m_answers[m_next++];
    return TRUE;
  }
  BOOL HttpSendRequestExW(HINTERNET, INTERNET_BUFFERSW*, INTERNET_BUFFERSW*, DWORD,
                          DWORD_PTR) override {
    return FALSE;
  }
  BOOL InternetWriteFile(HINTERNET, LPCVOID, DWORD, DWORD*) override { return FALSE; }
  BOOL HttpEndRequestW(HINTERNET, INTERNET_BUFFERSW*, DWORD, DWORD_PTR) override { return FALSE; }
  BOOL InternetReadFile(HINTERNET, LPVOID buffer, DWORD size, DWORD* read) override {
    *read = static_cast<DWORD>(m_rest.copy(static_cast<char*>(buffer), size));
    m_rest.remove_prefix(*read);
    return TRUE;
  }
  BOOL HttpQueryInfoW(HINTERNET, DWORD, LPVOID buffer, DWORD* size, DWORD*) override {
    constexpr OLECHAR kOk[] = OLESTR("200");
    std::memcpy(buffer, kOk, sizeof kOk);
    *size = sizeof kOk - sizeof(OLECHAR);
    return TRUE;
  }
  DWORD InternetErrorDlg(HWND, HINTERNET, DWORD, DWORD, LPVOID*) override { return 0; }
  BOOL InternetQueryOptionW(HINTERNET, DWORD, LPVOID, DWORD*) override { return FALSE; }
  BOOL InternetSetOptionW(HINTERNET, DWORD, LPVOID, DWORD) override { return FALSE; }
  BOOL InternetCloseHandle(HINTERNET) override { return TRUE; }
  HWND GetActiveWindow() override { return nullptr; }
  DWORD GetLastError() override { return 0; }

 private:
  std::string m_answers[7];
  std::size_t m_next = 0;
  std::string_view m_rest;
};

ComPtr<CClient> MakeClient() {
  CoInitialize(nullptr);
  Module();
  CComObject<CClient>* client = nullptr;
  CheckResult(CComObject<CClient>::CreateInstance(&client));
  return client;
}

void Open(CClient& client, const Bstr& url, std::size_t attributes, std::size_t fields) {
  VARIANT_BOOL success = VARIANT_FALSE;
  client.InitFromURL(url.Get(), &success);
  if (success != VARIANT_TRUE || client.ItemAttributes().size() < attributes ||
      client.Fields().size() < fields) {
    throw std::runtime_error("the document does not open");
  }
}

/// Attributes of the row, fields of the content type.
void OpenFromMemory(benchmark::State& state) {
  MemoryWinInet server(state.range(0), state.range(1));
  const PortScope<WinInet> scope(server);
  const ComPtr<CClient> client = MakeClient();
  const Bstr url{WideView(kBook)};
  for (auto _ : state) {
    server.Rewind();
    Open(*client, url, static_cast<std::size_t>(state.range(0)),
         static_cast<std::size_t>(state.range(1)));
  }
  if (server.Asked() != 7) throw std::runtime_error("not seven requests");
}
BENCHMARK(OpenFromMemory)
    ->Args({50, 10})
    ->Args({50, 50})
    ->Args({2000, 500})
    ->Unit(benchmark::kMicrosecond);

void OpenOverHttp(benchmark::State& state) {
  if (std::getenv("http_proxy") == nullptr) {
    state.SkipWithError("http_proxy does not name the stand-in server");
    return;
  }
  const ComPtr<CClient> client = MakeClient();
  const Bstr url{WideView(kBook)};
  for (auto _ : state) Open(*client, url, 1, 1);
}
BENCHMARK(OpenOverHttp)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace velandoc

BENCHMARK_MAIN();
