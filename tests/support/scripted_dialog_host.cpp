#include "tests/support/scripted_dialog_host.h"

#include "tests/support/call_line.h"

namespace velandoc::testing {
namespace {

template <class... Numbers>
std::string Line(const char* name, const std::string& window, Numbers... numbers) {
  return CallLine(name, window, std::to_string(numbers)...);
}

}  // namespace

std::string ScriptedDialogHost::Name(HWND window) {
  return window != nullptr ? reinterpret_cast<Window*>(window)->name : "null";
}

INT_PTR ScriptedDialogHost::DialogBoxParamW(WORD id, HWND owner, DialogEvents& events,
                                            WideString* reason) {
  calls.push_back(CallLine("DialogBoxParamW", std::to_string(id), Name(owner)));
  if (!refusal.empty()) {
    *reason = refusal;
    return -1;
  }
  ++dialogs;
  m_events = &events;
  m_ended = false;
  const bool setFocus = events.OnDialogCreated(Handle(m_dialog)) != FALSE;
  if (!setFocus) calls.push_back("focus left alone");
  if (!m_ended) {
    if (firstSize) {
      firstSize(*this);
    } else {
      events.OnDialogSize(SIZE_RESTORED, 600, 350);
    }
  }
  if (!m_ended && user) user(*this);
  if (!m_ended) {
    calls.push_back("left standing");
    events.OnDialogCommand(IDCANCEL);
  }
  events.OnDialogDestroyed();
  m_events = nullptr;
  m_browserEvents = nullptr;
  return m_result;
}

BOOL ScriptedDialogHost::EndDialog(HWND dialog, INT_PTR result) {
  calls.push_back(CallLine("EndDialog", Name(dialog), std::to_string(result)));
  if (!m_ended) m_result = result;
  m_ended = true;
  return TRUE;
}

HWND ScriptedDialogHost::GetDlgItem(HWND dialog, int id) {
  calls.push_back(CallLine("GetDlgItem", Name(dialog), std::to_string(id)));
  if (id == IDOK) return Handle(m_ok);
  return id == IDCANCEL ? Handle(m_cancel) : nullptr;
}

BOOL ScriptedDialogHost::GetClientRect(HWND window, RECT* rect) {
  const RECT& place = reinterpret_cast<Window*>(window)->place;
  *rect = {0, 0, place.right - place.left, place.bottom - place.top};
  return TRUE;
}

BOOL ScriptedDialogHost::GetWindowRect(HWND window, RECT* rect) {
  *rect = reinterpret_cast<Window*>(window)->place;
  return TRUE;
}

BOOL ScriptedDialogHost::ScreenToClient(HWND window, RECT* rect) {
  const RECT& place = reinterpret_cast<Window*>(window)->place;
  *rect = {rect->left - place.left, rect->top - place.top, rect->right - place.left,
           rect->bottom - place.top};
  return TRUE;
}

BOOL ScriptedDialogHost::SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width,
                                      int height, UINT flags) {
  calls.push_back(CallLine("SetWindowPos", Name(window), Name(insertAfter), std::to_string(x),
                           std::to_string(y), std::to_string(width), std::to_string(height),
                           Hex(flags)));
  return TRUE;
}

BOOL ScriptedDialogHost::MoveWindow(HWND window, int x, int y, int width, int height,
                                    BOOL repaint) {
  calls.push_back(Line("MoveWindow", Name(window), x, y, width, height, repaint));
  return TRUE;
}

LRESULT ScriptedDialogHost::DefWindowProcW(HWND window, UINT message, WPARAM first, LPARAM second) {
  calls.push_back(CallLine("DefWindowProcW", Name(window), std::to_string(message),
                           std::to_string(first), Hex(static_cast<DWORD>(second))));
  return 0;
}

HWND ScriptedDialogHost::CreateBrowser(HWND dialog, const RECT& place,
                                       std::span<const ElementEvent> wanted,
                                       BrowserEvents& events) {
  std::string line =
      Line("CreateBrowser", Name(dialog), place.left, place.top, place.right, place.bottom);
  for (const ElementEvent& event : wanted) {
    line += " " + std::to_string(event.event) + ":" + Printable(event.element);
  }
  calls.push_back(line);
  m_browserEvents = &events;
  return hasBrowser ? Handle(m_browser) : nullptr;
}

BOOL ScriptedDialogHost::Navigate(HWND browser, LPCWSTR target) {
  calls.push_back(CallLine("Navigate", Name(browser)));
  url = target;
  return TRUE;
}

}  // namespace velandoc::testing
