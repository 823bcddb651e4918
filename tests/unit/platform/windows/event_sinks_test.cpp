// What the browser control and its page say, told to the sinks as the system would tell it.
#include "platform/windows/event_sinks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/velandoc_module.h"
#include "platform/atl/com_object.h"
#include "platform/owners.h"
#include "tests/unit/platform/windows/interface_double.h"
// Behind com.h, which includes windows.h.
#include <exdispid.h>

namespace velandoc::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <class Sink>
class SinkTest : public ::testing::Test {
 protected:
  SinkTest() {
    Module();
    CComObject<Sink>* made = nullptr;
    CheckResult(CComObject<Sink>::CreateInstance(&made));
    m_sink = ComPtr<CComObject<Sink>>(made);
  }
  ~SinkTest() override {
    m_sink.Reset();
    EXPECT_EQ(Module().GetLockCount(), 0);
  }
  SinkTest(const SinkTest&) = delete;
  SinkTest& operator=(const SinkTest&) = delete;

  /// `arguments` as they lie: the last one first.
  HRESULT Tell(DISPID event, std::vector<VARIANT> arguments) {
    DISPPARAMS params{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    return m_sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr,
                          nullptr, nullptr);
  }

  ComPtr<CComObject<Sink>> m_sink;
};

// --- the control
// ----------------------------------------------------------------------------------

constexpr UINT kCompleted = WM_APP + 77;

class BrowserSinkTest : public SinkTest<BrowserSink> {
 protected:
  BrowserSinkTest() {
    m_window =
        CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 1, 1, HWND_MESSAGE, nullptr, nullptr, nullptr);
    m_sink->Connect(m_window, kCompleted);
  }
  ~BrowserSinkTest() override { DestroyWindow(m_window); }
  BrowserSinkTest(const BrowserSinkTest&) = delete;
  BrowserSinkTest& operator=(const BrowserSinkTest&) = delete;

  /// Whether the event's flag `cancel` of `count` arguments comes back set.
  bool IsCancelled(DISPID event, std::size_t count, std::size_t cancel) {
    VARIANT_BOOL flag = VARIANT_FALSE;
    std::vector<VARIANT> arguments(count);
    arguments[cancel].vt = VT_BOOL | VT_BYREF;
    arguments[cancel].pboolVal = &flag;
    EXPECT_EQ(Tell(event, arguments), S_OK);
    return flag != VARIANT_FALSE;
  }
  bool Navigates() { return !IsCancelled(DISPID_BEFORENAVIGATE2, 7, 0); }
  int Completions() const {
    int found = 0;
    MSG message{};
    while (PeekMessageW(&message, m_window, kCompleted, kCompleted, PM_REMOVE)) ++found;
    return found;
  }

  HWND m_window = nullptr;
};

TEST_F(BrowserSinkTest, OneNavigationPassesForEachThatWasAllowed) {
  EXPECT_FALSE(Navigates());
  m_sink->AllowNavigation();
  EXPECT_TRUE(Navigates());
  EXPECT_FALSE(Navigates()) << "a link, a form, a frame of the page";
  m_sink->AllowNavigation();
  EXPECT_TRUE(Navigates());
}

TEST_F(BrowserSinkTest, NoWindowIsOpened) {
  EXPECT_TRUE(IsCancelled(DISPID_NEWWINDOW2, 2, 0));
  EXPECT_TRUE(IsCancelled(DISPID_NEWWINDOW3, 5, 3));
}

TEST_F(BrowserSinkTest, ACompletePageIsToldByAMessageBehindTheEvent) {
  EXPECT_EQ(Completions(), 0);
  EXPECT_EQ(Tell(DISPID_DOCUMENTCOMPLETE, std::vector<VARIANT>(2)), S_OK);
  EXPECT_EQ(Completions(), 1);
}

TEST_F(BrowserSinkTest, APageThatFailedIsNotComplete) {
  EXPECT_TRUE(IsCancelled(DISPID_NAVIGATEERROR, 5, 0)) << "or the control shows a page of its own";
  EXPECT_EQ(Tell(DISPID_DOCUMENTCOMPLETE, std::vector<VARIANT>(2)), S_OK);
  EXPECT_EQ(Completions(), 0);
}

TEST_F(BrowserSinkTest, BehindDisconnectNothingIsTold) {
  m_sink->Disconnect();
  EXPECT_EQ(Tell(DISPID_DOCUMENTCOMPLETE, std::vector<VARIANT>(2)), S_OK);
  EXPECT_EQ(Completions(), 0);
}

TEST_F(BrowserSinkTest, ArgumentsOfOtherTypesAndOtherEventsAreLeftAlone) {
  EXPECT_EQ(Tell(DISPID_BEFORENAVIGATE2, {}), S_OK);
  EXPECT_EQ(Tell(DISPID_BEFORENAVIGATE2, std::vector<VARIANT>(7)), S_OK);
  EXPECT_EQ(m_sink->Invoke(DISPID_NEWWINDOW2, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr,
                           nullptr, nullptr),
            S_OK);
  EXPECT_EQ(Tell(DISPID_TITLECHANGE, std::vector<VARIANT>(1)), DISP_E_MEMBERNOTFOUND);
}

TEST_F(BrowserSinkTest, TheSinkAnswersForItsSetOfEvents) {
  ComPtr<IDispatch> found;
  EXPECT_EQ(m_sink->QueryInterface(DIID_DWebBrowserEvents2, found.ReceiveVoid()), S_OK);
  EXPECT_EQ(found.Get(), static_cast<IDispatch*>(m_sink.Get()));
  EXPECT_EQ(m_sink->QueryInterface(kDocumentEvents, found.ReceiveVoid()), E_NOINTERFACE);
}

// --- the page
// -------------------------------------------------------------------------------------

class ElementDouble final : public InterfaceDouble<IHTMLElement> {
 public:
  explicit ElementDouble(const wchar_t* id, ElementDouble* parent = nullptr)
      : m_id(id), m_parent(parent) {
    Set(&IHTMLElement::get_id, &GetId);
    Set(&IHTMLElement::get_parentElement, &GetParent);
  }

 private:
  static ElementDouble& Self(IHTMLElement* object) {
    return static_cast<ElementDouble&>(OwnerOf(object));
  }
  static HRESULT GetId(IHTMLElement* object, BSTR* id) {
    *id = Self(object).m_id != nullptr ? SysAllocString(Self(object).m_id) : nullptr;
    return S_OK;
  }
  static HRESULT GetParent(IHTMLElement* object, IHTMLElement** parent) {
    ElementDouble* found = Self(object).m_parent;
    *parent = found != nullptr ? found->Get() : nullptr;
    if (found != nullptr) found->Get()->AddRef();
    return S_OK;
  }

  const wchar_t* const m_id;
  ElementDouble* const m_parent;
};

class EventDouble final : public InterfaceDouble<IHTMLEventObj> {
 public:
  explicit EventDouble(ElementDouble* source) : m_source(source) {
    Set(&IHTMLEventObj::get_srcElement, &GetSource);
  }

 private:
  static HRESULT GetSource(IHTMLEventObj* object, IHTMLElement** source) {
    ElementDouble* found = static_cast<EventDouble&>(OwnerOf(object)).m_source;
    *source = found != nullptr ? found->Get() : nullptr;
    if (found != nullptr) found->Get()->AddRef();
    return S_OK;
  }

  ElementDouble* const m_source;
};

class PageSinkTest : public SinkTest<PageSink>, public BrowserEvents {
 protected:
  PageSinkTest() { m_sink->Connect(m_wanted, this); }

  void OnDocumentComplete(IHTMLDocument2*) noexcept override { ADD_FAILURE(); }
  void OnElementEvent(const ElementEvent& event) noexcept override {
    m_heard.push_back(std::to_wstring(event.event) + L" " + event.element);
  }
  HRESULT Raise(DISPID event, ElementDouble* source) {
    EventDouble object(source);
    VARIANT argument{};
    argument.vt = VT_DISPATCH;
    argument.pdispVal = object.Get();
    return Tell(event, {argument});
  }

  static constexpr DISPID kDoubleClick = -601;
  const std::vector<ElementEvent> m_wanted = {
      {DISPID_CLICK, L"ButtonOK"}, {DISPID_CLICK, L"ButtonCancel"}, {kDoubleClick, L"Row"}};
  std::vector<std::wstring> m_heard;
};

TEST_F(PageSinkTest, AClickReachesTheEntryOfItsElementsId) {
  ElementDouble ok(L"ButtonOK");
  ElementDouble cancel(L"ButtonCancel");
  Raise(DISPID_CLICK, &cancel);
  Raise(DISPID_CLICK, &ok);
  EXPECT_THAT(m_heard, ElementsAre(L"-600 ButtonCancel", L"-600 ButtonOK"));
}

TEST_F(PageSinkTest, AClickInsideAnElementIsTheElements) {
  ElementDouble button(L"ButtonOK");
  ElementDouble bold(nullptr, &button);
  ElementDouble text(L"inner", &bold);
  Raise(DISPID_CLICK, &text);
  EXPECT_THAT(m_heard, ElementsAre(L"-600 ButtonOK"));
}

TEST_F(PageSinkTest, TheNearestElementOfTheListTakesTheEvent) {
  ElementDouble outer(L"ButtonOK");
  ElementDouble inner(L"ButtonCancel", &outer);
  Raise(DISPID_CLICK, &inner);
  EXPECT_THAT(m_heard, ElementsAre(L"-600 ButtonCancel"));
}

TEST_F(PageSinkTest, OtherElementsOtherEventsAndOtherCasesAreNotHeard) {
  ElementDouble other(L"Title");
  ElementDouble row(L"Row");
  ElementDouble lower(L"buttonok");
  ElementDouble nameless(nullptr);
  for (ElementDouble* element : {&other, &row, &lower, &nameless}) Raise(DISPID_CLICK, element);
  Raise(DISPID_CLICK, nullptr);
  EXPECT_THAT(m_heard, IsEmpty());
  Raise(kDoubleClick, &row);
  EXPECT_THAT(m_heard, ElementsAre(L"-601 Row"));
}

TEST_F(PageSinkTest, AnEventWithoutItsObjectIsNothing) {
  EXPECT_EQ(Tell(DISPID_CLICK, {}), S_OK);
  VARIANT empty{};
  empty.vt = VT_DISPATCH;
  EXPECT_EQ(Tell(DISPID_CLICK, {empty}), S_OK);
  EXPECT_THAT(m_heard, IsEmpty());
}

TEST_F(PageSinkTest, BehindDisconnectNothingIsHeard) {
  ElementDouble ok(L"ButtonOK");
  m_sink->Disconnect();
  Raise(DISPID_CLICK, &ok);
  EXPECT_THAT(m_heard, IsEmpty());
}

TEST_F(PageSinkTest, TheSinkAnswersForItsSetOfEvents) {
  ComPtr<IDispatch> found;
  EXPECT_EQ(m_sink->QueryInterface(kDocumentEvents, found.ReceiveVoid()), S_OK);
  EXPECT_EQ(m_sink->QueryInterface(DIID_DWebBrowserEvents2, found.ReceiveVoid()), E_NOINTERFACE);
}

}  // namespace
}  // namespace velandoc::test
