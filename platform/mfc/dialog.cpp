#include "platform/mfc/dialog.h"

#include <utility>

#include "platform/error_services.h"

using velandoc::CurrentPort;
using velandoc::DialogHost;
using velandoc::ErrorServices;
using velandoc::WideString;

const CRuntimeClass CDialog::classCDialog = {"CDialog", &CWnd::classCWnd};

CDialog::CDialog(UINT nIDTemplate, CWnd* parent)
    : m_nIDTemplate(nIDTemplate), m_pParentWnd(parent) {}

const CRuntimeClass* CDialog::GetRuntimeClass() const { return &classCDialog; }

INT_PTR CDialog::DoModal() {
  WideString reason;
  const INT_PTR result = CurrentPort<DialogHost>().DialogBoxParamW(
      static_cast<WORD>(m_nIDTemplate), m_pParentWnd != nullptr ? m_pParentWnd->m_hWnd : nullptr,
      *this, &reason);
  if (m_raised) std::rethrow_exception(std::exchange(m_raised, nullptr));
  if (result == -1 && !reason.empty()) {
    const WideString line = OLESTR("Dialog not shown: ") + reason;
    CurrentPort<ErrorServices>().OutputDebugStringW(line.c_str());
  }
  return result;
}

void CDialog::EndDialog(int result) {
  if (m_hWnd != nullptr) CurrentPort<DialogHost>().EndDialog(m_hWnd, result);
}

const AFX_MSGMAP* CDialog::GetMessageMap() const { return CWnd::GetMessageMap(); }

BOOL CDialog::OnInitDialog() {
  UpdateData(FALSE);
  return TRUE;
}

void CDialog::OnOK() { EndDialog(IDOK); }

void CDialog::OnCancel() { EndDialog(IDCANCEL); }

void CDialog::OnDialogGone() { m_hWnd = nullptr; }

BOOL CDialog::OnDialogCreated(HWND dialog) noexcept {
  m_hWnd = dialog;
  BOOL setFocus = TRUE;
  Guard([&] { setFocus = OnInitDialog(); });
  return setFocus;
}

void CDialog::OnDialogSize(UINT type, int width, int height) noexcept {
  Guard([&] { DispatchSize(type, width, height); });
}

void CDialog::OnDialogCommand(int id) noexcept {
  Guard([&] {
    if (id == IDOK) OnOK();
    if (id == IDCANCEL) OnCancel();
  });
}

void CDialog::OnDialogDestroyed() noexcept {
  Guard([&] { OnDialogGone(); });
}
