// One modal dialog of the DialogHost port: its window, its loop, its browser.
#pragma once

#include <memory>

#include "platform/windows/browser_control.h"

namespace velandoc {

class ModalDialog {
 public:
  explicit ModalDialog(DialogEvents& events) : m_events(events) {}
  ModalDialog(const ModalDialog&) = delete;
  ModalDialog& operator=(const ModalDialog&) = delete;

  /// The dialog whose window this is; null if it is none of ours.
  static ModalDialog* Of(HWND dialog);

  /// As DialogHost::DialogBoxParamW.
  INT_PTR Run(WORD id, HWND owner, WideString* reason);
  void End(INT_PTR result);
  /// Null if there is one already, or there can be none.
  HWND CreateBrowser(const RECT& place, std::span<const ElementEvent> wanted,
                     BrowserEvents& events);
  /// Null unless `window` is that of the dialog's browser.
  BrowserControl* BrowserOf(HWND window) const;

 private:
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);
  INT_PTR Handle(UINT message, WPARAM first, LPARAM second);

  BOOL Start();
  void Centre() const;
  void TellSize(UINT type, int width, int height);
  void Loop();
  /// True if the message was a key for the dialog's keyboard and is done with.
  bool TranslateKeys(MSG& message);
  bool TranslatePageKey(MSG& message);
  int DefaultButton() const;
  void ReleaseOwner();

  DialogEvents& m_events;
  HWND m_window = nullptr;
  HWND m_owner = nullptr;
  bool m_ownerDisabled = false;
  bool m_created = false;  // the window, with its controls
  bool m_started = false;  // the dialog behind OnDialogCreated
  bool m_ended = false;
  INT_PTR m_result = IDCANCEL;
  /// The size that was told last.
  bool m_sizeTold = false;
  UINT m_sizeType = 0;
  SIZE m_size{};
  std::unique_ptr<BrowserControl> m_browser;
};

}  // namespace velandoc
