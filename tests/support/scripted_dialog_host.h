// A DialogHost port without windows: a dialog that a test drives, and a record of the calls.
//
// The template's buttons stand where a dialog of 600 by 350 pixels at (1000, 500) on the screen has
// them: OK at (434, 316), Cancel at (513, 316).
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/dialog_host.h"

namespace velandoc::testing {

class ScriptedDialogHost final : public DialogHost {
 public:
  /// Every call but the rectangles', in order: "SetWindowPos(ok, null, 434, 316, 0, 0, 0x15)".
  std::vector<std::string> calls;
  /// Why there can be no window; empty: there can.
  WideString refusal;
  bool hasBrowser = true;
  /// What the user does once the dialog is shown. A dialog that still stands then is cancelled and
  /// noted as "left standing".
  std::function<void(ScriptedDialogHost&)> user;
  /// Runs where the size of the first show would come; by default that is 600 by 350.
  std::function<void(ScriptedDialogHost&)> firstSize;
  /// What Navigate was given, the latest.
  WideString url;
  int dialogs = 0;

  // For `user`.

  void Size(UINT type, int width, int height) { m_events->OnDialogSize(type, width, height); }
  void Click(int id) { m_events->OnDialogCommand(id); }
  void Complete(IHTMLDocument2& document) { m_browserEvents->OnDocumentComplete(&document); }
  void ClickElement(LPCWSTR id) { m_browserEvents->OnElementEvent({DISPID_CLICK, id}); }
  bool IsEnded() const { return m_ended; }

  INT_PTR DialogBoxParamW(WORD id, HWND owner, DialogEvents& events, WideString* reason) override;
  BOOL EndDialog(HWND dialog, INT_PTR result) override;
  HWND GetDlgItem(HWND dialog, int id) override;
  BOOL GetClientRect(HWND window, RECT* rect) override;
  BOOL GetWindowRect(HWND window, RECT* rect) override;
  BOOL ScreenToClient(HWND window, RECT* rect) override;
  BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height,
                    UINT flags) override;
  BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override;
  LRESULT DefWindowProcW(HWND window, UINT message, WPARAM first, LPARAM second) override;
  HWND CreateBrowser(HWND dialog, const RECT& place, std::span<const ElementEvent> wanted,
                     BrowserEvents& events) override;
  BOOL Navigate(HWND browser, LPCWSTR target) override;

 private:
  struct Window {
    std::string name;
    RECT place;
  };
  Window m_dialog{"dialog", {1000, 500, 1600, 850}};
  Window m_ok{"ok", {1434, 816, 1509, 839}};
  Window m_cancel{"cancel", {1513, 816, 1588, 839}};
  Window m_browser{"browser", {}};

  static HWND Handle(Window& window) { return reinterpret_cast<HWND>(&window); }
  static std::string Name(HWND window);

  DialogEvents* m_events = nullptr;
  BrowserEvents* m_browserEvents = nullptr;
  bool m_ended = false;
  INT_PTR m_result = 0;
};

}  // namespace velandoc::testing
