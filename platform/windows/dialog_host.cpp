// The DialogHost port on Windows: the system's dialogs and its browser control.
#include "platform/dialog_host.h"

#include "platform/windows/modal_dialog.h"

namespace velandoc {
namespace {

/// The browser with this window; null if it is none.
BrowserControl* BrowserAt(HWND window) {
  ModalDialog* dialog = ModalDialog::Of(GetParent(window));
  return dialog != nullptr ? dialog->BrowserOf(window) : nullptr;
}

class SystemDialogHost final : public DialogHost {
 public:
  INT_PTR DialogBoxParamW(WORD id, HWND owner, DialogEvents& events, WideString* reason) override {
    return ModalDialog(events).Run(id, owner, reason);
  }
  BOOL EndDialog(HWND dialog, INT_PTR result) override {
    ModalDialog* ended = ModalDialog::Of(dialog);
    if (ended == nullptr) return FALSE;
    ended->End(result);
    return TRUE;
  }
  HWND GetDlgItem(HWND dialog, int id) override { return ::GetDlgItem(dialog, id); }

  BOOL GetClientRect(HWND window, RECT* rect) override { return ::GetClientRect(window, rect); }
  BOOL GetWindowRect(HWND window, RECT* rect) override { return ::GetWindowRect(window, rect); }
  BOOL ScreenToClient(HWND window, RECT* rect) override {
    // Zero is also the answer for a window in the corner of the screen.
    if (!IsWindow(window)) return FALSE;
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(rect), 2);
    return TRUE;
  }
  BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height,
                    UINT flags) override {
    return ::SetWindowPos(window, insertAfter, x, y, width, height, flags);
  }
  BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override {
    BrowserControl* browser = BrowserAt(window);
    if (browser == nullptr) return ::MoveWindow(window, x, y, width, height, repaint);
    browser->Place({x, y, x + width, y + height});
    return TRUE;
  }
  LRESULT DefWindowProcW(HWND window, UINT message, WPARAM first, LPARAM second) override {
    return ::DefWindowProcW(window, message, first, second);
  }

  HWND CreateBrowser(HWND dialog, const RECT& place, std::span<const ElementEvent> wanted,
                     BrowserEvents& events) override {
    ModalDialog* parent = ModalDialog::Of(dialog);
    return parent != nullptr ? parent->CreateBrowser(place, wanted, events) : nullptr;
  }
  BOOL Navigate(HWND browser, LPCWSTR url) override {
    BrowserControl* control = BrowserAt(browser);
    return control != nullptr ? control->Navigate(url) : FALSE;
  }
};

}  // namespace

template <>
DialogHost& SystemPort<DialogHost>() {
  static SystemDialogHost port;
  return port;
}

}  // namespace velandoc
