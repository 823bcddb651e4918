#include "platform/posix/com/server_library.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "platform/posix/com/activation.h"

namespace velandoc {
namespace {

constexpr char kLibraryName[] = "libvelandoc.so";

using GetClassObjectFunction = HRESULT (*)(REFCLSID, REFIID, void**);
using CanUnloadNowFunction = HRESULT (*)();

/// A reference of the dynamic loader; the last one unloads the library. What the system's libraries
/// below it call is bound when they call it, which makes loading the component a sixth faster; that
/// itself lacks nothing is made sure when it is linked ("-z now").
class Library {
 public:
  explicit Library(const std::string& path)
      : m_handle(dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL)) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (m_handle != nullptr) dlclose(m_handle);
  }

  bool IsLoaded() const { return m_handle != nullptr; }
  template <class Function>
  Function Find(const char* name) const {
    return reinterpret_cast<Function>(dlsym(m_handle, name));
  }

 private:
  void* m_handle;
};

/// Each caller of a library holds a share of its owner, so that none is unloaded under a call.
std::mutex librariesMutex;
std::map<std::string, std::shared_ptr<Library>>& Libraries() {
  // Never destroyed: objects of the libraries may outlive the program's static objects.
  static auto* const libraries = new std::map<std::string, std::shared_ptr<Library>>;
  return *libraries;
}

std::shared_ptr<Library> Load(const std::string& path) {
  {
    const std::lock_guard lock(librariesMutex);
    const auto found = Libraries().find(path);
    if (found != Libraries().end()) return found->second;
  }
  // Not under the lock: the library's own initialisation may call the runtime.
  auto library = std::make_shared<Library>(path);
  if (!library->IsLoaded()) return nullptr;
  const std::lock_guard lock(librariesMutex);
  return Libraries().emplace(path, std::move(library)).first->second;
}

std::string FolderOf(const std::string& file) { return file.substr(0, file.rfind('/')); }

std::string ProgramPath() {
  std::string path(4096, '\0');
  const ssize_t size = readlink("/proc/self/exe", path.data(), path.size());
  path.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  return path;
}

std::string RuntimePath() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&RuntimePath), &info) == 0 || info.dli_fname == nullptr) {
    return "";
  }
  const std::unique_ptr<char, decltype(&std::free)> path(realpath(info.dli_fname, nullptr),
                                                         &std::free);
  return path != nullptr ? path.get() : "";
}

}  // namespace

HRESULT GetClassObjectOf(const std::string& path, REFCLSID clsid, REFIID riid, void** object) {
  const std::shared_ptr<Library> library = Load(path);
  if (library == nullptr) return CO_E_DLLNOTFOUND;
  const auto getClassObject = library->Find<GetClassObjectFunction>("DllGetClassObject");
  return getClassObject != nullptr ? getClassObject(clsid, riid, object) : CO_E_ERRORINDLL;
}

std::string FindComponentLibrary() {
  std::vector<std::string> folders;
  if (const std::string program = ProgramPath(); !program.empty()) {
    folders.push_back(FolderOf(program));
    folders.push_back(FolderOf(FolderOf(program)) + "/lib");
  }
  if (const std::string runtime = RuntimePath(); !runtime.empty()) {
    folders.push_back(FolderOf(runtime));
    folders.push_back(FolderOf(runtime) + "/velandoc");
  }
  for (const std::string& folder : folders) {
    std::string path = folder + '/' + kLibraryName;
    if (access(path.c_str(), R_OK) == 0) return path;
  }
  return "";
}

}  // namespace velandoc

STDAPI_(void) CoFreeUnusedLibraries() try {
  using velandoc::Libraries;
  using velandoc::librariesMutex;
  std::vector<std::pair<std::string, std::shared_ptr<velandoc::Library>>> loaded;
  {
    const std::lock_guard lock(librariesMutex);
    loaded.assign(Libraries().begin(), Libraries().end());
  }
  for (auto& [path, library] : loaded) {
    const auto canUnload = library->Find<velandoc::CanUnloadNowFunction>("DllCanUnloadNow");
    if (canUnload == nullptr || canUnload() != S_OK) continue;
    const std::lock_guard lock(librariesMutex);
    // This function's share and the table's: with a third one someone is calling it now.
    if (library.use_count() == 2) Libraries().erase(path);
  }
} catch (const std::bad_alloc&) {
  // Nothing is freed then; the next call may do better.
}
