// CWnd, a window of the DialogHost port, as far as a dialog and its controls need one.
//
// An object does not own its window. It names one from the moment when a dialog has bound it (or,
// for the dialog, been created) until the dialog ends, and m_hWnd is null at other times; the
// operations then do nothing and leave what they should store as it was.
#pragma once

#include "platform/dialog_host.h"
#include "platform/mfc/cmd_target.h"

struct CDataExchange;

class CWnd : public CCmdTarget {
 public:
  static const CRuntimeClass classCWnd;

  const CRuntimeClass* GetRuntimeClass() const override;

  // The port's operations on this window, in pixels (platform/dialog_host.h).

  BOOL GetClientRect(RECT* rect) const;
  BOOL GetWindowRect(RECT* rect) const;
  BOOL ScreenToClient(RECT* rect) const;
  /// `insertAfter` is null for none.
  BOOL SetWindowPos(const CWnd* insertAfter, int x, int y, int width, int height, UINT flags);
  BOOL MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE);

  HWND m_hWnd = nullptr;

 protected:
  const AFX_MSGMAP* GetMessageMap() const override;
  /// Binds members to controls, or moves values; called by UpdateData.
  virtual void DoDataExchange(CDataExchange* exchange);
  /// FALSE fills the window from the members, TRUE the members from the window.
  BOOL UpdateData(BOOL saveAndValidate);
  /// WM_SIZE: hands the message to the system's own procedure.
  void OnSize(UINT type, int cx, int cy);
  /// Calls the handler that the message map has for WM_SIZE, the nearest class first; without one,
  /// the system's own procedure.
  void DispatchSize(UINT type, int cx, int cy);
};

class CButton : public CWnd {
 public:
  static const CRuntimeClass classCButton;

  const CRuntimeClass* GetRuntimeClass() const override;
};

struct CDataExchange {
  CWnd* m_pDlgWnd;
  BOOL m_bSaveAndValidate;
};

/// Binds `control` to the control `id` of the dialog: m_hWnd, null if there is none. Once bound it
/// stays so.
void DDX_Control(CDataExchange* exchange, int id, CWnd& control);
