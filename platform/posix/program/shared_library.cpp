#include "platform/shared_library.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

namespace velandoc {

std::string ComponentLibraryPath() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  const std::filesystem::path folder = program.parent_path();
  const std::filesystem::path installed = folder.parent_path() / "lib" / "libvelandoc.so";
  const std::filesystem::path beside = folder / "libvelandoc.so";
  const bool serves = std::filesystem::exists(installed, error);
  return (!serves && std::filesystem::exists(beside, error) ? beside : installed).string();
}

void* LoadSharedLibrary(const std::string& path, std::string& problem) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) problem = dlerror();
  return library;
}

ExportedFunction FindExport(void* library, const char* name) {
  return reinterpret_cast<ExportedFunction>(dlsym(library, name));
}

}  // namespace velandoc
