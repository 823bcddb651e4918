#include "platform/shared_library.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "platform/posix/com/server_library.h"

namespace velandoc {

std::string ComponentLibraryPath() {
  const std::string found = FindComponentLibrary();
  if (!found.empty()) return found;
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return (program.parent_path().parent_path() / "lib" / "libvelandoc.so").string();
}

void* LoadSharedLibrary(const std::string& path, std::string& problem) {
  void* library = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (library == nullptr) problem = dlerror();
  return library;
}

ExportedFunction FindExport(void* library, const char* name) {
  return reinterpret_cast<ExportedFunction>(dlsym(library, name));
}

}  // namespace velandoc
