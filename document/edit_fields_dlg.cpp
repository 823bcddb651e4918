#include "document/edit_fields_dlg.h"

#include <array>

#include "platform/file_system.h"
#include "platform/mfc/file.h"
#include "platform/shell.h"
#include "resources/edit_fields_dialog.h"

namespace velandoc {
namespace {

constexpr std::size_t kPathCapacity = 260;
constexpr OLECHAR kByteOrderMark = 0xFEFF;
/// Pixels between the page and the OK button.
constexpr int kPageMargin = 10;
constexpr UINT kMoveOnly = SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;

/// An empty file's name in the browser's cache, with another ending.
WideString NewFormName() {
  std::array<OLECHAR, kPathCapacity> folder{};
  CurrentPort<Shell>().SHGetSpecialFolderPathW(nullptr, folder.data(), CSIDL_INTERNET_CACHE, FALSE);
  std::array<OLECHAR, kPathCapacity> made{};
  CurrentPort<FileSystem>().GetTempFileNameW(folder.data(), nullptr, made.data());
  WideString name = made.data();
  const std::size_t dot = name.rfind(OLESTR('.'));
  name.resize(dot != WideString::npos ? dot : 0);
  return name.append(OLESTR(".htm"));
}

}  // namespace

const CRuntimeClass CEditFieldsDlg::classCEditFieldsDlg = {"CEditFieldsDlg",
                                                           &CDHtmlDialog::classCDHtmlDialog};

CEditFieldsDlg::CEditFieldsDlg(CClient* client)
    : CDHtmlDialog(EDIT_FIELDS_ID, 0), m_clientRef(client), m_client(client) {}

const CRuntimeClass* CEditFieldsDlg::GetRuntimeClass() const { return &classCEditFieldsDlg; }

const AFX_MSGMAP* CEditFieldsDlg::GetMessageMap() const {
  static const AFX_MSGMAP_ENTRY entries[] = {
      {WM_SIZE, static_cast<AFX_PMSG>(&CEditFieldsDlg::OnSize)}};
  static const AFX_MSGMAP map = {CDHtmlDialog::GetMessageMap(), entries};
  return &map;
}

std::span<const DHtmlEventMapEntry> CEditFieldsDlg::GetDHtmlEventMap() {
  static const DHtmlEventMapEntry entries[] = {
      {DHTMLEVENTMAPENTRY_NAME, DISPID_CLICK, OLESTR("ButtonOK"),
       [](CDHtmlEventSink& sink) { return static_cast<CEditFieldsDlg&>(sink).OnButtonOK(); }},
      {DHTMLEVENTMAPENTRY_NAME, DISPID_CLICK, OLESTR("ButtonCancel"),
       [](CDHtmlEventSink& sink) { return static_cast<CEditFieldsDlg&>(sink).OnButtonCancel(); }},
  };
  return entries;
}

void CEditFieldsDlg::DoDataExchange(CDataExchange* exchange) {
  CDHtmlDialog::DoDataExchange(exchange);
  DDX_Control(exchange, IDOK, m_buttonOK);
  DDX_Control(exchange, IDCANCEL, m_buttonCancel);
}

BOOL CEditFieldsDlg::OnInitDialog() {
  WriteFormFile();
  m_nHtmlResID = 0;  // or the start URL would not count
  CDHtmlDialog::OnInitDialog();
  m_layoutReady = true;
  m_okOffset = OffsetOf(m_buttonOK);
  m_cancelOffset = OffsetOf(m_buttonCancel);
  return TRUE;
}

POINT CEditFieldsDlg::OffsetOf(const CWnd& button) const {
  RECT client{};
  GetClientRect(&client);
  RECT place{};
  button.GetWindowRect(&place);
  ScreenToClient(&place);
  return {client.right - place.left, client.bottom - place.top};
}

void CEditFieldsDlg::WriteFormFile() {
  const WideString name = NewFormName();
  CFile file;
  file.Open(name.c_str(), CFile::modeCreate | CFile::modeReadWrite | CFile::shareExclusive);
  // In this machine's order of bytes, which is little-endian in both homes.
  file.Write(&kByteOrderMark, sizeof(kByteOrderMark));
  const WideString page = m_client->BuildFieldsForm();
  file.Write(page.data(), static_cast<UINT>(page.size() * sizeof(OLECHAR)));
  m_strCurrentUrl = OLESTR("file://") + name;
  file.Close();
}

void CEditFieldsDlg::OnSize(UINT type, int cx, int cy) {
  if (!m_layoutReady) {
    CDHtmlDialog::OnSize(type, cx, cy);
    return;
  }
  // Not the base's, which would give the page the whole area.
  CWnd::OnSize(type, cx, cy);
  m_buttonOK.SetWindowPos(nullptr, cx - m_okOffset.x, cy - m_okOffset.y, 0, 0, kMoveOnly);
  m_buttonCancel.SetWindowPos(nullptr, cx - m_cancelOffset.x, cy - m_cancelOffset.y, 0, 0,
                              kMoveOnly);
  if (!m_bAttachedControl && m_wndBrowser.m_hWnd != nullptr) {
    m_wndBrowser.MoveWindow(0, 0, cx, cy - m_okOffset.y - kPageMargin);
  }
}

bool CEditFieldsDlg::ReadAndUpdate() {
  std::list<WideString> values;
  if (!m_client->ReadFormValues(m_spHtmlDoc.Get(), values)) return false;
  m_client->UpdateFields(values);
  return true;
}

void CEditFieldsDlg::OnOK() {
  // A refused update ends the dialog like any other.
  if (ReadAndUpdate()) EndDialog(IDOK);
}

HRESULT CEditFieldsDlg::OnButtonOK() {
  if (ReadAndUpdate()) OnOK();
  return S_OK;
}

HRESULT CEditFieldsDlg::OnButtonCancel() {
  OnCancel();
  return S_OK;
}

}  // namespace velandoc
