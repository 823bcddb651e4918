// What the browser control is offered and refused by the dialog that hosts it.
#include "platform/windows/browser_site.h"

#include <gtest/gtest.h>

#include "host/velandoc_module.h"
#include "platform/atl/com_object.h"
#include "platform/owners.h"
// Behind com.h, which includes windows.h.
#include <mshtmdid.h>
#include <urlmon.h>

namespace velandoc::test {
namespace {

class BrowserSiteTest : public ::testing::Test {
 protected:
  BrowserSiteTest() {
    Module();
    m_frame = Make<BrowserFrame>();
    m_frame->SetDialog(m_dialog);
    m_site = Make<BrowserSite>();
    m_site->SetDialog(m_dialog, m_frame.Get());
    m_site->SetPlace({1, 2, 30, 40});
  }
  ~BrowserSiteTest() override {
    m_site.Reset();
    m_frame.Reset();
    EXPECT_EQ(Module().GetLockCount(), 0);
  }
  BrowserSiteTest(const BrowserSiteTest&) = delete;
  BrowserSiteTest& operator=(const BrowserSiteTest&) = delete;

  template <class Object>
  static ComPtr<CComObject<Object>> Make() {
    CComObject<Object>* made = nullptr;
    CheckResult(CComObject<Object>::CreateInstance(&made));
    return ComPtr<CComObject<Object>>(made);
  }
  HRESULT Ask(DWORD action, DWORD& policy) {
    return m_site->ProcessUrlAction(L"file:///C:/page.htm", action,
                                    reinterpret_cast<BYTE*>(&policy), sizeof(policy), nullptr, 0, 0,
                                    0);
  }
  /// Whether the key goes no further than the site.
  bool IsSwallowed(UINT message, WPARAM key, bool control) {
    BYTE keys[256] = {};
    GetKeyboardState(keys);
    keys[VK_CONTROL] = control ? 0x80 : 0;
    SetKeyboardState(keys);
    MSG pressed{};
    pressed.message = message;
    pressed.wParam = key;
    const HRESULT result = m_site->TranslateAccelerator(&pressed, &IID_NULL, 0);
    keys[VK_CONTROL] = 0;
    SetKeyboardState(keys);
    return result == S_OK;
  }

  // Nobody looks behind it.
  const HWND m_dialog = GetDesktopWindow();
  ComPtr<CComObject<BrowserFrame>> m_frame;
  ComPtr<CComObject<BrowserSite>> m_site;
};

TEST_F(BrowserSiteTest, ObjectsAndDownloadsAreRefusedToThePage) {
  for (const DWORD action :
       {URLACTION_DOWNLOAD_SIGNED_ACTIVEX, URLACTION_DOWNLOAD_UNSIGNED_ACTIVEX,
        URLACTION_ACTIVEX_RUN, URLACTION_ACTIVEX_OVERRIDE_OBJECT_SAFETY,
        URLACTION_ACTIVEX_CONFIRM_NOOBJECTSAFETY, URLACTION_JAVA_PERMISSIONS}) {
    DWORD policy = 0;
    EXPECT_EQ(Ask(action, policy), S_FALSE) << std::hex << action;
    EXPECT_EQ(policy, DWORD{URLPOLICY_DISALLOW}) << std::hex << action;
  }
}

TEST_F(BrowserSiteTest, ScriptsAndFormsAreAsTheSystemHasThem) {
  for (const DWORD action : {URLACTION_SCRIPT_RUN, URLACTION_HTML_SUBMIT_FORMS}) {
    DWORD policy = 4711;
    EXPECT_EQ(Ask(action, policy), INET_E_DEFAULT_ACTION) << std::hex << action;
    EXPECT_EQ(policy, 4711U);
  }
  DWORD zone = 4711;
  EXPECT_EQ(m_site->MapUrlToZone(L"file:///C:/page.htm", &zone, 0), INET_E_DEFAULT_ACTION);
  EXPECT_EQ(zone, 4711U);
}

TEST_F(BrowserSiteTest, APolicysPlaceThatIsTooSmallStaysUntouched) {
  BYTE policy = 9;
  EXPECT_EQ(m_site->ProcessUrlAction(L"", URLACTION_ACTIVEX_RUN, &policy, 1, nullptr, 0, 0, 0),
            S_FALSE);
  EXPECT_EQ(policy, 9);
}

TEST_F(BrowserSiteTest, TheSecurityManagerIsFoundAsAService) {
  ComPtr<IInternetSecurityManager> manager;
  EXPECT_EQ(m_site->QueryService(IID_IInternetSecurityManager, IID_IInternetSecurityManager,
                                 manager.ReceiveVoid()),
            S_OK);
  EXPECT_TRUE(manager);
  ComPtr<IUnknown> other;
  EXPECT_EQ(m_site->QueryService(IID_IOleClientSite, IID_IUnknown, other.ReceiveVoid()),
            E_NOINTERFACE);
  EXPECT_FALSE(other);
}

TEST_F(BrowserSiteTest, NothingIsLoadedBesideThePage) {
  Variant flags;
  EXPECT_EQ(m_site->Invoke(DISPID_AMBIENT_DLCONTROL, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr,
                           flags.Receive(), nullptr, nullptr),
            S_OK);
  ASSERT_EQ(flags.Get().vt, VT_I4);
  const auto bits = static_cast<DWORD>(flags.Get().lVal);
  constexpr DWORD kOff =
      DLCTL_NO_JAVA | DLCTL_NO_DLACTIVEXCTLS | DLCTL_NO_RUNACTIVEXCTLS | DLCTL_NO_FRAMEDOWNLOAD;
  EXPECT_EQ(bits & kOff, kOff);
  EXPECT_EQ(bits & (DLCTL_DLIMAGES | DLCTL_VIDEOS | DLCTL_BGSOUNDS | DLCTL_NO_SCRIPTS), 0U);
  EXPECT_EQ(m_site->Invoke(DISPID_AMBIENT_DLCONTROL + 1, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr,
                           flags.Receive(), nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
}

TEST_F(BrowserSiteTest, TextHasItsMenuAndThePageNone) {
  POINT at{};
  for (const DWORD kind : {CONTEXT_MENU_CONTROL, CONTEXT_MENU_TEXTSELECT}) {
    EXPECT_EQ(m_site->ShowContextMenu(kind, &at, nullptr, nullptr), S_FALSE);
  }
  for (const DWORD kind : {CONTEXT_MENU_DEFAULT, CONTEXT_MENU_IMAGE, CONTEXT_MENU_ANCHOR}) {
    EXPECT_EQ(m_site->ShowContextMenu(kind, &at, nullptr, nullptr), S_OK);
  }
}

TEST_F(BrowserSiteTest, ShortcutsThatWouldLoseTheInputAreSwallowed) {
  EXPECT_TRUE(IsSwallowed(WM_KEYDOWN, VK_F5, false));
  for (const char key : {'F', 'L', 'N', 'O', 'P', 'R'}) {
    EXPECT_TRUE(IsSwallowed(WM_KEYDOWN, static_cast<WPARAM>(key), true)) << key;
    EXPECT_FALSE(IsSwallowed(WM_KEYDOWN, static_cast<WPARAM>(key), false)) << key;
  }
  for (const char key : {'A', 'C', 'V', 'X', 'Z'}) {
    EXPECT_FALSE(IsSwallowed(WM_KEYDOWN, static_cast<WPARAM>(key), true)) << key;
  }
  EXPECT_FALSE(IsSwallowed(WM_KEYUP, VK_F5, false));
  EXPECT_FALSE(IsSwallowed(WM_KEYDOWN, VK_TAB, false));
}

TEST_F(BrowserSiteTest, TheControlWorksInTheDialogOnItsPlace) {
  ComPtr<IOleInPlaceFrame> frame;
  ComPtr<IOleInPlaceUIWindow> document;
  RECT place{};
  RECT clip{};
  OLEINPLACEFRAMEINFO info{};
  info.cb = sizeof(info);
  EXPECT_EQ(m_site->GetWindowContext(frame.Receive(), document.Receive(), &place, &clip, &info),
            S_OK);
  EXPECT_EQ(frame.Get(), static_cast<IOleInPlaceFrame*>(m_frame.Get()));
  EXPECT_FALSE(document);
  EXPECT_EQ(place.left, 1);
  EXPECT_EQ(place.bottom, 40);
  EXPECT_TRUE(EqualRect(&place, &clip));
  EXPECT_EQ(info.hwndFrame, m_dialog);
  EXPECT_EQ(info.cAccelEntries, 0U);
  HWND window = nullptr;
  EXPECT_EQ(static_cast<IOleInPlaceSite*>(m_site.Get())->GetWindow(&window), S_OK);
  EXPECT_EQ(window, m_dialog);
  EXPECT_EQ(m_frame->GetWindow(&window), S_OK);
  EXPECT_EQ(window, m_dialog);
}

TEST_F(BrowserSiteTest, KeysThatThePageLeavesComeBackToTheDialog) {
  MSG tab{};
  tab.message = WM_KEYDOWN;
  tab.wParam = VK_TAB;
  EXPECT_EQ(m_site->TranslateAccelerator(&tab, DWORD{0}), S_FALSE);
  EXPECT_EQ(m_frame->TranslateAccelerator(&tab, 0), S_FALSE);
}

}  // namespace
}  // namespace velandoc::test
