// A ModuleServices for tests: answers as told and records the calls in order.
#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/module_services.h"
#include "platform/text.h"

namespace velandoc {

class ScriptedModules : public ModuleServices {
 public:
  /// "operation argument", in order; of paths the ASCII part alone is to be expected.
  std::vector<std::string> calls;
  /// Modules by their handle; another one has no path.
  std::map<HINSTANCE, WideString> modules;
  /// What GetThreadPreferredUILanguages gives, or nothing when it fails.
  std::vector<WideString> languages;
  bool languagesFail = false;
  std::set<WideString> files;
  /// Handles of the files that can be opened.
  std::map<WideString, HINSTANCE> libraries;
  std::vector<HINSTANCE> freed;

  DWORD GetModuleFileNameW(HINSTANCE module, LPWSTR path, DWORD size) override {
    const auto found = modules.find(module);
    if (found == modules.end()) return 0;
    const std::size_t length = found->second.copy(path, size - 1);
    path[length] = 0;
    return length < found->second.size() ? size : static_cast<DWORD>(length);
  }
  BOOL GetThreadPreferredUILanguages(DWORD flags, ULONG* count, LPWSTR names,
                                     ULONG* size) override {
    calls.push_back("languages " + std::to_string(flags) + " " + std::to_string(*size));
    WideString list;
    for (const WideString& language : languages) list.append(language) += OLECHAR{0};
    list += OLECHAR{0};
    if (languagesFail || list.size() > *size) return FALSE;
    list.copy(names, list.size());
    *count = static_cast<ULONG>(languages.size());
    *size = static_cast<ULONG>(list.size());
    return TRUE;
  }
  BOOL PathFileExistsW(LPCWSTR path) override {
    calls.push_back("exists " + Narrow(path));
    return files.count(path) != 0 ? TRUE : FALSE;
  }
  HINSTANCE LoadLibraryExW(LPCWSTR path, HANDLE reserved, DWORD flags) override {
    calls.push_back("load " + Narrow(path) + " " + std::to_string(flags) +
                    (reserved != nullptr ? " and a file" : ""));
    const auto found = libraries.find(path);
    return found != libraries.end() ? found->second : nullptr;
  }
  BOOL FreeLibrary(HINSTANCE module) override {
    freed.push_back(module);
    return TRUE;
  }
  int LoadStringW(HINSTANCE, UINT, LPWSTR, int) override { return 0; }

 private:
  static std::string Narrow(WideView text) {
    std::string narrow;
    for (const OLECHAR c : text) narrow += static_cast<char>(c);
    return narrow;
  }
};

}  // namespace velandoc
