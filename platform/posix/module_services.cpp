// The ModuleServices port on Linux: the dynamic loader, the environment, and a reader of resource
// files.
#include "platform/module_services.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "platform/module_path.h"
#include "platform/posix/com/file_descriptor.h"
#include "platform/posix/embedded_resources.h"
#include "platform/posix/last_error.h"
#include "platform/posix/path_text.h"
#include "platform/posix/pe_resources.h"
#include "platform/posix/preferred_languages.h"

namespace velandoc {
namespace {

// A file that is open for its resources alone is told from a module as on Windows: by bits of the
// handle that no address has.
constexpr std::uintptr_t kResourceFile = 2;

HINSTANCE HandleOf(PeResources* file) {
  return reinterpret_cast<HINSTANCE>(reinterpret_cast<std::uintptr_t>(file) | kResourceFile);
}

/// Null for a module.
PeResources* ResourceFileOf(HINSTANCE module) {
  const auto value = reinterpret_cast<std::uintptr_t>(module);
  return (value & kResourceFile) != 0 ? reinterpret_cast<PeResources*>(value - kResourceFile)
                                      : nullptr;
}

/// Nothing if it can't be read, is no regular file or passes the bound.
std::optional<std::string> ReadFile(const std::string& path) {
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat state {};
  if (!file || fstat(file.Get(), &state) != 0 || !S_ISREG(state.st_mode)) return std::nullopt;
  if (state.st_size > static_cast<off_t>(kMaxResourceFile)) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(state.st_size), '\0');
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t count = read(file.Get(), bytes.data() + filled, bytes.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    // Shorter than it said: someone changes it just now.
    if (count <= 0) return std::nullopt;
    filled += static_cast<std::size_t>(count);
  }
  return bytes;
}

std::string PathOf(HINSTANCE module) {
  Dl_info info{};
  if (dladdr(module, &info) == 0 || info.dli_fname == nullptr) return {};
  using CFree = void (*)(void*);
  std::unique_ptr<char, CFree> path(realpath(info.dli_fname, nullptr), &std::free);
  // For the program itself the loader has argv[0], which may name no file.
  if (!path) path.reset(realpath("/proc/self/exe", nullptr));
  return path ? path.get() : std::string();
}

class PosixModuleServices final : public ModuleServices {
 public:
  DWORD GetModuleFileNameW(HINSTANCE module, LPWSTR path, DWORD size) override {
    const WideString found = PathFromUtf8(PathOf(module));
    if (found.empty() || size == 0) return 0;
    const std::size_t length = std::min<std::size_t>(found.size(), size - 1);
    path[found.copy(path, length)] = u'\0';
    return length < found.size() ? size : static_cast<DWORD>(length);
  }

  BOOL GetThreadPreferredUILanguages(DWORD, ULONG* count, LPWSTR names, ULONG* size) override {
    WideString list;
    *count = 0;
    for (const std::string& name : PreferredLanguages()) {
      list.append(name.begin(), name.end());
      list += u'\0';
      ++*count;
    }
    // Also an empty list has two nulls.
    list.append(list.empty() ? 2 : 1, u'\0');
    const bool fits = list.size() <= *size;
    *size = static_cast<ULONG>(list.size());
    if (!fits) return FailWith(ERROR_INSUFFICIENT_BUFFER);
    list.copy(names, list.size());
    return TRUE;
  }

  BOOL PathFileExistsW(LPCWSTR path) override {
    return access(PathToUtf8(path).c_str(), F_OK) == 0 ? TRUE : FALSE;
  }

  HINSTANCE LoadLibraryExW(LPCWSTR path, HANDLE, DWORD) override {
    std::optional<std::string> bytes = ReadFile(PathToUtf8(path));
    if (!bytes) return nullptr;
    std::optional<PeResources> resources = PeResources::Read(std::move(*bytes));
    if (!resources) return nullptr;
    return HandleOf(std::make_unique<PeResources>(std::move(*resources)).release());
  }

  BOOL FreeLibrary(HINSTANCE module) override {
    const std::unique_ptr<PeResources> file(ResourceFileOf(module));
    return file ? TRUE : FALSE;
  }

  int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int size) override {
    const WideString row = RowOf(module, id);
    if (size <= 0) return 0;
    const std::size_t length = row.copy(text, static_cast<std::size_t>(size) - 1);
    text[length] = u'\0';
    return static_cast<int>(length);
  }

 private:
  static WideString RowOf(HINSTANCE module, UINT id) {
    if (id > 0xFFFF) return {};
    const auto number = static_cast<WORD>(id);
    if (const PeResources* file = ResourceFileOf(module)) return file->LoadString(number);
    if (module != GetModuleInstance()) return {};
    for (const EmbeddedString& row : EmbeddedStrings()) {
      if (row.id == number) return WideString(row.text);
    }
    return {};
  }
};

}  // namespace

template <>
ModuleServices& SystemPort<ModuleServices>() {
  static PosixModuleServices port;
  return port;
}

}  // namespace velandoc
