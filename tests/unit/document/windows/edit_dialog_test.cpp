// CClient::EditFields with the system's own dialog, its browser control and real files. The page
// in the control is played (played_page.h): its script is the real one, in the system's JScript.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "document/client.h"
#include "host/velandoc_module.h"
#include "tests/support/field_text.h"
#include "tests/unit/document/client_fixture.h"
#include "tests/unit/document/windows/played_page.h"
#include "tests/unit/platform/windows/dialog_steps.h"
// Behind com.h, which includes windows.h.
#include <shlobj.h>

namespace velandoc {
namespace {

using test::DialogSteps;
using test::PressKey;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::kService;
using ::testing::SizeIs;

void Press(HWND dialog, int id) { PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0); }

/// The browser's cache, where the pages are left.
std::set<std::filesystem::path> CacheFiles() {
  wchar_t folder[MAX_PATH] = {};
  EXPECT_TRUE(SHGetSpecialFolderPathW(nullptr, folder, CSIDL_INTERNET_CACHE, FALSE));
  std::set<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_regular_file()) files.insert(entry.path());
  }
  return files;
}

class EditDialog : public testing::ClientTest {
 protected:
  EditDialog() : m_before(CacheFiles()) {
    m_site.contentType = testing::ContentTypeAnswer(
        "<Field Name='Title' DisplayName='Title of it' Type='Text' Required='TRUE' "
        "SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'/>"
        "<Field Name='Status' Type='Choice' "
        "SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'><CHOICES><CHOICE>Draft</CHOICE>"
        "<CHOICE>Final</CHOICE></CHOICES></Field>"
        "<Field Name='Tags' Type='MultiChoice' "
        "SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'><CHOICES><CHOICE>A</CHOICE>"
        "<CHOICE>B</CHOICE><CHOICE>C</CHOICE></CHOICES></Field>");
    m_site.row =
        testing::RowAnswer("ows_ID='7' ows_Title='Plan' ows_Status='Final' ows_Tags=';#A;#C;#'");
  }
  ~EditDialog() override {
    // The product leaves its files; a test does not.
    for (const auto& file : NewFiles()) std::filesystem::remove(file);
  }
  EditDialog(const EditDialog&) = delete;
  EditDialog& operator=(const EditDialog&) = delete;

  std::set<std::filesystem::path> NewFiles() const {
    std::set<std::filesystem::path> files = CacheFiles();
    for (const auto& known : m_before) files.erase(known);
    return files;
  }
  void OpenDocument() {
    ASSERT_TRUE(Open());
    m_platform.answers.clear();
    m_platform.bodies.clear();
  }
  static testing::Answer Updated(const std::string& attributes) {
    return testing::Answer{
        .chunks = {"<soap:Envelope xmlns:soap='http://schemas.xmlsoap.org/soap/envelope/'>"
                   "<soap:Body><UpdateListItemsResponse xmlns='" +
                   std::string(kService) +
                   "'><UpdateListItemsResult><Results><Result ID='1,Update'>"
                   "<z:row xmlns:z='#RowsetSchema' " +
                   attributes +
                   "/></Result></Results></UpdateListItemsResult></UpdateListItemsResponse>"
                   "</soap:Body></soap:Envelope>"}};
  }
  void Edit(std::vector<DialogSteps::Step> steps) {
    const LONG locks = Module().GetLockCount();
    {
      DialogSteps driver(std::move(steps));
      VARIANT_BOOL unfilled = 7;
      EXPECT_EQ(m_client->EditFields(&unfilled), S_OK);
      EXPECT_EQ(unfilled, 7);
    }
    EXPECT_EQ(DialogSteps::FindDialog(), nullptr);
    EXPECT_EQ(Module().GetLockCount(), locks) << "the control still holds the dialog's objects";
  }
  std::size_t Updates() const { return m_platform.bodies.size(); }

  testing::PlayedPage m_page;

 private:
  const std::set<std::filesystem::path> m_before;
};

const DialogSteps::Step kOk = [](HWND dialog) { Press(dialog, IDOK); };
const DialogSteps::Step kCancel = [](HWND dialog) { Press(dialog, IDCANCEL); };

// --- one edit
// -------------------------------------------------------------------------------------

TEST_F(EditDialog, OkSendsWhatTheUserEntered) {
  OpenDocument();
  m_platform.answers = {Updated("ows_ID='7' ows_Title='New' ows_Status='Draft' ows_Tags='A;#B'")};
  Edit({[this](HWND) {
          EXPECT_EQ(m_page.Evaluate("elements.Title[0].value"), "Plan");
          EXPECT_EQ(m_page.Evaluate("elements.Status[0].value"), "Final");
          m_page.Enter("Title", "New");
          m_page.Enter("Status", "Draft");
          m_page.Tick("Tags", 1, true);
          m_page.Tick("Tags", 2, false);
        },
        kOk});
  ASSERT_EQ(Updates(), 1U);
  for (const char* field :
       {"<Field Name=\"Title\">New</Field>", "<Field Name=\"Status\">Draft</Field>",
        "<Field Name=\"Tags\">A;#B</Field>"}) {
    EXPECT_THAT(m_platform.bodies[0], HasSubstr(field));
  }
  EXPECT_EQ(m_client->Fields().front().m_value, L"New");
  EXPECT_EQ(m_page.Alerts(), "");
}

TEST_F(EditDialog, ThePageIsAFileInTheBrowsersCacheAndStaysThere) {
  OpenDocument();
  Edit({kCancel});
  const auto files = NewFiles();
  ASSERT_THAT(files, SizeIs(2));
  const auto& page = *files.begin();
  const auto& empty = *files.rbegin();
  EXPECT_EQ(page.extension(), ".htm");
  EXPECT_EQ(empty.extension(), ".tmp");
  EXPECT_EQ(page.stem(), empty.stem());
  EXPECT_EQ(std::filesystem::file_size(empty), 0U);
  EXPECT_EQ(std::filesystem::file_size(page), 2 + 2 * m_client->BuildFieldsForm().size());
  ASSERT_THAT(m_page.Urls(), SizeIs(1));
  EXPECT_THAT(m_page.Urls()[0], ::testing::EndsWith(page.filename().wstring()));
}

TEST_F(EditDialog, ASecondEditWritesASecondPairOfFiles) {
  OpenDocument();
  Edit({kCancel});
  Edit({kCancel});
  EXPECT_THAT(NewFiles(), SizeIs(4));
  ASSERT_THAT(m_page.Urls(), SizeIs(2));
  EXPECT_NE(m_page.Urls()[0], m_page.Urls()[1]);
}

TEST_F(EditDialog, WithNoDocumentOpenTheFormIsEmpty) {
  Edit({[this](HWND) { EXPECT_EQ(m_page.Evaluate("typeof GetFieldValue"), "function"); }, kOk});
  EXPECT_THAT(m_client->Fields(), IsEmpty());
  EXPECT_EQ(m_page.Evaluate("elements.Title"), "undefined");
}

// --- what keeps the dialog open
// -------------------------------------------------------------------

TEST_F(EditDialog, ARequiredValueThatIsMissingIsToldAndTheDialogStays) {
  OpenDocument();
  m_platform.answers = {Updated("ows_ID='7' ows_Title='Now'")};
  Edit({[this](HWND) { m_page.Enter("Title", ""); }, kOk,
        [this](HWND dialog) {
          EXPECT_TRUE(IsWindowVisible(dialog));
          EXPECT_EQ(m_page.Alerts(), "Required property: undefined");
          EXPECT_EQ(Updates(), 0U);
          m_page.Enter("Title", "Now");
        },
        kOk});
  EXPECT_EQ(Updates(), 1U);
}

TEST_F(EditDialog, ARequiredChoiceOnSelectIsMissing) {
  m_site.contentType = testing::ContentTypeAnswer(
      "<Field Name='Status' Type='Choice' Required='TRUE' "
      "SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'><CHOICES>"
      "<CHOICE>Draft</CHOICE></CHOICES></Field>");
  m_site.row = testing::RowAnswer("ows_ID='7'");
  OpenDocument();
  Edit(
      {kOk, [this](HWND) { EXPECT_EQ(m_page.Alerts(), "Required property: undefined"); }, kCancel});
  EXPECT_EQ(Updates(), 0U);
}

TEST_F(EditDialog, ARequiredGroupWithNothingTickedIsMissing) {
  m_site.contentType = testing::ContentTypeAnswer(
      "<Field Name='Tags' Type='MultiChoice' Required='TRUE' "
      "SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'><CHOICES>"
      "<CHOICE>A</CHOICE><CHOICE>B</CHOICE></CHOICES></Field>");
  m_site.row = testing::RowAnswer("ows_ID='7'");
  OpenDocument();
  Edit(
      {kOk, [this](HWND) { EXPECT_EQ(m_page.Alerts(), "Required property: undefined"); }, kCancel});
  EXPECT_EQ(Updates(), 0U);
}

TEST_F(EditDialog, AGroupOfOneBoxIsSentThoughItIsNotTicked) {
  m_site.contentType = testing::ContentTypeAnswer(
      "<Field Name='Tags' Type='MultiChoice' "
      "SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'><CHOICES>"
      "<CHOICE>Only</CHOICE></CHOICES></Field>");
  m_site.row = testing::RowAnswer("ows_ID='7'");
  OpenDocument();
  m_platform.answers = {Updated("ows_ID='7' ows_Tags='Only'")};
  Edit({[this](HWND) { EXPECT_EQ(m_page.Evaluate("elements.Tags[0].checked"), "false"); }, kOk});
  ASSERT_EQ(Updates(), 1U);
  EXPECT_THAT(m_platform.bodies[0], HasSubstr("<Field Name=\"Tags\">Only</Field>"));
}

TEST_F(EditDialog, OkBeforeThePageIsThereDoesNothing) {
  OpenDocument();
  m_page.SetCompletes(false);
  Edit({kOk, kOk,
        [this](HWND dialog) {
          EXPECT_TRUE(IsWindowVisible(dialog));
          EXPECT_EQ(Updates(), 0U);
        },
        kCancel});
}

// --- Cancel, and a server that refuses
// ------------------------------------------------------------

TEST_F(EditDialog, CancelLeavesTheRecordsAndTheServerAlone) {
  OpenDocument();
  const std::string before = testing::FieldTexts(m_client->Fields());
  const std::vector<DialogSteps::Step> ways = {
      kCancel, [](HWND) { PressKey(VK_ESCAPE); },
      [](HWND dialog) { PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); }};
  for (const DialogSteps::Step& way : ways) {
    Edit({[this](HWND) { m_page.Enter("Title", "Lost"); }, way});
  }
  EXPECT_EQ(Updates(), 0U);
  EXPECT_EQ(testing::FieldTexts(m_client->Fields()), before);
}

TEST_F(EditDialog, ARefusedUpdateEndsTheDialogAndTheNextShowsTheOldValues) {
  OpenDocument();
  m_platform.answers = {testing::Answer{.status = L"500"}};
  Edit({[this](HWND) { m_page.Enter("Title", "Refused"); }, kOk});
  EXPECT_EQ(Updates(), 1U);
  Edit({[this](HWND) { EXPECT_EQ(m_page.Evaluate("elements.Title[0].value"), "Plan"); }, kCancel});
}

TEST_F(EditDialog, AnUpdateThatWasTakenIsShownByTheNext) {
  OpenDocument();
  m_platform.answers = {Updated("ows_ID='7' ows_Title='Served'")};
  Edit({kOk});
  Edit(
      {[this](HWND) { EXPECT_EQ(m_page.Evaluate("elements.Title[0].value"), "Served"); }, kCancel});
}

// --- the keyboard
// ---------------------------------------------------------------------------------

TEST_F(EditDialog, EnterInThePageIsOk) {
  OpenDocument();
  m_platform.answers = {Updated("ows_ID='7'")};
  Edit({[](HWND) { PressKey(VK_RETURN); }});
  EXPECT_EQ(Updates(), 1U);
  EXPECT_THAT(m_page.Keys(), IsEmpty()) << "the page would send its form";
}

TEST_F(EditDialog, TabPassesThroughThePagesFieldsAndLeavesBehindTheLast) {
  OpenDocument();
  m_page.SetFields(2);
  const auto focusIsOk = [](HWND dialog) { return GetFocus() == GetDlgItem(dialog, IDOK); };
  const auto tab = [&](HWND dialog) {
    EXPECT_FALSE(focusIsOk(dialog));
    PressKey(VK_TAB);
  };
  Edit({tab, tab, tab, [&](HWND dialog) {
          EXPECT_TRUE(focusIsOk(dialog));
          Press(dialog, IDCANCEL);
        }});
  EXPECT_THAT(m_page.Keys(), ElementsAre(VK_TAB, VK_TAB, VK_TAB));
}

TEST_F(EditDialog, LettersAreOfferedToThePage) {
  OpenDocument();
  Edit({[](HWND) { PressKey('A'); }, kCancel});
  EXPECT_THAT(m_page.Keys(), ElementsAre('A'));
}

// --- layout
// ---------------------------------------------------------------------------------------

struct Layout {
  RECT client{};
  RECT ok{};
  RECT cancel{};
  RECT browser{};
};

Layout Measure(HWND dialog) {
  Layout found;
  GetClientRect(dialog, &found.client);
  const auto place = [dialog](HWND window, RECT& rect) {
    GetWindowRect(window, &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
  };
  place(GetDlgItem(dialog, IDOK), found.ok);
  place(GetDlgItem(dialog, IDCANCEL), found.cancel);
  place(FindWindowExW(dialog, nullptr, L"Shell Embedding", nullptr), found.browser);
  return found;
}

TEST_F(EditDialog, ThePageHasTheRoomAboveTheButtonsAndTheyKeepTheirDistance) {
  std::vector<Layout> layouts;
  std::vector<DialogSteps::Step> steps;
  const auto measure = [&](HWND dialog) { layouts.push_back(Measure(dialog)); };
  steps.emplace_back(measure);
  for (const SIZE size : {SIZE{900, 700}, SIZE{500, 300}, SIZE{640, 480}}) {
    steps.emplace_back([size](HWND dialog) {
      SetWindowPos(dialog, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
    });
    steps.emplace_back(measure);
  }
  steps.push_back(kCancel);
  Edit(steps);
  ASSERT_THAT(layouts, SizeIs(4));
  const Layout& first = layouts.front();
  for (const Layout& found : layouts) {
    EXPECT_EQ(found.client.right - found.ok.left, first.client.right - first.ok.left);
    EXPECT_EQ(found.client.bottom - found.ok.top, first.client.bottom - first.ok.top);
    EXPECT_EQ(found.client.right - found.cancel.left, first.client.right - first.cancel.left);
    EXPECT_EQ(found.client.bottom - found.cancel.top, first.client.bottom - first.cancel.top);
    EXPECT_EQ(found.ok.right - found.ok.left, first.ok.right - first.ok.left);
    EXPECT_EQ(found.browser.left, 0);
    EXPECT_EQ(found.browser.top, 0);
    EXPECT_EQ(found.browser.right, found.client.right);
    EXPECT_EQ(found.browser.bottom, found.ok.top - 10);
  }
  EXPECT_NE(layouts[1].client.right, layouts[2].client.right);
}

TEST_F(EditDialog, AMinimizedDialogComesBackAsItWas) {
  Layout before;
  Layout after;
  Edit({[&](HWND dialog) {
          before = Measure(dialog);
          ShowWindow(dialog, SW_MINIMIZE);
          ShowWindow(dialog, SW_RESTORE);
        },
        [&](HWND dialog) {
          after = Measure(dialog);
          Press(dialog, IDCANCEL);
        }});
  EXPECT_TRUE(EqualRect(&before.browser, &after.browser));
  EXPECT_TRUE(EqualRect(&before.ok, &after.ok));
}

// --- what a machine may lack
// ----------------------------------------------------------------------

/// No browser control: whoever asks the system for one is refused.
class NoBrowserControl final : public IClassFactory {
 public:
  NoBrowserControl() {
    EXPECT_EQ(CoRegisterClassObject(CLSID_WebBrowser, this, CLSCTX_INPROC_SERVER,
                                    REGCLS_MULTIPLEUSE, &m_cookie),
              S_OK);
  }
  ~NoBrowserControl() { CoRevokeClassObject(m_cookie); }
  NoBrowserControl(const NoBrowserControl&) = delete;
  NoBrowserControl& operator=(const NoBrowserControl&) = delete;

  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    const bool known = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID, void** object) override {
    ++asked;
    *object = nullptr;
    return E_FAIL;
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

  int asked = 0;

 private:
  DWORD m_cookie = 0;
};

TEST_F(EditDialog, WithoutABrowserControlTheDialogStandsAndCancels) {
  OpenDocument();
  NoBrowserControl none;
  Edit({[](HWND dialog) {
          EXPECT_EQ(FindWindowExW(dialog, nullptr, L"Shell Embedding", nullptr), nullptr);
          EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, IDOK)));
          EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, IDCANCEL)));
        },
        kOk, [](HWND dialog) { EXPECT_TRUE(IsWindowVisible(dialog)); }, kCancel});
  EXPECT_EQ(none.asked, 1);
  EXPECT_EQ(Updates(), 0U);
}

}  // namespace
}  // namespace velandoc
