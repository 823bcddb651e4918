// The module's port: DialogHost over GTK 3 and WebKitGTK.
//
// Handles are pointers to the controls of the dialog that stands. The operations are those of
// platform/dialog_host.h; a screen position counts from the client area's corner, since not every
// display server tells where on the screen a window lies. An owner is not taken: no window of this
// home has a handle but the dialog itself.
#include <exception>

#include "platform/posix/com/utf8.h"
#include "platform/posix/dialog/dialog_window.h"
#include "platform/posix/dialog/gtk_start.h"
#include "platform/posix/dialog_module.h"

namespace velandoc {
namespace {

/// What stands behind "file://", or the whole text.
std::string PathOfUrl(WideView url) {
  constexpr WideView kScheme = OLESTR("file://");
  if (url.substr(0, kScheme.size()) == kScheme) url.remove_prefix(kScheme.size());
  return WideToUtf8(url);
}

WideString WideText(const std::string& text) {
  WideString wide;
  if (!Utf8ToWide(text, wide)) wide.clear();
  return wide;
}

class GtkDialogHost final : public DialogHost {
 public:
  INT_PTR DialogBoxParamW(WORD id, HWND, DialogEvents& events, WideString* reason) override {
    std::string problem;
    const INT_PTR result = Show(id, events, problem);
    if (!problem.empty() && reason != nullptr) *reason = WideText(problem);
    return result;
  }

  BOOL EndDialog(HWND dialog, INT_PTR result) override {
    if (!IsDialog(dialog)) return FALSE;
    m_dialog->End(result);
    return TRUE;
  }

  HWND GetDlgItem(HWND dialog, int id) override {
    return IsDialog(dialog) ? m_dialog->FindById(id) : nullptr;
  }

  BOOL GetClientRect(HWND window, RECT* rect) override {
    const DialogControl* const control = Find(window);
    if (control == nullptr || rect == nullptr) return FALSE;
    const RECT& place = control->place;
    *rect = {0, 0, place.right - place.left, place.bottom - place.top};
    return TRUE;
  }

  BOOL GetWindowRect(HWND window, RECT* rect) override {
    const DialogControl* const control = Find(window);
    if (control == nullptr || rect == nullptr) return FALSE;
    *rect = control->place;
    return TRUE;
  }

  BOOL ScreenToClient(HWND window, RECT* rect) override {
    const DialogControl* const control = Find(window);
    if (control == nullptr || rect == nullptr) return FALSE;
    rect->left -= control->place.left;
    rect->right -= control->place.left;
    rect->top -= control->place.top;
    rect->bottom -= control->place.top;
    return TRUE;
  }

  BOOL SetWindowPos(HWND window, HWND, int x, int y, int width, int height, UINT flags) override {
    const DialogControl* const control = Find(window);
    if (control == nullptr) return FALSE;
    if ((flags & SWP_NOSIZE) != 0) {
      width = control->place.right - control->place.left;
      height = control->place.bottom - control->place.top;
    }
    return MoveWindow(window, x, y, width, height, TRUE);
  }

  BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL) override {
    DialogControl* const control = Find(window);
    if (control == nullptr) return FALSE;
    m_dialog->Place(*control, {x, y, x + width, y + height});
    return TRUE;
  }

  /// There is nothing below this port that a message could go to.
  LRESULT DefWindowProcW(HWND, UINT, WPARAM, LPARAM) override { return 0; }

  HWND CreateBrowser(HWND dialog, const RECT& place, std::span<const ElementEvent> wanted,
                     BrowserEvents& events) override {
    return IsDialog(dialog) ? m_dialog->CreatePage(place, wanted, events) : nullptr;
  }

  BOOL Navigate(HWND browser, LPCWSTR url) override {
    return Find(browser) != nullptr && m_dialog->LoadPage(PathOfUrl(ViewOf(url)));
  }

 private:
  INT_PTR Show(WORD id, DialogEvents& events, std::string& problem) {
    const DialogTemplate* const dialog = FindDialogTemplate(id);
    if (dialog == nullptr) {
      problem = "there is no dialog template " + std::to_string(id);
      return -1;
    }
    if (!StartGtk(problem)) return -1;
    const MainContextScope context;
    if (!context.IsHeld()) {
      problem = "another thread runs GTK's main loop";
      return -1;
    }
    // A main loop inside the main loop may bring the next call while this one waits.
    if (m_dialog) {
      problem = "a dialog is open already";
      return -1;
    }
    m_dialog = std::make_unique<DialogWindow>(*dialog, events);
    const INT_PTR result = m_dialog->Run();
    m_dialog.reset();
    return result;
  }

  DialogControl* Find(HWND window) { return m_dialog ? m_dialog->Find(window) : nullptr; }
  bool IsDialog(HWND window) {
    const DialogControl* const control = Find(window);
    return control != nullptr && m_dialog->IsClientArea(*control);
  }

  std::unique_ptr<DialogWindow> m_dialog;
};

}  // namespace
}  // namespace velandoc

extern "C" __attribute__((visibility("default"))) velandoc::DialogHost* VelandocDialogHost(
    unsigned version);

velandoc::DialogHost* VelandocDialogHost(unsigned version) {
  if (version != velandoc::kDialogModuleVersion) return nullptr;
  // Never destroyed: WebKit's threads outlive the program's statics.
  static auto* const host = new velandoc::GtkDialogHost;
  return host;
}
