#include "platform/windows/type_info.h"

#include <string>

namespace velandoc {
namespace {

/// The file of the library that this code is part of, or of the program that it was linked into.
WideString OwnPath() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&LoadTypeInfo), &module);
  WideString path(32768, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

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
  // "file\2" names the second library of a file; the search ends where there is none.
  const WideString path = OwnPath();
  for (int index = 1;; ++index) {
    ComPtr<ITypeLib> library;
    const WideString name = path + L"\\" + std::to_wstring(index);
    const HRESULT result = LoadTypeLibEx(name.c_str(), REGKIND_NONE, library.Receive());
    if (FAILED(result)) return index == 1 ? result : TYPE_E_LIBNOTREGISTERED;
    if (IsLibrary(*library, libid, major, minor)) {
      return library->GetTypeInfoOfGuid(iid, info.Receive());
    }
  }
}

}  // namespace velandoc
