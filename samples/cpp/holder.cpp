// Tells who holds documents of SharePoint libraries, through the component's own interface. One
// source for both systems.
//
// Linux, with the package libvelandoc-dev (CMakeLists.txt):
//   cmake -B build && cmake --build build
//
// Windows, with velandoc.dll registered and the folder of velandoc_idl.h in place of DIR:
//   x86_64-w64-mingw32-g++ -std=c++20 -static -I DIR holder.cpp -lole32 -loleaut32 -luuid
#include <initguid.h>

#include <velandoc_idl.h>

#include <cstdio>
#include <string>

namespace {

/// Owns a BSTR.
class Text {
 public:
  explicit Text(const OLECHAR* text = nullptr) : m_text(text ? SysAllocString(text) : nullptr) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text() { SysFreeString(m_text); }
  BSTR get() const { return m_text; }
  BSTR* receive() { return &m_text; }
  bool empty() const { return SysStringLen(m_text) == 0; }

 private:
  BSTR m_text = nullptr;
};

/// UTF-8, which a Windows console shows after "chcp 65001".
std::string Utf8(const Text& text) {
  constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
  std::string bytes;
  const UINT length = SysStringLen(text.get());
  for (UINT i = 0; i < length; ++i) {
    unsigned long point = static_cast<unsigned>(text.get()[i]) & 0xFFFF;
    if (point >= 0xD800 && point < 0xDC00 && i + 1 < length) {
      const unsigned long low = static_cast<unsigned>(text.get()[++i]) & 0xFFFF;
      point = 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00);
    }
    if (point < 0x80) {
      bytes += static_cast<char>(point);
      continue;
    }
    const int more = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    bytes += static_cast<char>(kLead[more] | (point >> (6 * more)));
    for (int k = more - 1; k >= 0; --k) {
      bytes += static_cast<char>(0x80 | ((point >> (6 * k)) & 0x3F));
    }
  }
  return bytes;
}

std::string HolderOf(IClient* document, const std::basic_string<OLECHAR>& url) {
  VARIANT_BOOL known = VARIANT_FALSE;
  const Text target(url.c_str());
  if (FAILED(document->InitFromURL(target.get(), &known))) return "the open failed";
  if (known == VARIANT_FALSE) return "the server does not know who you are";
  Text id;
  if (FAILED(document->get_DocID(id.receive()))) return "the open failed";
  // An open that found no document is a success without a document.
  if (id.empty()) return "no such document";
  Text holder;
  if (FAILED(document->get_SharePointCheckoutUser(holder.receive()))) return "not known";
  return holder.empty() ? "nobody" : Utf8(holder);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: holder URL...\n");
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int exitCode = 0;
  CLSID clsid{};
  IClient* document = nullptr;
  HRESULT result = CLSIDFromProgID(OLESTR("Velandoc.Client"), &clsid);
  if (SUCCEEDED(result)) {
    result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IClient,
                              reinterpret_cast<void**>(&document));
  }
  if (SUCCEEDED(result)) {
    for (int i = 1; i < argc; ++i) {
      const std::string url = argv[i];  // escaped, as URLs are: ASCII
      std::printf("%s: %s\n", argv[i],
                  HolderOf(document, std::basic_string<OLECHAR>(url.begin(), url.end())).c_str());
    }
    document->Release();
  } else {
    std::fprintf(stderr, "the component cannot be created (0x%08lX)\n",
                 static_cast<unsigned long>(static_cast<unsigned>(result)));
    exitCode = 1;
  }
  CoUninitialize();
  return exitCode;
}
