#include "platform/windows/type_info.h"

#include <string>

#include "platform/module_path.h"

namespace velandoc {
namespace {

// No module carries more than one or two; the search has to end where the one that is asked for is
// missing.
constexpr int kMaxLibraries = 4;

bool IsLibrary(ITypeLib& library, REFGUID libid, WORD major, WORD minor) {
  TLIBATTR* attributes = nullptr;
  if (FAILED(library.GetLibAttr(&attributes))) return false;
  const bool isIt = IsEqualGUID(attributes->guid, libid) && attributes->wMajorVerNum == major &&
                    attributes->wMinorVerNum == minor;
  library.ReleaseTLibAttr(attributes);
  return isIt;
}

}  // namespace

HRESULT LoadTypeInfo(REFGUID libid, WORD major, WORD minor, REFIID iid, ComPtr<ITypeInfo>& info) {
  // "file\2" names the library with resource number 2.
  const WideString path = GetModulePath() + L"\\";
  for (int number = 1; number <= kMaxLibraries; ++number) {
    ComPtr<ITypeLib> library;
    const WideString name = path + std::to_wstring(number);
    if (SUCCEEDED(LoadTypeLibEx(name.c_str(), REGKIND_NONE, library.Receive())) &&
        IsLibrary(*library, libid, major, minor)) {
      return library->GetTypeInfoOfGuid(iid, info.Receive());
    }
  }
  return TYPE_E_LIBNOTREGISTERED;
}

}  // namespace velandoc
