// The DialogHost port of the home whose windows are in a module: loads it, and hands every call on.
#include "platform/posix/dialog_module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <string>

#include "platform/module_path.h"
#include "platform/posix/path_text.h"

namespace velandoc {
namespace {

/// The module's port, or null with the reason in words.
DialogHost* LoadModule(std::string& reason) {
  const std::string library = PathToUtf8(GetModulePath());
  const std::string folder = library.substr(0, library.find_last_of('/') + 1);
  void* module = nullptr;
  for (const std::string& place : std::array{folder, folder + "../lib/", std::string()}) {
    // Never unloaded: what draws windows leaves threads and handlers behind.
    module = dlopen((place + kDialogModuleName).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (module != nullptr) break;
    // Of a file that is there the loader tells more than of the names tried after it.
    const char* const problem = dlerror();
    const bool isMissing = access((place + kDialogModuleName).c_str(), F_OK) != 0;
    if (reason.empty() || !isMissing) reason = problem != nullptr ? problem : kDialogModuleName;
    if (!isMissing) return nullptr;
  }
  if (module == nullptr) return nullptr;
  const auto find = reinterpret_cast<DialogModuleFunction>(dlsym(module, kDialogModuleFunction));
  DialogHost* const port = find != nullptr ? find(kDialogModuleVersion) : nullptr;
  if (port == nullptr) {
    reason = std::string(kDialogModuleName) + " is of another version than the library";
  }
  return port;
}

class ModuleDialogHost final : public DialogHost {
 public:
  INT_PTR DialogBoxParamW(WORD id, HWND owner, DialogEvents& events, WideString* reason) override {
    // A module that was missing may have been installed meanwhile: asked for anew each time.
    if (m_module == nullptr) {
      std::string problem;
      m_module = LoadModule(problem);
      if (m_module == nullptr) {
        *reason = PathFromUtf8(problem);
        return -1;
      }
    }
    return Module().DialogBoxParamW(id, owner, events, reason);
  }

  // A window comes from the module, so that is loaded in all of these.

  BOOL EndDialog(HWND dialog, INT_PTR result) override {
    return Module().EndDialog(dialog, result);
  }
  HWND GetDlgItem(HWND dialog, int id) override { return Module().GetDlgItem(dialog, id); }
  BOOL GetClientRect(HWND window, RECT* rect) override {
    return Module().GetClientRect(window, rect);
  }
  BOOL GetWindowRect(HWND window, RECT* rect) override {
    return Module().GetWindowRect(window, rect);
  }
  BOOL ScreenToClient(HWND window, RECT* rect) override {
    return Module().ScreenToClient(window, rect);
  }
  BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height,
                    UINT flags) override {
    return Module().SetWindowPos(window, insertAfter, x, y, width, height, flags);
  }
  BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override {
    return Module().MoveWindow(window, x, y, width, height, repaint);
  }
  LRESULT DefWindowProcW(HWND window, UINT message, WPARAM first, LPARAM second) override {
    return Module().DefWindowProcW(window, message, first, second);
  }
  HWND CreateBrowser(HWND dialog, const RECT& place, std::span<const ElementEvent> wanted,
                     BrowserEvents& events) override {
    return Module().CreateBrowser(dialog, place, wanted, events);
  }
  BOOL Navigate(HWND browser, LPCWSTR url) override { return Module().Navigate(browser, url); }

 private:
  DialogHost& Module() { return *m_module; }

  std::atomic<DialogHost*> m_module = nullptr;  // dialogs may stand on several threads
};

}  // namespace

template <>
DialogHost& SystemPort<DialogHost>() {
  static ModuleDialogHost port;
  return port;
}

}  // namespace velandoc
