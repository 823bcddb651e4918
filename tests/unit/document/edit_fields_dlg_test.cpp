// The dialog over a scripted window system, files in memory and a scripted network: what the user
// does, what goes where.
#include "document/edit_fields_dlg.h"

#include <gmock/gmock.h>

#include "fields/form_generator.h"
#include "platform/shell.h"
#include "tests/support/field_text.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/scripted_dialog_host.h"
#include "tests/support/scripted_document.h"
#include "tests/support/scripted_error_services.h"
#include "tests/unit/document/client_fixture.h"

namespace velandoc {
namespace {

using ::testing::ElementsAre;
using testing::FieldTexts;
using ::testing::IsEmpty;
using testing::kService;
using testing::MemoryFileSystem;
using testing::PlayForm;
using testing::Printable;
using testing::ScriptedDialogHost;
using testing::ScriptedDocument;

/// Knows the browser's cache alone.
class CacheShell final : public Shell {
 public:
  int _wsplitpath_s(LPCWSTR, LPWSTR, std::size_t, LPWSTR, std::size_t, LPWSTR, std::size_t, LPWSTR,
                    std::size_t) override {
    return 0;
  }
  DWORD WNetGetConnectionW(LPCWSTR, LPWSTR, DWORD*) override { return 2250; }
  DWORD DavGetHTTPFromUNCPath(LPCWSTR, LPWSTR, DWORD*) override { return 87; }
  BOOL SHGetSpecialFolderPathW(HWND owner, LPWSTR path, int id, BOOL create) override {
    EXPECT_EQ(owner, nullptr);
    EXPECT_EQ(id, 0x20);
    EXPECT_EQ(create, FALSE);
    EXPECT_EQ(WideView(path), WideView()) << "the buffer is cleared";
    if (folder.empty()) return FALSE;
    *std::copy(folder.begin(), folder.end(), path) = 0;
    return TRUE;
  }
  WideString folder = OLESTR("cache");
};

std::string Utf16(const WideString& page) {
  return std::string("\xFF\xFE") +
         std::string(reinterpret_cast<const char*>(page.data()), page.size() * 2);
}

class EditFields : public testing::ClientTest {
 protected:
  EditFields() {
    m_files.expectedFolder = OLESTR("cache");
    m_files.expectedPrefix.reset();
    m_files.temporaryName = OLESTR("cache/1a2b.tmp");
    m_values = {{OLESTR("Title"), OLESTR("New")}, {OLESTR("Status"), OLESTR("Draft")}};
  }
  void OpenDocument() {
    ASSERT_TRUE(Open());
    m_platform.answers.clear();
    m_platform.bodies.clear();
    m_platform.calls.clear();
  }
  static testing::Answer Updated(const std::string& attributes) {
    return Xml(Envelope(std::string("<UpdateListItemsResponse xmlns='") + kService +
                        "'><UpdateListItemsResult><Results><Result ID='1,Update'>"
                        "<z:row xmlns:z='#RowsetSchema' " +
                        attributes +
                        "/></Result></Results></UpdateListItemsResult>"
                        "</UpdateListItemsResponse>"));
  }
  // EditFields with `user` at the dialog. The argument must stay as it was.
  void Edit(const std::function<void(ScriptedDialogHost&)>& user) {
    m_dialogs.user = user;
    m_dialogs.calls.clear();
    VARIANT_BOOL unfilled = 7;
    EXPECT_EQ(m_client->EditFields(&unfilled), S_OK);
    EXPECT_EQ(unfilled, 7);
  }
  // The page is loaded, and the user presses a button.
  std::function<void(ScriptedDialogHost&)> LoadAndClick(int id) {
    return [this, id](ScriptedDialogHost& dialog) {
      PlayForm(m_document, m_values);
      dialog.Complete(m_document);
      dialog.Click(id);
    };
  }
  std::size_t Updates() const { return m_platform.bodies.size(); }
  std::string LastCall() const { return m_dialogs.calls.back(); }

  CacheShell m_shell;
  MemoryFileSystem m_files;
  ScriptedDialogHost m_dialogs;
  testing::ScriptedErrorServices m_services;
  PortScope<Shell> m_shellScope{m_shell};
  PortScope<FileSystem> m_filesScope{m_files};
  PortScope<DialogHost> m_dialogsScope{m_dialogs};
  PortScope<ErrorServices> m_servicesScope{m_services};
  ScriptedDocument m_document;
  std::map<WideString, WideString> m_values;
};

// --- the class ---

TEST_F(EditFields, TheClassIsKnownByItsNameAtRunTime) {
  CEditFieldsDlg dialog(nullptr);
  std::string names;
  for (const CRuntimeClass* known = dialog.GetRuntimeClass(); known != nullptr;
       known = known->m_pBaseClass) {
    names += std::string(known->m_lpszClassName) + " ";
  }
  EXPECT_EQ(names, "CEditFieldsDlg CDHtmlDialog CDialog CWnd CCmdTarget ");
  EXPECT_TRUE(dialog.IsKindOf(CDHtmlDialog::classCDHtmlDialog));
  EXPECT_FALSE(dialog.IsKindOf(CButton::classCButton));
}

TEST_F(EditFields, TheDialogKeepsTheClientAlive) {
  CClient* const client = m_client.Get();
  client->AddRef();
  EXPECT_EQ(client->Release(), 1U);
  {
    const CEditFieldsDlg dialog(client);
    client->AddRef();
    EXPECT_EQ(client->Release(), 2U);
  }
  client->AddRef();
  EXPECT_EQ(client->Release(), 1U);
}

// --- one edit, from the beginning to the end ---

TEST_F(EditFields, OkWritesWhatThePageHolds) {
  OpenDocument();
  m_platform.answers = {Updated("ows_ID='7' ows_Title='New' ows_Status='Draft'")};
  Edit(LoadAndClick(IDOK));
  EXPECT_THAT(
      m_dialogs.calls,
      ElementsAre("DialogBoxParamW(201, null)", "GetDlgItem(dialog, 1)", "GetDlgItem(dialog, 2)",
                  "CreateBrowser(dialog, 0, 0, 600, 350) -600:ButtonOK -600:ButtonCancel",
                  "Navigate(browser)", "DefWindowProcW(dialog, 5, 0, 0x15e0258)",
                  "SetWindowPos(ok, null, 434, 316, 0, 0, 0x15)",
                  "SetWindowPos(cancel, null, 513, 316, 0, 0, 0x15)",
                  "MoveWindow(browser, 0, 0, 600, 306, 1)", "EndDialog(dialog, 1)"));
  EXPECT_THAT(m_document.script.calls,
              ElementsAre("GetFieldValue('Title', -1)", "GetFieldValue('Status', 0)"));
  ASSERT_EQ(Updates(), 1U);
  EXPECT_NE(m_platform.bodies[0].find("<Field Name=\"Title\">New</Field>"), std::string::npos);
  EXPECT_EQ(m_client->Fields().front().m_value, OLESTR("New"));
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(EditFields, ThePageIsAFileInTheBrowsersCacheAndStaysThere) {
  OpenDocument();
  const WideString page = m_client->BuildFieldsForm();
  Edit([&](ScriptedDialogHost& dialog) {
    EXPECT_EQ(Printable(dialog.url.c_str()), "file://cache/1a2b.htm");
    EXPECT_TRUE(m_files.files[OLESTR("cache/1a2b.htm")] == Utf16(page)) << "complete by then";
    dialog.Click(IDCANCEL);
  });
  EXPECT_EQ(m_files.files.size(), 2U);
  EXPECT_TRUE(m_files.files[OLESTR("cache/1a2b.htm")] == Utf16(page));
  EXPECT_EQ(m_files.files[OLESTR("cache/1a2b.tmp")], "");
}

TEST_F(EditFields, ASecondEditWritesASecondPairOfFiles) {
  OpenDocument();
  Edit(LoadAndClick(IDCANCEL));
  m_files.temporaryName = OLESTR("cache/3c4d.tmp");
  Edit(LoadAndClick(IDCANCEL));
  EXPECT_EQ(Printable(m_dialogs.url.c_str()), "file://cache/3c4d.htm");
  EXPECT_EQ(m_files.files.size(), 4U);
  EXPECT_EQ(m_dialogs.dialogs, 2);
}

TEST_F(EditFields, WithNoDocumentOpenTheFormIsEmpty) {
  Edit(LoadAndClick(IDOK));
  EXPECT_TRUE(m_files.files[OLESTR("cache/1a2b.htm")] == Utf16(BuildFieldsForm({})));
  EXPECT_EQ(LastCall(), "EndDialog(dialog, 1)");
  EXPECT_THAT(m_document.script.calls, IsEmpty());
}

TEST_F(EditFields, ANullArgumentIsAsGood) {
  m_dialogs.user = LoadAndClick(IDCANCEL);
  EXPECT_EQ(m_client->EditFields(nullptr), S_OK);
  EXPECT_EQ(m_dialogs.dialogs, 1);
}

// --- OK and Cancel ---

TEST_F(EditFields, CancelLeavesTheRecordsAndTheServerAlone) {
  OpenDocument();
  const std::string before = FieldTexts(m_client->Fields());
  Edit(LoadAndClick(IDCANCEL));
  EXPECT_EQ(LastCall(), "EndDialog(dialog, 2)");
  EXPECT_THAT(m_document.script.calls, IsEmpty());
  EXPECT_THAT(m_platform.calls, IsEmpty());
  EXPECT_EQ(FieldTexts(m_client->Fields()), before);
}

TEST_F(EditFields, OkWithAPageThatIsNotLoadedYetDoesNothing) {
  OpenDocument();
  Edit([this](ScriptedDialogHost& dialog) {
    dialog.Click(IDOK);
    dialog.Click(IDOK);
    EXPECT_FALSE(dialog.IsEnded());
    EXPECT_EQ(Updates(), 0U);
    m_platform.answers = {Updated("ows_ID='7'")};
    LoadAndClick(IDOK)(dialog);
    EXPECT_TRUE(dialog.IsEnded());
  });
  EXPECT_EQ(Updates(), 1U);
}

TEST_F(EditFields, AMissingRequiredValueKeepsTheDialogUntilItIsThere) {
  OpenDocument();
  m_values.erase(OLESTR("Title"));
  Edit([this](ScriptedDialogHost& dialog) {
    LoadAndClick(IDOK)(dialog);
    EXPECT_FALSE(dialog.IsEnded());
    EXPECT_EQ(Updates(), 0U);
    EXPECT_THAT(m_document.script.calls,
                ElementsAre("GetFieldValue('Title', -1)", "AlertRequired('Title')"));
    m_platform.answers = {Updated("ows_ID='7'")};
    m_values[OLESTR("Title")] = OLESTR("x");
    LoadAndClick(IDOK)(dialog);
    EXPECT_TRUE(dialog.IsEnded());
  });
  EXPECT_EQ(Updates(), 1U);
}

TEST_F(EditFields, ARefusedUpdateClosesTheDialogAndTheNextOneShowsTheOldValues) {
  OpenDocument();
  Edit([](ScriptedDialogHost& dialog) { dialog.Click(IDCANCEL); });
  const std::string page = m_files.files[OLESTR("cache/1a2b.htm")];
  const std::string before = FieldTexts(m_client->Fields());
  for (const Refusal& refusal : Refusals()) {
    m_platform.answers = {refusal.answer};
    Edit(LoadAndClick(IDOK));
    EXPECT_EQ(LastCall(), "EndDialog(dialog, 1)") << refusal.why;
    EXPECT_EQ(FieldTexts(m_client->Fields()), before) << refusal.why;
    Edit([](ScriptedDialogHost& dialog) { dialog.Click(IDCANCEL); });
    EXPECT_TRUE(m_files.files[OLESTR("cache/1a2b.htm")] == page) << refusal.why;
  }
}

TEST_F(EditFields, ABrowserThatCannotBeMadeLeavesADialogToCancel) {
  OpenDocument();
  m_dialogs.hasBrowser = false;
  Edit([](ScriptedDialogHost& dialog) {
    dialog.Click(IDOK);
    EXPECT_FALSE(dialog.IsEnded());
    dialog.Click(IDCANCEL);
  });
  EXPECT_THAT(m_dialogs.calls, ::testing::Not(::testing::Contains("Navigate(browser)")));
  EXPECT_THAT(m_dialogs.calls,
              ::testing::Not(::testing::Contains(::testing::StartsWith("MoveWindow"))));
  EXPECT_EQ(Updates(), 0U);
}

TEST_F(EditFields, APageWhoseScriptHasGoneSendsNothing) {
  OpenDocument();
  m_document.hasScript = false;
  Edit([this](ScriptedDialogHost& dialog) {
    LoadAndClick(IDOK)(dialog);
    EXPECT_FALSE(dialog.IsEnded());
    dialog.Click(IDCANCEL);
  });
  EXPECT_EQ(Updates(), 0U);
}

TEST_F(EditFields, AButtonOfThePageReadsAndWritesTwice) {
  OpenDocument();
  m_platform.answers = {Updated("ows_ID='7'"), Updated("ows_ID='7'")};
  Edit([this](ScriptedDialogHost& dialog) {
    PlayForm(m_document, m_values);
    dialog.Complete(m_document);
    dialog.ClickElement(OLESTR("ButtonNone"));
    EXPECT_EQ(Updates(), 0U);
    dialog.ClickElement(OLESTR("ButtonOK"));
  });
  EXPECT_EQ(Updates(), 2U);
  EXPECT_EQ(LastCall(), "EndDialog(dialog, 1)");

  Edit([](ScriptedDialogHost& dialog) { dialog.ClickElement(OLESTR("ButtonCancel")); });
  EXPECT_EQ(LastCall(), "EndDialog(dialog, 2)");
  EXPECT_EQ(Updates(), 2U);

  // With a value missing the second reading does not come.
  m_values.clear();
  Edit([this](ScriptedDialogHost& dialog) {
    PlayForm(m_document, m_values);
    dialog.Complete(m_document);
    m_document.script.calls.clear();
    dialog.ClickElement(OLESTR("ButtonOK"));
    EXPECT_FALSE(dialog.IsEnded());
    EXPECT_EQ(m_document.script.calls.size(), 2U);
    dialog.Click(IDCANCEL);
  });
}

// --- layout ---

TEST_F(EditFields, TheButtonsKeepTheirDistanceFromTheCorner) {
  Edit([](ScriptedDialogHost& dialog) {
    dialog.calls.clear();
    dialog.Size(SIZE_RESTORED, 700, 500);
    dialog.Size(SIZE_MINIMIZED, 0, 0);
    dialog.Click(IDCANCEL);
  });
  EXPECT_THAT(
      m_dialogs.calls,
      ElementsAre("DefWindowProcW(dialog, 5, 0, 0x1f402bc)",
                  "SetWindowPos(ok, null, 534, 466, 0, 0, 0x15)",
                  "SetWindowPos(cancel, null, 613, 466, 0, 0, 0x15)",
                  "MoveWindow(browser, 0, 0, 700, 456, 1)", "DefWindowProcW(dialog, 5, 1, 0x0)",
                  "SetWindowPos(ok, null, -166, -34, 0, 0, 0x15)",
                  "SetWindowPos(cancel, null, -87, -34, 0, 0, 0x15)",
                  "MoveWindow(browser, 0, 0, 0, -44, 1)", "EndDialog(dialog, 2)"));
}

/// What the dialog does with sizes when no layout has been measured, or the browser is a control of
/// the template.
class OpenedDlg final : public CDHtmlDialog {
 public:
  OpenedDlg() : CDHtmlDialog(201, 0) {}
};

TEST_F(EditFields, BeforeTheLayoutStandsThePageHasTheWholeArea) {
  // Where the page can't be written the dialog comes without having been laid out.
  m_files.failing = {"CreateFileExclusive"};
  Edit([](ScriptedDialogHost& dialog) { dialog.Click(IDCANCEL); });
  EXPECT_THAT(m_dialogs.calls,
              ElementsAre("DialogBoxParamW(201, null)", "DefWindowProcW(dialog, 5, 0, 0x15e0258)",
                          "EndDialog(dialog, 2)"));

  m_dialogs.calls.clear();
  m_dialogs.user = [](ScriptedDialogHost& dialog) { dialog.Click(IDCANCEL); };
  OpenedDlg other;
  EXPECT_EQ(other.DoModal(), IDCANCEL);
  EXPECT_THAT(m_dialogs.calls,
              ElementsAre("DialogBoxParamW(201, null)", "CreateBrowser(dialog, 0, 0, 600, 350)",
                          "DefWindowProcW(dialog, 5, 0, 0x15e0258)",
                          "MoveWindow(browser, 0, 0, 600, 350, 1)", "EndDialog(dialog, 2)"));
}

TEST_F(EditFields, ABrowserOfTheTemplateIsNotMoved) {
  CEditFieldsDlg dialog(m_client.Get());
  dialog.m_bAttachedControl = true;
  m_dialogs.user = [](ScriptedDialogHost& host) { host.Click(IDCANCEL); };
  EXPECT_EQ(dialog.DoModal(), IDCANCEL);
  EXPECT_THAT(m_dialogs.calls,
              ::testing::Not(::testing::Contains(::testing::StartsWith("MoveWindow"))));
}

TEST_F(EditFields, AResourcePageIsForgottenAndTheFileShown) {
  CEditFieldsDlg dialog(m_client.Get());
  EXPECT_EQ(dialog.m_nHtmlResID, 0U);
  dialog.m_nHtmlResID = 104;
  m_dialogs.user = [](ScriptedDialogHost& host) { host.Click(IDCANCEL); };
  dialog.DoModal();
  EXPECT_EQ(dialog.m_nHtmlResID, 0U);
  EXPECT_EQ(Printable(m_dialogs.url.c_str()), "file://cache/1a2b.htm");
  EXPECT_FALSE(dialog.m_spHtmlDoc) << "the document goes with the window";
  EXPECT_EQ(dialog.m_wndBrowser.m_hWnd, nullptr);
}

// --- what fails ---

TEST_F(EditFields, WithoutATemporaryNameThePageIsInTheCurrentFolder) {
  m_files.failing = {"GetTempFileNameW"};
  Edit([](ScriptedDialogHost& dialog) { dialog.Click(IDCANCEL); });
  EXPECT_EQ(Printable(m_dialogs.url.c_str()), "file://.htm");
  EXPECT_EQ(m_files.files.count(OLESTR(".htm")), 1U);
}

TEST_F(EditFields, WithoutACacheTheNameIsAskedForInAFolderWithoutAName) {
  m_shell.folder.clear();
  m_files.expectedFolder.clear();
  m_files.temporaryName = OLESTR("a.b/c.tmp");
  Edit([](ScriptedDialogHost& dialog) { dialog.Click(IDCANCEL); });
  EXPECT_EQ(Printable(m_dialogs.url.c_str()), "file://a.b/c.htm") << "cut at the last dot";
}

TEST_F(EditFields, APageThatCannotBeWrittenLeavesADialogToCancel) {
  OpenDocument();
  for (const char* operation : {"CreateFileExclusive", "WriteFile", "CloseHandle"}) {
    m_files.failing = {operation};
    Edit([](ScriptedDialogHost& dialog) {
      dialog.Click(IDOK);
      EXPECT_FALSE(dialog.IsEnded());
      dialog.Click(IDCANCEL);
    });
    EXPECT_THAT(m_dialogs.calls, ::testing::Not(::testing::Contains("Navigate(browser)")))
        << operation;
    EXPECT_EQ(Updates(), 0U) << operation;
  }
}

TEST_F(EditFields, WithoutAWindowNothingHappensAndTheDebuggerIsToldWhy) {
  OpenDocument();
  m_dialogs.refusal = OLESTR("there is no display");
  Edit(nullptr);
  EXPECT_THAT(m_dialogs.calls, ElementsAre("DialogBoxParamW(201, null)"));
  EXPECT_THAT(m_platform.calls, IsEmpty());
  EXPECT_TRUE(m_files.files.empty());
  EXPECT_THAT(m_services.lines, ElementsAre("Dialog not shown: there is no display"));
}

TEST_F(EditFields, WhatTheScriptsCallRaisesEndsTheDialogAndLeavesTheMethod) {
  OpenDocument();
  m_document.script.functions[OLESTR("GetFieldValue")] = [](const auto&, VARIANT*) -> HRESULT {
    _com_issue_error(E_OUTOFMEMORY);
    return S_OK;
  };
  m_dialogs.user = [this](ScriptedDialogHost& dialog) {
    dialog.Complete(m_document);
    dialog.Click(IDOK);
    EXPECT_TRUE(dialog.IsEnded());
  };
  EXPECT_EQ(testing::OutcomeOf([this] {
              m_client->EditFields(nullptr);
              return std::string("returned");
            }),
            "raised E_OUTOFMEMORY");
  EXPECT_EQ(LastCall(), "EndDialog(dialog, -1)");
  EXPECT_EQ(Updates(), 0U);
}

TEST_F(EditFields, TwoDialogsOneAfterTheOtherDoNotShareAPage) {
  OpenDocument();
  m_platform.answers = {Updated("ows_ID='7' ows_Title='New'")};
  Edit(LoadAndClick(IDOK));
  Edit([this](ScriptedDialogHost& dialog) {
    EXPECT_NE(m_files.files[OLESTR("cache/1a2b.htm")].find(Utf16(OLESTR("New")).substr(2)),
              std::string::npos)
        << "what the server took over is shown";
    dialog.Click(IDOK);
    EXPECT_FALSE(dialog.IsEnded()) << "the first page is not this one's";
    dialog.Click(IDCANCEL);
  });
  EXPECT_EQ(Updates(), 1U);
}

}  // namespace
}  // namespace velandoc
