// CEditFieldsDlg, the dialog in which the user fills in the document's fields.
//
// The page is the client's form, written to a file that the browser opens; the values come back by
// way of the page's script. The dialog lives on the stack of CClient::EditFields, on its thread.
#pragma once

#include "document/client.h"
#include "platform/mfc/dhtml_dialog.h"
#include "platform/owners.h"

namespace velandoc {

class CEditFieldsDlg final : public CDHtmlDialog {
 public:
  static const CRuntimeClass classCEditFieldsDlg;

  /// `client` is kept alive while the dialog lives. It is null only for who looks at the class and
  /// shows nothing.
  explicit CEditFieldsDlg(CClient* client);

  const CRuntimeClass* GetRuntimeClass() const override;
  ~CEditFieldsDlg() override = default;

  /// Writes the page to a new file in the browser's cache and makes it the start URL. The file, and
  /// the empty one from which it has its name, stay there for good: the browser may still look at
  /// the page when the dialog has gone, and who clears the cache clears them.
  ///
  /// No step is checked but the writing: without a name the file is ".htm" in the current folder,
  /// and where none can be made CFileException is raised.
  void WriteFormFile();

  // Clicks on elements of the page that have these names. The client's form has none; its buttons
  // are the dialog's own.

  /// S_OK. What OnOK does, with the update sent once more before: OnOK reads and sends for itself.
  HRESULT OnButtonOK();
  HRESULT OnButtonCancel();

 protected:
  const AFX_MSGMAP* GetMessageMap() const override;
  void DoDataExchange(CDataExchange* exchange) override;
  BOOL OnInitDialog() override;
  /// Sends what the page holds and ends the dialog, whatever the server says. If a required value
  /// is missing the page has said so and the dialog stays; if the page is not loaded it stays, too.
  void OnOK() override;
  std::span<const DHtmlEventMapEntry> GetDHtmlEventMap() override;
  /// Keeps the buttons' distance from the bottom right corner; the page has the room above them.
  void OnSize(UINT type, int cx, int cy);

 private:
  /// False if a required value is missing or the page is not loaded: then nothing is sent.
  bool ReadAndUpdate();
  POINT OffsetOf(const CWnd& button) const;

  const ComPtr<IClient> m_clientRef;
  CClient* const m_client;  // the same object
  CButton m_buttonOK;
  CButton m_buttonCancel;
  bool m_layoutReady = false;
  // From the client area's bottom right corner back to the button's top left one.
  POINT m_okOffset{};
  POINT m_cancelOffset{};
};

}  // namespace velandoc
