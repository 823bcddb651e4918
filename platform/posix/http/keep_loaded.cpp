#include "platform/posix/http/keep_loaded.h"

#include <dlfcn.h>

namespace velandoc::http {

void KeepLibraryLoaded() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&KeepLibraryLoaded), &info) == 0) return;
  // The handle is not needed. A program that holds the library's code in itself is not found, and
  // stays anyway.
  static_cast<void>(dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE));
}

}  // namespace velandoc::http
