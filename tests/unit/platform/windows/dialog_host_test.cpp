// The system's dialogs: template 201 as a real window, driven from inside its own loop.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/velandoc_module.h"
#include "platform/dialog_host.h"
#include "resources/edit_fields_dialog.h"
#include "tests/unit/platform/windows/dialog_steps.h"

namespace velandoc::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Left, top, right, bottom: what tests can compare.
using Sides = std::array<LONG, 4>;
Sides SidesOf(const RECT& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

Sides InClient(HWND dialog, HWND control) {
  RECT rect{};
  SystemPort<DialogHost>().GetWindowRect(control, &rect);
  SystemPort<DialogHost>().ScreenToClient(dialog, &rect);
  return SidesOf(rect);
}

/// Dialog units of the dialog's own font.
Sides Pixels(HWND dialog, int x, int y, int width, int height) {
  // Position and size are rounded each for itself.
  RECT rect{x, y, width, height};
  MapDialogRect(dialog, &rect);
  return {rect.left, rect.top, rect.left + rect.right, rect.top + rect.bottom};
}

/// Writes down what it is told and ends with a command's number.
class Recorder : public DialogEvents, public BrowserEvents {
 public:
  Recorder() { Module(); }
  /// What the browser control held of the dialog is free again.
  ~Recorder() { EXPECT_EQ(Module().GetLockCount(), 0); }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  BOOL OnDialogCreated(HWND dialog) noexcept override {
    window = dialog;
    shownAtCreation = IsWindowVisible(dialog);
    if (endAtOnce) m_host.EndDialog(dialog, *endAtOnce);
    if (!withBrowser) return TRUE;
    browser = m_host.CreateBrowser(dialog, {0, 0, 300, 200}, {}, *this);
    second = m_host.CreateBrowser(dialog, {0, 0, 300, 200}, {}, *this);
    return TRUE;
  }
  void OnDialogSize(UINT type, int width, int height) noexcept override {
    shownAtFirstSize = shownAtFirstSize.value_or(IsWindowVisible(window));
    types.push_back(type);
    sizes.push_back({width, height});
  }
  void OnDialogCommand(int id) noexcept override {
    commands.push_back(id);
    if (ending) m_host.EndDialog(window, 100 + id);
  }
  void OnDialogDestroyed() noexcept override { ++destroyed; }
  void OnDocumentComplete(IHTMLDocument2*) noexcept override { ++documents; }
  void OnElementEvent(const ElementEvent&) noexcept override {}

  INT_PTR Run(std::vector<DialogSteps::Step> steps, HWND owner = nullptr) {
    DialogSteps driver(std::move(steps));
    return m_host.DialogBoxParamW(EDIT_FIELDS_ID, owner, *this, &reason);
  }

  bool withBrowser = false;
  bool ending = true;
  std::optional<INT_PTR> endAtOnce;

  HWND window = nullptr;
  HWND browser = nullptr;
  HWND second = nullptr;
  BOOL shownAtCreation = TRUE;
  std::optional<BOOL> shownAtFirstSize;
  std::vector<UINT> types;
  std::vector<std::pair<int, int>> sizes;
  std::vector<int> commands;
  int destroyed = 0;
  int documents = 0;
  WideString reason;

 private:
  DialogHost& m_host = SystemPort<DialogHost>();
};

void Press(HWND dialog, int id) { PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0); }

TEST(DialogHost, ThePixelsComeFromTheTemplatesDialogUnits) {
  Recorder events;
  RECT client{};
  Sides ok{};
  Sides cancel{};
  Sides expectedClient{};
  Sides expectedOk{};
  Sides expectedCancel{};
  std::wstring caption(64, L'\0');
  DWORD style = 0;
  events.Run({[&](HWND dialog) {
    SystemPort<DialogHost>().GetClientRect(dialog, &client);
    ok = InClient(dialog, GetDlgItem(dialog, IDOK));
    cancel = InClient(dialog, GetDlgItem(dialog, IDCANCEL));
    expectedClient = Pixels(dialog, 0, 0, 399, 218);
    expectedOk = Pixels(dialog, 289, 197, 50, 14);
    expectedCancel = Pixels(dialog, 342, 197, 50, 14);
    caption.resize(static_cast<std::size_t>(GetWindowTextW(dialog, caption.data(), 64)));
    style = static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_STYLE));
    Press(dialog, IDCANCEL);
  }});
  EXPECT_EQ(SidesOf(client), expectedClient);
  EXPECT_EQ(ok, expectedOk);
  EXPECT_EQ(cancel, expectedCancel);
  EXPECT_GT(client.right, 399);
  EXPECT_EQ(caption, L"Edit SharePoint Fields");
  constexpr DWORD kStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME;
  EXPECT_EQ(style & kStyle, kStyle);
}

TEST(DialogHost, TheSizeIsToldOnceBeforeTheDialogIsSeen) {
  Recorder events;
  RECT client{};
  events.Run({[&](HWND dialog) {
    GetClientRect(dialog, &client);
    Press(dialog, IDCANCEL);
  }});
  EXPECT_FALSE(events.shownAtCreation);
  EXPECT_EQ(events.shownAtFirstSize, FALSE);
  EXPECT_THAT(events.sizes, ElementsAre(std::pair<int, int>(client.right, client.bottom)));
  EXPECT_THAT(events.types, ElementsAre(UINT{SIZE_RESTORED}));
}

TEST(DialogHost, EachChangeOfTheSizeIsTold) {
  Recorder events;
  RECT client{};
  events.Run({[](HWND dialog) {
                SetWindowPos(dialog, nullptr, 0, 0, 700, 500, SWP_NOMOVE | SWP_NOZORDER);
              },
              [&](HWND dialog) {
                GetClientRect(dialog, &client);
                Press(dialog, IDCANCEL);
              }});
  ASSERT_THAT(events.sizes, SizeIs(2));
  EXPECT_EQ(events.sizes[1], (std::pair<int, int>(client.right, client.bottom)));
  EXPECT_NE(events.sizes[1], events.sizes[0]);
}

TEST(DialogHost, AButtonThatIsClickedIsACommandAndTheResultIsEndDialogs) {
  Recorder events;
  const INT_PTR result =
      events.Run({[](HWND dialog) { SendMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0); }});
  EXPECT_THAT(events.commands, ElementsAre(IDOK));
  EXPECT_EQ(result, 101);
  EXPECT_EQ(events.destroyed, 1);
  EXPECT_FALSE(IsWindow(events.window));
}

TEST(DialogHost, EnterIsTheDefaultButtonAndEscapeIsCancel) {
  Recorder enter;
  enter.Run({[](HWND) { PressKey(VK_RETURN); }});
  EXPECT_THAT(enter.commands, ElementsAre(IDOK));
  Recorder escape;
  escape.Run({[](HWND) { PressKey(VK_ESCAPE); }});
  EXPECT_THAT(escape.commands, ElementsAre(IDCANCEL));
}

TEST(DialogHost, EnterOnAnotherButtonIsThatButton) {
  Recorder events;
  events.Run({[](HWND) { PressKey(VK_TAB); },
              [](HWND dialog) {
                EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDCANCEL));
                PressKey(VK_RETURN);
              }});
  EXPECT_THAT(events.commands, ElementsAre(IDCANCEL));
}

TEST(DialogHost, TheCloseBoxIsCancel) {
  Recorder events;
  events.Run({[](HWND dialog) { PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); }});
  EXPECT_THAT(events.commands, ElementsAre(IDCANCEL));
}

TEST(DialogHost, TheDialogStaysUntilEndDialog) {
  Recorder events;
  events.ending = false;
  const INT_PTR result = events.Run({[](HWND dialog) { Press(dialog, IDOK); },
                                     [&](HWND dialog) {
                                       EXPECT_THAT(events.commands, ElementsAre(IDOK));
                                       events.ending = true;
                                       Press(dialog, IDOK);
                                     }});
  EXPECT_EQ(result, 101);
}

TEST(DialogHost, TheFirstResultCounts) {
  Recorder events;
  const INT_PTR result = events.Run({[](HWND dialog) {
    EXPECT_TRUE(SystemPort<DialogHost>().EndDialog(dialog, 7));
    EXPECT_TRUE(SystemPort<DialogHost>().EndDialog(dialog, 8));
    EXPECT_FALSE(IsWindowVisible(dialog));
  }});
  EXPECT_EQ(result, 7);
  EXPECT_THAT(events.commands, IsEmpty());
}

TEST(DialogHost, ADialogThatIsEndedAtItsCreationIsNeverShown) {
  Recorder events;
  events.endAtOnce = 9;
  EXPECT_EQ(events.Run({}), 9);
  EXPECT_THAT(events.sizes, IsEmpty());
  EXPECT_EQ(events.destroyed, 1);
}

TEST(DialogHost, ADisabledDialogHearsNoCommand) {
  Recorder events;
  events.Run({[](HWND dialog) {
                EnableWindow(dialog, FALSE);
                Press(dialog, IDOK);
              },
              [&](HWND dialog) {
                EXPECT_THAT(events.commands, IsEmpty());
                EnableWindow(dialog, TRUE);
                Press(dialog, IDCANCEL);
              }});
}

TEST(DialogHost, WithoutSuchATemplateThereIsNoDialogAndAReason) {
  Recorder events;
  EXPECT_EQ(SystemPort<DialogHost>().DialogBoxParamW(4711, nullptr, events, &events.reason), -1);
  EXPECT_EQ(events.reason, L"there is no dialog template 4711");
  EXPECT_EQ(events.window, nullptr);
  EXPECT_EQ(events.destroyed, 0);
}

TEST(DialogHost, AMessageToQuitEndsTheDialogAndIsLeftForTheProgram) {
  Recorder events;
  EXPECT_EQ(events.Run({[](HWND) {}, [](HWND) { PostQuitMessage(5); }}), IDCANCEL);
  EXPECT_EQ(events.destroyed, 1);
}

TEST(DialogHost, HandlesOfADialogThatIsGoneDoNothing) {
  Recorder events;
  events.withBrowser = true;
  events.Run({[](HWND dialog) { Press(dialog, IDCANCEL); }});
  DialogHost& host = SystemPort<DialogHost>();
  RECT rect{1, 2, 3, 4};
  EXPECT_FALSE(host.EndDialog(events.window, 1));
  EXPECT_EQ(host.GetDlgItem(events.window, IDOK), nullptr);
  EXPECT_FALSE(host.GetClientRect(events.window, &rect));
  EXPECT_FALSE(host.GetWindowRect(events.window, &rect));
  EXPECT_FALSE(host.ScreenToClient(events.window, &rect));
  EXPECT_FALSE(host.MoveWindow(events.browser, 0, 0, 1, 1, TRUE));
  EXPECT_FALSE(host.SetWindowPos(events.window, nullptr, 0, 0, 1, 1, 0x15));
  EXPECT_EQ(host.CreateBrowser(events.window, rect, {}, events), nullptr);
  EXPECT_FALSE(host.Navigate(events.browser, L"file://C:\\none.htm"));
  EXPECT_EQ(SidesOf(rect), (Sides{1, 2, 3, 4}));
}

// --- over its owner
// -------------------------------------------------------------------------------

class DialogOwner : public ::testing::Test {
 protected:
  DialogOwner() {
    m_owner = CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 40, 900,
                              700, nullptr, nullptr, nullptr, nullptr);
    SetActiveWindow(m_owner);
  }
  ~DialogOwner() override {
    if (IsWindow(m_owner)) DestroyWindow(m_owner);
  }
  DialogOwner(const DialogOwner&) = delete;
  DialogOwner& operator=(const DialogOwner&) = delete;

  HWND m_owner = nullptr;
};

TEST_F(DialogOwner, TheActiveWindowIsDisabledWhileTheDialogStandsAndActiveBehindIt) {
  ASSERT_EQ(GetActiveWindow(), m_owner);
  Recorder events;
  events.Run({[this](HWND dialog) {
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), m_owner);
    EXPECT_FALSE(IsWindowEnabled(m_owner));
    Press(dialog, IDCANCEL);
  }});
  EXPECT_TRUE(IsWindowEnabled(m_owner));
  EXPECT_EQ(GetActiveWindow(), m_owner);
}

TEST_F(DialogOwner, AnOwnerThatWasDisabledBeforeStaysSo) {
  Recorder events;
  EnableWindow(m_owner, FALSE);
  events.Run({[](HWND dialog) { Press(dialog, IDCANCEL); }}, m_owner);
  EXPECT_FALSE(IsWindowEnabled(m_owner));
}

TEST_F(DialogOwner, AChildStandsForItsTopLevelWindow) {
  const HWND child = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10,
                                     m_owner, nullptr, nullptr, nullptr);
  Recorder events;
  events.Run({[this](HWND dialog) {
               EXPECT_EQ(GetWindow(dialog, GW_OWNER), m_owner);
               Press(dialog, IDCANCEL);
             }},
             child);
}

TEST_F(DialogOwner, TheDialogStandsInTheMiddleOfItsOwner) {
  RECT own{};
  RECT over{};
  Recorder events;
  events.Run({[&](HWND dialog) {
    GetWindowRect(dialog, &own);
    GetWindowRect(m_owner, &over);
    Press(dialog, IDCANCEL);
  }});
  MONITORINFO monitor{};
  monitor.cbSize = sizeof(monitor);
  GetMonitorInfoW(MonitorFromWindow(m_owner, MONITOR_DEFAULTTONEAREST), &monitor);
  EXPECT_GE(own.left, monitor.rcWork.left);
  EXPECT_GE(own.top, monitor.rcWork.top);
  if (own.right < monitor.rcWork.right) {
    EXPECT_NEAR(own.left + own.right, over.left + over.right, 1);
  }
  if (own.bottom < monitor.rcWork.bottom) {
    EXPECT_NEAR(own.top + own.bottom, over.top + over.bottom, 1);
  }
}

TEST_F(DialogOwner, AnOwnerThatGoesTakesTheDialogWithIt) {
  Recorder events;
  EXPECT_EQ(events.Run({[this](HWND) { DestroyWindow(m_owner); }}), IDCANCEL);
  EXPECT_EQ(events.destroyed, 1);
}

// --- with its browser
// -----------------------------------------------------------------------------

TEST(DialogBrowser, TheControlStandsWhereItWasPutAndThereIsOne) {
  Recorder events;
  events.withBrowser = true;
  Sides before{};
  Sides after{};
  wchar_t name[64] = {};
  events.Run({[&](HWND dialog) {
    GetClassNameW(events.browser, name, 64);
    before = InClient(dialog, events.browser);
    EXPECT_TRUE(SystemPort<DialogHost>().MoveWindow(events.browser, 3, 4, 250, 150, TRUE));
    after = InClient(dialog, events.browser);
    EXPECT_EQ(GetParent(events.browser), dialog);
    Press(dialog, IDCANCEL);
  }});
  EXPECT_STREQ(name, L"Shell Embedding");
  EXPECT_EQ(before, (Sides{0, 0, 300, 200}));
  EXPECT_EQ(after, (Sides{3, 4, 253, 154}));
  EXPECT_EQ(events.second, nullptr);
  EXPECT_FALSE(IsWindow(events.browser));
}

/// Where the focus is: the page, or a button's id.
class FocusPath {
 public:
  explicit FocusPath(const Recorder& events) : m_events(events) {}
  void Note() {
    const HWND focus = GetFocus();
    const bool page = focus == m_events.browser || IsChild(m_events.browser, focus);
    stops.push_back(page                                             ? "page"
                    : focus == GetDlgItem(m_events.window, IDOK)     ? "OK"
                    : focus == GetDlgItem(m_events.window, IDCANCEL) ? "Cancel"
                                                                     : "nowhere");
  }
  std::vector<std::string> stops;

 private:
  const Recorder& m_events;
};

TEST(DialogBrowser, TabGoesRoundThroughThePageAndTheButtons) {
  Recorder events;
  events.withBrowser = true;
  FocusPath path(events);
  const DialogSteps::Step tab = [&](HWND) {
    path.Note();
    PressKey(VK_TAB);
  };
  events.Run({tab, tab, tab, tab, [&](HWND dialog) {
                path.Note();
                Press(dialog, IDCANCEL);
              }});
  EXPECT_THAT(path.stops, ElementsAre("page", "OK", "Cancel", "page", "OK"));
}

TEST(DialogBrowser, ShiftTabGoesRoundBackwards) {
  Recorder events;
  events.withBrowser = true;
  FocusPath path(events);
  const HeldShift shift;
  const DialogSteps::Step tab = [&](HWND) {
    path.Note();
    PressKey(VK_TAB);
  };
  events.Run({tab, tab, tab, [&](HWND dialog) {
                path.Note();
                Press(dialog, IDCANCEL);
              }});
  EXPECT_THAT(path.stops, ElementsAre("page", "Cancel", "OK", "page"));
}

TEST(DialogBrowser, EnterAndEscapeInThePageAreTheDialogs) {
  for (const auto& [key, command] : {std::pair(VK_RETURN, IDOK), std::pair(VK_ESCAPE, IDCANCEL)}) {
    Recorder events;
    events.withBrowser = true;
    events.Run({[&](HWND) { SetFocus(events.browser); }, [key = key](HWND) { PressKey(key); }});
    EXPECT_THAT(events.commands, ElementsAre(command));
  }
}

TEST(DialogBrowser, NavigateBeginsAndAPageThatIsNotShownIsNotComplete) {
  Recorder events;
  events.withBrowser = true;
  events.Run({[&](HWND) {
                EXPECT_TRUE(SystemPort<DialogHost>().Navigate(events.browser,
                                                              L"file://C:\\no such file.htm"));
              },
              [](HWND) {}, [](HWND) {}, [](HWND dialog) { Press(dialog, IDCANCEL); }});
  EXPECT_EQ(events.documents, 0);
}

}  // namespace
}  // namespace velandoc::test
