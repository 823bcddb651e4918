#include "platform/windows/modal_dialog.h"

#include <algorithm>

#include "platform/mfc/module_state.h"
#include "platform/module_path.h"

namespace velandoc {
namespace {

/// A page is complete.
constexpr UINT kDocumentComplete = WM_APP + 1;

/// OLE for the length of a dialog. On a thread of the wrong apartment it fails, and so does the
/// browser; the dialog stands without a page.
class OleScope {
 public:
  OleScope() : m_result(OleInitialize(nullptr)) {}
  ~OleScope() {
    if (SUCCEEDED(m_result)) OleUninitialize();
  }
  OleScope(const OleScope&) = delete;
  OleScope& operator=(const OleScope&) = delete;

 private:
  const HRESULT m_result;
};

bool HasTemplate(HINSTANCE module, WORD id) {
  return FindResourceW(module, MAKEINTRESOURCEW(id), RT_DIALOG) != nullptr;
}

/// The top-level window that a dialog is to stand over; null for none.
HWND OwnerFor(HWND wanted) {
  const HWND window = wanted != nullptr ? wanted : GetActiveWindow();
  return window != nullptr ? GetAncestor(window, GA_ROOT) : nullptr;
}

bool IsDown(int key) { return GetKeyState(key) < 0; }

}  // namespace

ModalDialog* ModalDialog::Of(HWND dialog) {
  if (dialog == nullptr || GetWindowLongPtrW(dialog, DWLP_DLGPROC) !=
                               reinterpret_cast<LONG_PTR>(&ModalDialog::Procedure)) {
    return nullptr;
  }
  return reinterpret_cast<ModalDialog*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

INT_PTR ModalDialog::Run(WORD id, HWND owner, WideString* reason) {
  const OleScope ole;
  HINSTANCE resources = AfxGetResourceHandle();
  if (resources == nullptr || !HasTemplate(resources, id)) resources = GetModuleInstance();
  if (!HasTemplate(resources, id)) {
    *reason = L"there is no dialog template " + std::to_wstring(id);
    return -1;
  }

  m_owner = OwnerFor(owner);
  // A mouse button that is held in the owner would stay with it.
  if (const HWND captured = GetCapture()) SendMessageW(captured, WM_CANCELMODE, 0, 0);
  m_ownerDisabled = m_owner != nullptr && EnableWindow(m_owner, FALSE) == FALSE;
  const HWND window = CreateDialogParamW(resources, MAKEINTRESOURCEW(id), m_owner,
                                         &ModalDialog::Procedure, reinterpret_cast<LPARAM>(this));
  if (window == nullptr) {
    const DWORD error = GetLastError();
    ReleaseOwner();
    // Whether a template's window was refused by the system or its controls' were, no more is told.
    if (!m_created) {
      *reason = L"the system makes no window for it (error " + std::to_wstring(error) + L")";
      return -1;
    }
  }
  if (m_window != nullptr && !m_ended) {
    Centre();
    RECT client{};
    ::GetClientRect(m_window, &client);
    TellSize(SIZE_RESTORED, client.right, client.bottom);
  }
  if (m_window != nullptr && !m_ended) {
    ShowWindow(m_window, SW_SHOWNORMAL);
    UpdateWindow(m_window);
    Loop();
  }
  // The owner first: a window that goes hands the activity to its owner only if that can have it.
  ReleaseOwner();
  if (m_window != nullptr) DestroyWindow(m_window);
  return m_result;
}

void ModalDialog::End(INT_PTR result) {
  if (m_ended) return;
  m_ended = true;
  m_result = result;
  ReleaseOwner();
  ShowWindow(m_window, SW_HIDE);
  // The loop may be waiting for a message, this call having come in one that was sent to it.
  PostMessageW(m_window, WM_NULL, 0, 0);
}

HWND ModalDialog::CreateBrowser(const RECT& place, std::span<const ElementEvent> wanted,
                                BrowserEvents& events) {
  if (m_browser != nullptr) return nullptr;
  m_browser = BrowserControl::Create(m_window, kDocumentComplete, place, wanted, events);
  return m_browser != nullptr ? m_browser->GetWindow() : nullptr;
}

BrowserControl* ModalDialog::BrowserOf(HWND window) const {
  return m_browser != nullptr && m_browser->GetWindow() == window ? m_browser.get() : nullptr;
}

INT_PTR CALLBACK ModalDialog::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_INITDIALOG) {
    auto* created = reinterpret_cast<ModalDialog*>(second);
    SetWindowLongPtrW(window, DWLP_USER, second);
    created->m_window = window;
    created->m_created = true;
  }
  // Messages come before the first and after the last of its own.
  ModalDialog* dialog = Of(window);
  return dialog != nullptr ? dialog->Handle(message, first, second) : FALSE;
}

INT_PTR ModalDialog::Handle(UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_INITDIALOG:
      return Start();
    case WM_SIZE:
      TellSize(static_cast<UINT>(first), LOWORD(second), HIWORD(second));
      return TRUE;
    case WM_COMMAND:
      // A window that is disabled stands behind a message box, whatever is posted to it.
      if (HIWORD(first) == BN_CLICKED && !m_ended && IsWindowEnabled(m_window)) {
        m_events.OnDialogCommand(LOWORD(first));
      }
      return TRUE;
    case WM_ACTIVATE:
      if (m_browser != nullptr) m_browser->OnActivate(LOWORD(first) != WA_INACTIVE);
      return FALSE;
    case kDocumentComplete:
      if (m_browser != nullptr && !m_ended) m_browser->DeliverDocument();
      return TRUE;
    case WM_DESTROY:
      m_browser.reset();
      return FALSE;
    case WM_NCDESTROY:
      m_events.OnDialogDestroyed();
      SetWindowLongPtrW(m_window, DWLP_USER, 0);
      m_window = nullptr;
      m_ended = true;
      return FALSE;
    default:
      return FALSE;
  }
}

/// Over the owner, or on the display that it would come up on, and as far inside that as it goes.
void ModalDialog::Centre() const {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof(monitor);
  const HWND beside = m_owner != nullptr ? m_owner : m_window;
  if (!GetMonitorInfoW(MonitorFromWindow(beside, MONITOR_DEFAULTTONEAREST), &monitor)) return;
  RECT over = monitor.rcWork;
  if (m_owner != nullptr && IsWindowVisible(m_owner) && !IsIconic(m_owner)) {
    ::GetWindowRect(m_owner, &over);
  }
  RECT own{};
  ::GetWindowRect(m_window, &own);
  const LONG width = own.right - own.left;
  const LONG height = own.bottom - own.top;
  const LONG left =
      std::max(std::min((over.left + over.right - width) / 2, monitor.rcWork.right - width),
               monitor.rcWork.left);
  const LONG top =
      std::max(std::min((over.top + over.bottom - height) / 2, monitor.rcWork.bottom - height),
               monitor.rcWork.top);
  ::SetWindowPos(m_window, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

BOOL ModalDialog::Start() {
  const BOOL setFocus = m_events.OnDialogCreated(m_window);
  m_started = true;
  return setFocus;
}

/// The system may tell a size while the dialog is being made, and the same once more when it is
/// shown.
void ModalDialog::TellSize(UINT type, int width, int height) {
  if (!m_started || m_ended) return;
  if (m_sizeTold && m_sizeType == type && m_size.cx == width && m_size.cy == height) return;
  m_sizeTold = true;
  m_sizeType = type;
  m_size = {width, height};
  m_events.OnDialogSize(type, width, height);
}

void ModalDialog::Loop() {
  MSG message{};
  while (!m_ended) {
    const BOOL got = GetMessageW(&message, nullptr, 0, 0);
    if (got <= 0) {
      // The program is to end: its own loop has to see that, too.
      if (got == 0) PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    if (TranslateKeys(message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

bool ModalDialog::TranslateKeys(MSG& message) {
  const bool key = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
  if (key && m_browser != nullptr) {
    if (m_browser->HoldsFocus()) return TranslatePageKey(message);
    if (message.message == WM_KEYDOWN && message.wParam == VK_TAB && !IsDown(VK_CONTROL) &&
        GetNextDlgTabItem(m_window, GetFocus(), IsDown(VK_SHIFT)) == m_browser->GetWindow()) {
      m_browser->TakeFocus(message);
      return true;
    }
  }
  return IsDialogMessageW(m_window, &message) != FALSE;
}

bool ModalDialog::TranslatePageKey(MSG& message) {
  // A list of the page that is open holds the mouse, and has the keys for itself.
  const bool plain = message.message == WM_KEYDOWN && GetCapture() == nullptr;
  // Before the page sees them: Enter would send the form of the page.
  if (plain && message.wParam == VK_RETURN) {
    PostMessageW(m_window, WM_COMMAND, MAKEWPARAM(DefaultButton(), BN_CLICKED), 0);
    return true;
  }
  if (plain && message.wParam == VK_ESCAPE) {
    PostMessageW(m_window, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    return true;
  }
  if (m_browser->TranslateKey(message)) return true;
  if (plain && message.wParam == VK_TAB && !IsDown(VK_CONTROL)) {
    // Behind the page's last element, or before its first.
    const HWND next = GetNextDlgTabItem(m_window, m_browser->GetWindow(), IsDown(VK_SHIFT));
    SendMessageW(m_window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(next), TRUE);
    return true;
  }
  return false;
}

int ModalDialog::DefaultButton() const {
  const LRESULT found = SendMessageW(m_window, DM_GETDEFID, 0, 0);
  return HIWORD(found) == DC_HASDEFID ? LOWORD(found) : IDOK;
}

void ModalDialog::ReleaseOwner() {
  if (m_ownerDisabled) EnableWindow(m_owner, TRUE);
  m_ownerDisabled = false;
}

}  // namespace velandoc
