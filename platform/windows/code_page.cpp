// The CodePage port on Windows: the system's own conversions.
#include "platform/code_page.h"

namespace velandoc {
namespace {

class SystemCodePage final : public CodePage {
 public:
  int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int size, LPSTR bytes,
                          int capacity, LPCSTR defaultChar, BOOL* usedDefaultChar) override {
    return ::WideCharToMultiByte(codePage, flags, wide, size, bytes, capacity, defaultChar,
                                 usedDefaultChar);
  }
  int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int size, LPWSTR wide,
                          int capacity) override {
    return ::MultiByteToWideChar(codePage, flags, bytes, size, wide, capacity);
  }
};

}  // namespace

template <>
CodePage& SystemPort<CodePage>() {
  static SystemCodePage port;
  return port;
}

}  // namespace velandoc
