#include "platform/shared_library.h"

#include <windows.h>

#include "platform/windows/program/wide_text.h"

namespace velandoc {
namespace {

std::string SystemText(DWORD error) {
  wchar_t text[512] = {};
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, error, 0, text, ARRAYSIZE(text), nullptr);
  std::wstring_view view(text, length);
  while (!view.empty() && view.back() <= L' ') view.remove_suffix(1);
  return NarrowedText(view) + " (error " + std::to_string(error) + ")";
}

}  // namespace

std::string ComponentLibraryPath() {
  // The longest path that the system knows, with its terminator.
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  path.resize(path.find_last_of(L'\\') + 1);
  return NarrowedText(path) + "velandoc.dll";
}

void* LoadSharedLibrary(const std::string& path, std::string& problem) {
  HMODULE library =
      LoadLibraryExW(WidenedText(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (library == nullptr) problem = SystemText(GetLastError());
  return library;
}

ExportedFunction FindExport(void* library, const char* name) {
  return reinterpret_cast<ExportedFunction>(GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace velandoc
