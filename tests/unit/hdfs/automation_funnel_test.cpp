#include "hdfs/automation_funnel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "hdfs/error_texts.h"
#include "hdfs/rich_error.h"
#include "platform/mfc/exceptions.h"
#include "platform/mfc/module_state.h"
#include "tests/support/scripted_error_services.h"
#include "tests/support/thread_error.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeText;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::MakeErrorInfo;
using testing::ScriptedErrorServices;
using testing::TakeThreadError;

constexpr const char* kMethod = "CHdfsClient::Download";

class AutomationFunnelTest : public ::testing::Test {
 protected:
  AutomationFunnelTest() { SetErrorInfo(0, nullptr); }
  void TearDown() override {
    EXPECT_EQ(AfxGetModuleState(), m_callersState);
    SetErrorInfo(0, nullptr);
  }

  template <class Body>
  HRESULT Run(Body&& body) {
    return AutomationFunnel(kMethod, std::forward<Body>(body));
  }
  /// The line that tells the system's words for `hr`.
  static std::string SystemLine(HRESULT hr) {
    const std::string words = DescribeText(ErrorMessage(hr));
    EXPECT_NE(words, "");
    return "Exception in automation method [CHdfsClient::Download]: " + words;
  }

  AFX_MODULE_STATE* m_callersState = AfxGetModuleState();
  ScriptedErrorServices m_services;
  PortScope<ErrorServices> m_scope{m_services};
};

/// An exception of MFC's with a text, or with none.
class WordyException final : public CException {
 public:
  explicit WordyException(LPCWSTR text) : m_text(text) { ++alive; }
  BOOL GetErrorMessage(LPWSTR buffer, UINT size, UINT* helpContext) override {
    EXPECT_EQ(size, 255U);
    EXPECT_EQ(helpContext, nullptr);
    if (m_text == nullptr) {
      // What a failing call leaves in the buffer is no text.
      buffer[0] = 'x';
      buffer[1] = 0;
      return FALSE;
    }
    WideString(m_text).copy(buffer, size - 1);
    return TRUE;
  }

  static inline int alive = 0;

 private:
  ~WordyException() override { --alive; }

  LPCWSTR m_text;
};

TEST_F(AutomationFunnelTest, ABodyThatEndsNormallyGivesItsResultAndNoLine) {
  for (const HRESULT hr : {S_OK, S_FALSE, E_FAIL, E_INVALIDARG, HRESULT{7}}) {
    EXPECT_EQ(Run([hr] { return hr; }), hr);
    EXPECT_FALSE(TakeThreadError().isThere);
  }
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(AutomationFunnelTest, AnOlderErrorIsClearedBeforeTheBodyRuns) {
  SetErrorInfo(0, MakeErrorInfo(OLESTR("of an earlier call")).Get());
  bool isThere = true;
  Run([&] {
    isThere = TakeThreadError().isThere;
    return S_OK;
  });
  EXPECT_FALSE(isThere);
}

TEST_F(AutomationFunnelTest, TheErrorObjectOfTheBodyStays) {
  EXPECT_EQ(Run([] {
              SetRichError(OLESTR("no such file"), kConnectSource, GUID_NULL);
              return E_FAIL;
            }),
            E_FAIL);
  EXPECT_EQ(TakeThreadError().description, "no such file");
}

TEST_F(AutomationFunnelTest, TheBodyRunsInTheLibrarysModuleState) {
  AFX_MODULE_STATE* seen = nullptr;
  Run([&] {
    seen = AfxGetModuleState();
    return S_OK;
  });
  EXPECT_EQ(seen, AfxGetStaticModuleState());
  EXPECT_NE(m_callersState, AfxGetStaticModuleState());
}

TEST_F(AutomationFunnelTest, AComErrorWithoutAnErrorObjectEndsInTheSystemsWords) {
  EXPECT_EQ(Run([]() -> FunnelResult { throw _com_error(E_POINTER); }), E_POINTER);
  EXPECT_THAT(m_services.lines, ElementsAre(SystemLine(E_POINTER)));
  EXPECT_FALSE(TakeThreadError().isThere);
}

TEST_F(AutomationFunnelTest, AComErrorWithADescriptionEndsInItAndHandsItsObjectOn) {
  const ComPtr<IErrorInfo> info = MakeErrorInfo(OLESTR("the name node is in safe mode"));
  EXPECT_EQ(Run([&]() -> FunnelResult { throw _com_error(E_ABORT, info.Get(), true); }), E_ABORT);
  EXPECT_THAT(m_services.lines, ElementsAre("Exception in automation method "
                                            "[CHdfsClient::Download]: the name node is in safe "
                                            "mode"));
  ComPtr<IErrorInfo> left;
  EXPECT_EQ(GetErrorInfo(0, left.Receive()), S_OK);
  EXPECT_EQ(left.Get(), info.Get());
  info->Release();  // what the funnel keeps
}

/// An error object on the stack that counts its references.
class CountedErrorInfo final : public IErrorInfo {
 public:
  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    *object = nullptr;
    if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, IID_IErrorInfo)) return E_NOINTERFACE;
    *object = this;
    ++references;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetGUID(GUID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetSource(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetDescription(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetHelpFile(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetHelpContext(DWORD*) override { return E_NOTIMPL; }

  ULONG references = 1;
};

TEST_F(AutomationFunnelTest, TheReferenceTakenForTheHandoverIsNotGivenBack) {
  CountedErrorInfo info;
  Run([&]() -> FunnelResult { throw _com_error(E_FAIL, &info, true); });
  EXPECT_EQ(info.references, 3U) << "the test's, the thread's, and the one that stays";
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(info.references, 2U);
}

TEST_F(AutomationFunnelTest, AnErrorObjectThatSaysNothingLeavesTheSystemsWords) {
  CountedErrorInfo info;
  EXPECT_EQ(Run([&]() -> FunnelResult { throw _com_error(E_ACCESSDENIED, &info, true); }),
            E_ACCESSDENIED);
  EXPECT_THAT(m_services.lines, ElementsAre(SystemLine(E_ACCESSDENIED)));
  SetErrorInfo(0, nullptr);
}

TEST_F(AutomationFunnelTest, AComErrorWithASuccessCodeIsNoFailureButHandsItsObjectOn) {
  CountedErrorInfo info;
  EXPECT_EQ(Run([&]() -> FunnelResult { throw _com_error(S_FALSE, &info, true); }), S_FALSE);
  EXPECT_THAT(m_services.lines, IsEmpty());
  ComPtr<IErrorInfo> left;
  EXPECT_EQ(GetErrorInfo(0, left.Receive()), S_OK);
  EXPECT_EQ(left.Get(), &info);
}

TEST_F(AutomationFunnelTest, ACExceptionWithoutATextIsEFailInTheSystemsWords) {
  EXPECT_EQ(Run([]() -> FunnelResult { throw new WordyException(nullptr); }), E_FAIL);
  EXPECT_THAT(m_services.lines, ElementsAre(SystemLine(E_FAIL)));
  EXPECT_FALSE(TakeThreadError().isThere);
  EXPECT_EQ(WordyException::alive, 0) << "nobody called Delete()";
}

TEST_F(AutomationFunnelTest, ACExceptionsTextGoesToTheDebuggerAlone) {
  EXPECT_EQ(Run([]() -> FunnelResult { throw new WordyException(OLESTR("the disk is full")); }),
            E_FAIL);
  EXPECT_THAT(m_services.lines,
              ElementsAre("Exception in automation method [CHdfsClient::Download]: the disk is "
                          "full"));
  EXPECT_FALSE(TakeThreadError().isThere);
  EXPECT_EQ(WordyException::alive, 0);
}

TEST_F(AutomationFunnelTest, ATextOf254CharactersIsWholeAndALongerOneIsCut) {
  const WideString longText(300, 'a');
  Run([&]() -> FunnelResult { throw new WordyException(longText.c_str()); });
  ASSERT_EQ(m_services.lines.size(), 1U);
  EXPECT_EQ(m_services.lines[0].size(),
            std::strlen("Exception in automation method [CHdfsClient::Download]: ") + 254);
}

TEST_F(AutomationFunnelTest, ACExceptionWithAnEmptyTextGetsTheSystemsWords) {
  Run([]() -> FunnelResult { throw new WordyException(OLESTR("")); });
  EXPECT_THAT(m_services.lines, ElementsAre(SystemLine(E_FAIL)));
}

TEST_F(AutomationFunnelTest, AnyOtherExceptionIsEFailWithoutAnErrorObject) {
  EXPECT_EQ(Run([]() -> FunnelResult { throw std::runtime_error("not for the line"); }), E_FAIL);
  EXPECT_EQ(Run([]() -> FunnelResult { throw 7; }), E_FAIL);
  EXPECT_EQ(Run([]() -> FunnelResult { throw std::bad_alloc(); }), E_FAIL);
  EXPECT_THAT(m_services.lines,
              ElementsAre(SystemLine(E_FAIL), SystemLine(E_FAIL), SystemLine(E_FAIL)));
  EXPECT_FALSE(TakeThreadError().isThere);
}

TEST_F(AutomationFunnelTest, AnOleExceptionGivesItsCodeAndNoErrorObject) {
  EXPECT_EQ(Run([]() -> FunnelResult { AfxThrowOleException(E_INVALIDARG); }), E_INVALIDARG);
  EXPECT_THAT(m_services.lines, ElementsAre(SystemLine(E_INVALIDARG)));
  EXPECT_FALSE(TakeThreadError().isThere);
}

TEST_F(AutomationFunnelTest, AnOleExceptionWithSFalseEndsTheMethodWithoutALine) {
  EXPECT_EQ(Run([]() -> FunnelResult { AfxThrowOleException(S_FALSE); }), S_FALSE);
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(AutomationFunnelTest, SomeBodiesWriteTheLineForAFailedResult) {
  EXPECT_EQ(Run([] { return WriteIfFailed(E_NOTIMPL); }), E_NOTIMPL);
  EXPECT_EQ(Run([] { return WriteIfFailed(S_FALSE); }), S_FALSE);
  EXPECT_EQ(Run([]() -> FunnelResult { return E_FAIL; }), E_FAIL) << "these return it as it is";
  EXPECT_THAT(m_services.lines, ElementsAre(SystemLine(E_NOTIMPL)));
}

TEST_F(AutomationFunnelTest, TheLineHasNoLineEnd) {
  m_services.texts[0x80004005] = OLESTR("in words\r\n");
  Run([] { return WriteIfFailed(E_FAIL); });
  EXPECT_THAT(m_services.lines,
              ElementsAre("Exception in automation method [CHdfsClient::Download]: in words"));
}

TEST_F(AutomationFunnelTest, NoMemoryForTheLineLeavesTheMethodAsAComError) {
  for (bool* lacks : {&m_services.lacksMemoryForTexts, &m_services.lacksMemoryForLines}) {
    *lacks = true;
    HRESULT raised = S_OK;
    try {
      Run([]() -> FunnelResult { throw _com_error(E_POINTER); });
    } catch (const _com_error& error) {
      raised = error.Error();
    }
    EXPECT_EQ(raised, E_OUTOFMEMORY);
    EXPECT_EQ(AfxGetModuleState(), m_callersState);
    *lacks = false;
  }
}

TEST(MfcExceptions, DeleteLeavesAloneWhatWasNotMadeWithNew) {
  struct Standing final : CException {
    Standing() : CException(FALSE) {}
    ~Standing() override = default;
  };
  Standing exception;
  exception.Delete();
  OLECHAR text[4] = {'a', 'b', 'c', 0};
  UINT help = 7;
  EXPECT_EQ(exception.GetErrorMessage(text, 4, &help), FALSE);
  EXPECT_EQ(text[0], 0);
  EXPECT_EQ(help, 0U);
}

}  // namespace
}  // namespace velandoc
