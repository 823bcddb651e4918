#include "platform/mfc/wnd.h"

using velandoc::CurrentPort;
using velandoc::DialogHost;

const CRuntimeClass CWnd::classCWnd = {"CWnd", &CCmdTarget::classCCmdTarget};
const CRuntimeClass CButton::classCButton = {"CButton", &CWnd::classCWnd};

const CRuntimeClass* CWnd::GetRuntimeClass() const { return &classCWnd; }
const CRuntimeClass* CButton::GetRuntimeClass() const { return &classCButton; }

BOOL CWnd::GetClientRect(RECT* rect) const {
  if (m_hWnd == nullptr) return FALSE;
  return CurrentPort<DialogHost>().GetClientRect(m_hWnd, rect);
}

BOOL CWnd::GetWindowRect(RECT* rect) const {
  if (m_hWnd == nullptr) return FALSE;
  return CurrentPort<DialogHost>().GetWindowRect(m_hWnd, rect);
}

BOOL CWnd::ScreenToClient(RECT* rect) const {
  if (m_hWnd == nullptr) return FALSE;
  return CurrentPort<DialogHost>().ScreenToClient(m_hWnd, rect);
}

BOOL CWnd::SetWindowPos(const CWnd* insertAfter, int x, int y, int width, int height, UINT flags) {
  if (m_hWnd == nullptr) return FALSE;
  const HWND after = insertAfter != nullptr ? insertAfter->m_hWnd : nullptr;
  return CurrentPort<DialogHost>().SetWindowPos(m_hWnd, after, x, y, width, height, flags);
}

BOOL CWnd::MoveWindow(int x, int y, int width, int height, BOOL repaint) {
  if (m_hWnd == nullptr) return FALSE;
  return CurrentPort<DialogHost>().MoveWindow(m_hWnd, x, y, width, height, repaint);
}

const AFX_MSGMAP* CWnd::GetMessageMap() const {
  static constexpr AFX_MSGMAP kEmpty{};
  return &kEmpty;
}

void CWnd::DoDataExchange(CDataExchange*) {}

BOOL CWnd::UpdateData(BOOL saveAndValidate) {
  CDataExchange exchange{this, saveAndValidate};
  DoDataExchange(&exchange);
  return TRUE;
}

void CWnd::OnSize(UINT type, int cx, int cy) {
  if (m_hWnd == nullptr) return;
  const auto size = static_cast<LPARAM>(((static_cast<DWORD>(cy) & 0xFFFFU) << 16) |
                                        (static_cast<DWORD>(cx) & 0xFFFFU));
  CurrentPort<DialogHost>().DefWindowProcW(m_hWnd, WM_SIZE, type, size);
}

void CWnd::DispatchSize(UINT type, int cx, int cy) {
  for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr; map = map->base) {
    for (const AFX_MSGMAP_ENTRY& entry : map->entries) {
      if (entry.nMessage == WM_SIZE) return (this->*entry.pfn)(type, cx, cy);
    }
  }
  CWnd::OnSize(type, cx, cy);
}

void DDX_Control(CDataExchange* exchange, int id, CWnd& control) {
  if (control.m_hWnd != nullptr) return;
  control.m_hWnd = CurrentPort<DialogHost>().GetDlgItem(exchange->m_pDlgWnd->m_hWnd, id);
}
