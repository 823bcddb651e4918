// CDialog, a modal dialog made of a template.
//
// An object is used on one thread. Nothing of it exists on the screen before DoModal or after it.
#pragma once

#include <exception>

#include "platform/mfc/exceptions.h"
#include "platform/mfc/wnd.h"

class CDialog : public CWnd, private velandoc::DialogEvents {
 public:
  static const CRuntimeClass classCDialog;

  /// Null for `parent` stands for the thread's active window.
  explicit CDialog(UINT nIDTemplate, CWnd* parent = nullptr);

  const CRuntimeClass* GetRuntimeClass() const override;

  /// Shows the dialog and blocks until it has ended: what EndDialog was given, or -1 if it could
  /// not be shown; the debugger is then told why, in one line. What one of the operations below
  /// raises ends the dialog and leaves here.
  virtual INT_PTR DoModal();
  void EndDialog(int result);

 protected:
  const AFX_MSGMAP* GetMessageMap() const override;
  /// The controls stand. Binds the members (UpdateData). TRUE has the system set the focus.
  virtual BOOL OnInitDialog();
  /// The default button: ends with IDOK.
  virtual void OnOK();
  /// The Cancel button, Escape or the close box: ends with IDCANCEL.
  virtual void OnCancel();
  /// The window is gone: forgets what belongs to it. Overriders call this one, too.
  virtual void OnDialogGone();

  /// Runs `operation`, called by the port. Of what it raises, a CException is dropped; anything
  /// else is kept for DoModal, and the dialog ends.
  template <class Operation>
  void Guard(Operation operation) noexcept {
    try {
      operation();
    } catch (CException* exception) {
      exception->Delete();
    } catch (...) {
      if (!m_raised) m_raised = std::current_exception();
      EndDialog(-1);
    }
  }

 private:
  BOOL OnDialogCreated(HWND dialog) noexcept override;
  void OnDialogSize(UINT type, int width, int height) noexcept override;
  void OnDialogCommand(int id) noexcept override;
  void OnDialogDestroyed() noexcept override;

  const UINT m_nIDTemplate;
  CWnd* const m_pParentWnd;
  std::exception_ptr m_raised;
};
