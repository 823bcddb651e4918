// Tells who holds documents of SharePoint libraries, through the component's own interface. The
// same source serves both systems:
//
//   Linux    cmake -B build && cmake --build build            (with libvelandoc-dev; see
//   CMakeLists.txt) Windows  x86_64-w64-mingw32-g++ -std=c++20 -static -I.. holder.cpp -lole32
//   -loleaut32 -luuid
//            (velandoc_idl.h lies beside velandoc.dll, which must be registered)
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

std::string Narrow(const Text& text) {
  // Enough for this sample: names in ASCII.
  std::string narrow;
  for (UINT i = 0; i < SysStringLen(text.get()); ++i) {
    const auto unit = static_cast<unsigned>(text.get()[i]);
    narrow += unit < 128 ? static_cast<char>(unit) : '?';
  }
  return narrow;
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
  return holder.empty() ? "nobody" : Narrow(holder);
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
      const std::string url = argv[i];
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
