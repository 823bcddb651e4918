#include "platform/mfc/dhtml_dialog.h"

using velandoc::CurrentPort;
using velandoc::DialogHost;
using velandoc::ElementEvent;
using velandoc::ViewOf;

const CRuntimeClass CDHtmlDialog::classCDHtmlDialog = {"CDHtmlDialog", &CDialog::classCDialog};

std::span<const DHtmlEventMapEntry> CDHtmlEventSink::GetDHtmlEventMap() { return {}; }

CDHtmlDialog::CDHtmlDialog(UINT nIDTemplate, UINT nHtmlResID, CWnd* parent)
    : CDialog(nIDTemplate, parent), m_nHtmlResID(nHtmlResID) {}

const CRuntimeClass* CDHtmlDialog::GetRuntimeClass() const { return &classCDHtmlDialog; }

const AFX_MSGMAP* CDHtmlDialog::GetMessageMap() const {
  static const AFX_MSGMAP_ENTRY entries[] = {
      {WM_SIZE, static_cast<AFX_PMSG>(&CDHtmlDialog::OnSize)}};
  static const AFX_MSGMAP map = {CDialog::GetMessageMap(), entries};
  return &map;
}

BOOL CDHtmlDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  RECT client{};
  GetClientRect(&client);
  m_wanted.clear();
  for (const DHtmlEventMapEntry& entry : GetDHtmlEventMap()) {
    m_wanted.push_back({entry.dispId, entry.szName});
  }
  DialogHost& host = CurrentPort<DialogHost>();
  m_wndBrowser.m_hWnd = host.CreateBrowser(m_hWnd, client, m_wanted, *this);
  if (m_wndBrowser.m_hWnd != nullptr && m_nHtmlResID == 0 && !m_strCurrentUrl.empty()) {
    host.Navigate(m_wndBrowser.m_hWnd, m_strCurrentUrl.c_str());
  }
  return TRUE;
}

void CDHtmlDialog::OnDialogGone() {
  m_spHtmlDoc.Reset();
  m_wndBrowser.m_hWnd = nullptr;
  CDialog::OnDialogGone();
}

void CDHtmlDialog::OnSize(UINT type, int cx, int cy) {
  CWnd::OnSize(type, cx, cy);
  if (!m_bAttachedControl && m_wndBrowser.m_hWnd != nullptr) m_wndBrowser.MoveWindow(0, 0, cx, cy);
}

void CDHtmlDialog::OnDocumentComplete(IHTMLDocument2* document) noexcept {
  Guard([&] { m_spHtmlDoc = document; });
}

void CDHtmlDialog::OnElementEvent(const ElementEvent& event) noexcept {
  Guard([&] {
    for (const DHtmlEventMapEntry& entry : GetDHtmlEventMap()) {
      if (entry.dispId != event.event || ViewOf(entry.szName) != ViewOf(event.element)) continue;
      static_cast<void>(entry.pfnEventFunc(*this));
      return;
    }
  });
}
