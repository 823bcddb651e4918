#include "platform/module_path.h"

#include <dlfcn.h>

#include "platform/owners.h"

namespace velandoc {

HINSTANCE GetModuleInstance() {
  Dl_info info{};
  // dladdr knows the module by an address inside it; the function's own is one.
  if (dladdr(reinterpret_cast<void*>(&GetModuleInstance), &info) == 0) {
    _com_issue_error(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
  }
  return info.dli_fbase;
}

}  // namespace velandoc
