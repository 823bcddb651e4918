// A DialogHost port over another one that remembers how the dialog ended. EditFields says nothing
// of it to its caller.
#pragma once

#include <optional>
#include <string>

#include "platform/dialog_host.h"

namespace velandoc {

/// Passes every operation on. For one thread.
class DialogWatch final : public DialogHost {
 public:
  explicit DialogWatch(DialogHost& below) : m_below(below) {}

  /// What the latest dialog ended with; nothing if none was shown.
  std::optional<INT_PTR> Result() const { return m_result; }
  /// Why it was not shown, as UTF-8.
  const std::string& Reason() const { return m_reason; }

  INT_PTR DialogBoxParamW(WORD id, HWND owner, DialogEvents& events, WideString* reason) override;
  BOOL EndDialog(HWND dialog, INT_PTR result) override { return m_below.EndDialog(dialog, result); }
  HWND GetDlgItem(HWND dialog, int id) override { return m_below.GetDlgItem(dialog, id); }
  BOOL GetClientRect(HWND window, RECT* rect) override {
    return m_below.GetClientRect(window, rect);
  }
  BOOL GetWindowRect(HWND window, RECT* rect) override {
    return m_below.GetWindowRect(window, rect);
  }
  BOOL ScreenToClient(HWND window, RECT* rect) override {
    return m_below.ScreenToClient(window, rect);
  }
  BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height,
                    UINT flags) override {
    return m_below.SetWindowPos(window, insertAfter, x, y, width, height, flags);
  }
  BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) override {
    return m_below.MoveWindow(window, x, y, width, height, repaint);
  }
  LRESULT DefWindowProcW(HWND window, UINT message, WPARAM first, LPARAM second) override {
    return m_below.DefWindowProcW(window, message, first, second);
  }
  HWND CreateBrowser(HWND dialog, const RECT& place, std::span<const ElementEvent> wanted,
                     BrowserEvents& events) override {
    return m_below.CreateBrowser(dialog, place, wanted, events);
  }
  BOOL Navigate(HWND browser, LPCWSTR url) override { return m_below.Navigate(browser, url); }

 private:
  DialogHost& m_below;
  std::optional<INT_PTR> m_result;
  std::string m_reason;
};

}  // namespace velandoc
