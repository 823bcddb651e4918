#include "platform/module_path.h"

#include "platform/module_services.h"
#include "platform/owners.h"

namespace velandoc {

WideString GetModulePath() {
  // The longest path that Windows knows, with its terminator.
  WideString path(32768, OLECHAR{0});
  const DWORD length = CurrentPort<ModuleServices>().GetModuleFileNameW(
      GetModuleInstance(), path.data(), static_cast<DWORD>(path.size()));
  if (length == 0) _com_issue_error(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
  if (length >= path.size()) _com_issue_error(HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
  path.resize(length);
  return path;
}

}  // namespace velandoc
