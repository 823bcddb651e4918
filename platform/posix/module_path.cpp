#include "platform/module_path.h"

#include <dlfcn.h>

#include <cstdlib>
#include <memory>

#include "platform/code_page.h"
#include "platform/owners.h"

namespace velandoc {
namespace {

Dl_info FindModule() {
  Dl_info info{};
  // dladdr knows the module by an address inside it; the function's own is one.
  if (dladdr(reinterpret_cast<void*>(&GetModuleInstance), &info) == 0) {
    _com_issue_error(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
  }
  return info;
}

}  // namespace

HINSTANCE GetModuleInstance() { return FindModule().dli_fbase; }

WideString GetModulePath() {
  // The loader keeps the name by which it was asked, which may be relative to a folder that is not
  // current any more; for the program itself that is argv[0], so the kernel is asked instead when
  // it names no file.
  const Dl_info info = FindModule();
  using CFree = void (*)(void*);
  std::unique_ptr<char, CFree> path(realpath(info.dli_fname, nullptr), &std::free);
  if (!path) path.reset(realpath("/proc/self/exe", nullptr));
  if (!path) _com_issue_error(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));

  CodePage& codePage = CurrentPort<CodePage>();
  WideString wide(32768, u'\0');
  // The count holds the terminator.
  const int count = codePage.MultiByteToWideChar(CP_UTF8, 0, path.get(), -1, wide.data(),
                                                 static_cast<int>(wide.size()));
  if (count == 0) _com_issue_error(HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
  wide.resize(static_cast<std::size_t>(count) - 1);
  return wide;
}

}  // namespace velandoc
