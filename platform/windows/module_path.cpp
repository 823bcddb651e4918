#include "platform/module_path.h"

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

}  // namespace velandoc
