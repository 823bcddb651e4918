#include "platform/module_path.h"

#include "platform/owners.h"

namespace velandoc {

HINSTANCE GetModuleInstance() {
  // The address of a function of this library, not the handle that some loader call was given: the
  // code may be part of a program (the unit tests) as well.
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&GetModuleInstance), &module);
  return module;
}

WideString GetModulePath() {
  WideString path(32768, L'\0');
  const DWORD length =
      GetModuleFileNameW(GetModuleInstance(), path.data(), static_cast<DWORD>(path.size()));
  if (length == 0) _com_issue_error(HRESULT_FROM_WIN32(GetLastError()));
  if (length >= path.size()) _com_issue_error(HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
  path.resize(length);
  return path;
}

}  // namespace velandoc
