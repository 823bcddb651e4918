#include "frontpage/front_page_connection.h"

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/unit/frontpage/page_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::AnswerPage;
using testing::ExhaustedCodePage;
using testing::FaultCodePage;
using testing::FaultDom;
using testing::ScriptedWinInet;
using testing::StatusLines;
using testing::WebUrlLines;

constexpr char kHeaderBlock[] =
    "Content-Type: application/x-vermeer-urlencoded\\u000a"
    "X-Vermeer-Content-Type: application/x-vermeer-urlencoded";

class FrontPageConnection : public ::testing::Test {
 protected:
  testing::ComScope m_com;
  ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
};

TEST_F(FrontPageConnection, WithoutAHandlerThereIsNoRequest) {
  CFrontPageConnection connection(OLESTR("http://h/a?x"));
  EXPECT_EQ(connection.GetVerb(), WideString());
  EXPECT_EQ(connection.GetUrlPath(), WideString());
  EXPECT_FALSE(connection.SendRequest());
  connection.ProcessResponse();
  EXPECT_TRUE(m_platform.calls.empty()) << "the platform is not called";
}

TEST_F(FrontPageConnection, SendsTheHandlersMethodAndNothingElse) {
  m_platform.answers = {Answer{.chunks = {AnswerPage(WebUrlLines("/a", "b"))}}};
  {
    CUrlToWebUrlHandler handler(OLESTR("http://h.test:8080/a/b c?x=y"));
    CFrontPageConnection connection(OLESTR("http://h.test:8080/a/b c?x=y"));
    connection.m_handler = &handler;
    EXPECT_EQ(Shown(connection.GetVerb()), "POST");
    EXPECT_TRUE(RunRequest(connection));
    EXPECT_EQ(Shown(handler.m_webUrlResult), "/a");
  }
  EXPECT_THAT(
      m_platform.calls,
      ::testing::ElementsAre(
          "InternetOpenW(CWinInetConnection, 0, null, null, 0x0)",
          "InternetConnectW(1, h.test, 8080, null, null, 3, 0x200, 0)",
          "HttpOpenRequestW(2, POST, /_vti_bin/shtml.dll/_vti_rpc?x=y, null, null, text/*, "
          "0x400200, 0)",
          std::string("HttpSendRequestW(3, ") + kHeaderBlock + ", -1, 50)",
          "HttpQueryInfoW(3, 19, 4096)", "GetActiveWindow()", "InternetErrorDlg(active, 3, 0, 7)",
          "HttpQueryInfoW(3, 19, 4096)", "InternetReadFile(3, 8192)", "InternetReadFile(3, 8192)",
          "InternetCloseHandle(3)", "InternetCloseHandle(2)", "InternetCloseHandle(1)"));
  EXPECT_EQ(m_platform.bodies[0], "method=url+to+web+url%3a12.0.0.6665&url=%2fa%2fb+c");
}

TEST_F(FrontPageConnection, OpenServiceHasNoLeadingSlash) {
  m_platform.answers = {Answer{}};
  COpenServiceHandler handler;
  CFrontPageConnection connection(OLESTR("https://h.test"));
  connection.m_handler = &handler;
  EXPECT_TRUE(RunRequest(connection));
  EXPECT_EQ(m_platform.calls[1], "InternetConnectW(1, h.test, 443, null, null, 3, 0x200, 0)");
  EXPECT_EQ(m_platform.calls[2],
            "HttpOpenRequestW(2, POST, _vti_bin/_vti_aut/author.dll, null, null, text/*, 0xc00200, "
            "0)");
  EXPECT_EQ(m_platform.bodies[0], "method=open+service");
  EXPECT_EQ(m_platform.headerBlocks[0], kHeaderBlock);
}

TEST_F(FrontPageConnection, TheQueryOfTheUrlGoesToEveryPath) {
  m_platform.answers = {Answer{}, Answer{}, Answer{}};
  CFrontPageConnection connection(OLESTR("http://h/d?Web=1 2#x"));
  CUrlToWebUrlHandler first(OLESTR("http://h/d"));
  CMetaInfoHandler second(OLESTR("/sites/a"), OLESTR("b"));
  COpenServiceHandler third;
  connection.m_handler = &first;
  EXPECT_TRUE(RunRequest(connection));
  connection.NextHandler(second);
  EXPECT_TRUE(RunRequest(connection));
  connection.NextHandler(third);
  EXPECT_TRUE(RunRequest(connection));
  const std::vector<std::string> opened = m_platform.CallsOf("HttpOpenRequestW");
  ASSERT_EQ(opened.size(), 3U);
  EXPECT_THAT(opened[0], ::testing::HasSubstr(", /_vti_bin/shtml.dll/_vti_rpc?Web=1 2#x,"));
  EXPECT_THAT(opened[1],
              ::testing::HasSubstr(", /sites/a/_vti_bin/_vti_aut/author.dll?Web=1 2#x,"));
  EXPECT_THAT(opened[2], ::testing::HasSubstr(", _vti_bin/_vti_aut/author.dll?Web=1 2#x,"));
}

TEST_F(FrontPageConnection, ARequestIsClosedBeforeTheNextAndTheRestIsKept) {
  m_platform.answers = {Answer{}, Answer{}};
  {
    CFrontPageConnection connection(OLESTR("http://h/d"));
    COpenServiceHandler first;
    COpenServiceHandler second;
    connection.m_handler = &first;
    EXPECT_TRUE(RunRequest(connection));
    connection.NextHandler(second);
    EXPECT_EQ(connection.m_hRequest, nullptr);
    EXPECT_EQ(connection.m_handler, &second);
    EXPECT_EQ(m_platform.OpenHandles(), 2);
    connection.NextHandler(second);
    EXPECT_EQ(m_platform.OpenHandles(), 2) << "there is no request to close";
    EXPECT_TRUE(RunRequest(connection));
  }
  EXPECT_EQ(m_platform.CallsOf("InternetOpenW").size(), 1U);
  EXPECT_EQ(m_platform.CallsOf("InternetConnectW").size(), 1U);
  EXPECT_THAT(m_platform.CallsOf("InternetCloseHandle"),
              ::testing::ElementsAre("InternetCloseHandle(3)", "InternetCloseHandle(4)",
                                     "InternetCloseHandle(2)", "InternetCloseHandle(1)"));
}

TEST_F(FrontPageConnection, TheAuthenticationLoopRunsForEachRequest) {
  m_platform.answers = {Answer{.status = OLESTR("401")}, Answer{}, Answer{.status = OLESTR("401")},
                        Answer{}};
  m_platform.dialogResults = {12032, 0, 12032, 0};
  CFrontPageConnection connection(OLESTR("http://h/d"));
  COpenServiceHandler handler;
  connection.m_handler = &handler;
  EXPECT_TRUE(RunRequest(connection));
  connection.NextHandler(handler);
  EXPECT_TRUE(RunRequest(connection));
  EXPECT_THAT(m_platform.bodies, ::testing::Each("method=open+service"));
}

TEST_F(FrontPageConnection, OnlyAWhole200IsHandedToTheHandler) {
  const std::string page = AnswerPage(WebUrlLines("/a", "b"));
  const struct {
    Answer answer;
    bool run;
    const char* why;
  } cases[] = {
      {Answer{.chunks = {page}}, true, "the usual answer"},
      {Answer{.status = OLESTR("404"), .chunks = {page}}, false, "no such service"},
      {Answer{.status = OLESTR("500"), .chunks = {page}}, false, "an error of the server"},
      {Answer{.status = OLESTR("204")}, false, "nothing"},
      {Answer{.status = OLESTR("302"), .chunks = {page}}, false, "a redirect that got here"},
      {Answer{.status = OLESTR("401"), .chunks = {page}}, false, "declined credentials"},
      {Answer{.error = 12029}, false, "nobody listens"},
      {Answer{.error = 12030}, false, "a reset"},
      {Answer{.chunks = {page}, .readError = 12030}, false, "a body that breaks off"},
  };
  for (const auto& test : cases) {
    m_platform.answers = {test.answer};
    CFrontPageConnection connection(OLESTR("http://h/d"));
    CUrlToWebUrlHandler handler(OLESTR("http://h/d"));
    connection.m_handler = &handler;
    EXPECT_EQ(RunRequest(connection), test.run) << test.why;
    EXPECT_EQ(Shown(handler.m_webUrlResult), test.run ? "/a" : "") << test.why;
  }
}

TEST_F(FrontPageConnection, AUrlWithoutAHostIsNeverSent) {
  const LPCWSTR urls[] = {OLESTR("h.test"), OLESTR(""), nullptr, OLESTR("file:///c:/a")};
  for (const LPCWSTR url : urls) {
    CFrontPageConnection connection(url);
    COpenServiceHandler handler;
    connection.m_handler = &handler;
    EXPECT_FALSE(RunRequest(connection)) << testing::Printable(url);
  }
  EXPECT_TRUE(m_platform.CallsOf("HttpSendRequestW").empty());
}

TEST_F(FrontPageConnection, TheLastResultIsACopyOfWhatWasParsed) {
  m_platform.answers = {Answer{.chunks = {AnswerPage(testing::DocumentLines("d", {{"k", "v"}}) +
                                                     StatusLines("7", "m"))}},
                        Answer{.chunks = {"no page"}}};
  CFrontPageConnection connection(OLESTR("http://h/d"));
  CMetaInfoHandler first(OLESTR("/"), OLESTR("d"));
  connection.m_handler = &first;
  EXPECT_TRUE(RunRequest(connection));
  EXPECT_EQ(connection.m_lastResult.m_status, 7);
  EXPECT_EQ(Shown(connection.m_lastResult.m_statusMessage), "m");
  EXPECT_TRUE(connection.m_lastResult.m_hasStatus);
  EXPECT_TRUE(connection.m_lastResult.m_hasMeta);
  EXPECT_TRUE(connection.m_lastResult.m_meta.m_hasDocument);
  EXPECT_EQ(Shown(connection.m_lastResult.m_meta), "k=v");
  EXPECT_EQ(Shown(connection.m_lastResult.m_meta.m_documentName), "d");
  EXPECT_EQ(connection.m_lastResult.m_extraText, WideString());

  CMetaInfoHandler second(OLESTR("/"), OLESTR("d"));
  connection.NextHandler(second);
  EXPECT_TRUE(RunRequest(connection)) << "a page that does not load is no failed request";
  EXPECT_FALSE(second.m_result.m_hasMeta);
  EXPECT_EQ(connection.m_lastResult.m_status, 7) << "and leaves what there was";
  EXPECT_TRUE(connection.m_lastResult.m_hasMeta);
}

class RecordingCodePage final : public CodePage {
 public:
  int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int size, LPSTR bytes,
                          int capacity, LPCSTR defaultChar, BOOL* usedDefaultChar) override {
    if (m_isWatching) {
      calls.push_back("out " + std::to_string(codePage) + " " + std::to_string(flags) + " " +
                      std::to_string(size) + " " + std::to_string(capacity));
      EXPECT_EQ(defaultChar, nullptr);
      EXPECT_EQ(usedDefaultChar, nullptr);
    }
    return SystemPort<CodePage>().WideCharToMultiByte(codePage, flags, wide, size, bytes, capacity,
                                                      defaultChar, usedDefaultChar);
  }
  int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int size, LPWSTR wide,
                          int capacity) override {
    if (m_isWatching) {
      calls.push_back("in " + std::to_string(codePage) + " " + std::to_string(flags) + " " +
                      std::to_string(size));
    }
    return SystemPort<CodePage>().MultiByteToWideChar(codePage, flags, bytes, size, wide, capacity);
  }
  void Watch() { m_isWatching = true; }

  std::vector<std::string> calls;

 private:
  bool m_isWatching = false;
};

TEST_F(FrontPageConnection, RequestsGoOutAsUtf8AndAnswersAreReadInTheAnsiCodePage) {
  const std::string page = AnswerPage("");
  m_platform.answers = {Answer{.chunks = {page}}};
  CFrontPageConnection connection(OLESTR("http://h/d"));
  COpenServiceHandler handler;
  connection.m_handler = &handler;
  RecordingCodePage codePage;
  PortScope<CodePage> scope(codePage);
  codePage.Watch();
  EXPECT_TRUE(RunRequest(connection));
  EXPECT_THAT(codePage.calls,
              ::testing::ElementsAre("out 65001 0 19 76", "in 0 0 " + std::to_string(page.size())));
}

TEST_F(FrontPageConnection, ConversionsThatFailLeaveAnEmptyBodyAndNoPage) {
  for (int failAt = 1; failAt <= 2; ++failAt) {
    m_platform.answers = {Answer{.chunks = {AnswerPage(WebUrlLines("/a", "b"))}}};
    CFrontPageConnection connection(OLESTR("http://h/d"));
    CUrlToWebUrlHandler handler(OLESTR("http://h/d"));
    connection.m_handler = &handler;
    FaultCodePage fault(SystemPort<CodePage>(), failAt);
    PortScope<CodePage> scope(fault);
    EXPECT_TRUE(RunRequest(connection));
    EXPECT_EQ(m_platform.bodies.back().empty(), failAt == 1);
    EXPECT_EQ(Shown(handler.m_webUrlResult), failAt == 1 ? "/a" : "");
  }
}

TEST_F(FrontPageConnection, AShortageOfMemoryIsRaised) {
  CFrontPageConnection connection(OLESTR("http://h/d"));
  COpenServiceHandler handler;
  connection.m_handler = &handler;
  ASSERT_EQ(connection.Open(nullptr, nullptr), S_OK);
  ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  try {
    connection.SendRequest();
    ADD_FAILURE() << "nothing was raised";
  } catch (const _com_error& error) {
    EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
  }
}

TEST_F(FrontPageConnection, AShortageOfMemoryForTheAnswerIsRaisedToo) {
  m_platform.answers = {Answer{.chunks = {AnswerPage("")}}};
  CFrontPageConnection connection(OLESTR("http://h/d"));
  COpenServiceHandler handler;
  connection.m_handler = &handler;
  ASSERT_EQ(connection.Open(nullptr, nullptr), S_OK);
  ASSERT_EQ(connection.SendWithRetry(), S_OK);
  ASSERT_TRUE(connection.ReadResponse());
  ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  try {
    connection.ProcessResponse();
    ADD_FAILURE() << "nothing was raised";
  } catch (const _com_error& error) {
    EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
  }
}

class FrontPageResponse : public FrontPageConnection {
 protected:
  // The three ways in which a page is not loaded, and one in which it is and cannot be read.
  void Run(int failAt) {
    m_platform.answers = {Answer{.chunks = {AnswerPage(WebUrlLines("/a", "b"))}}};
    CFrontPageConnection connection(OLESTR("http://h/d"));
    connection.m_lastResult.m_status = 7;
    CUrlToWebUrlHandler handler(OLESTR("http://h/d"));
    handler.m_result.m_status = 8;
    connection.m_handler = &handler;
    FaultDom dom(failAt, E_UNEXPECTED);
    const bool run = RunRequest(connection);
    EXPECT_TRUE(run);
    EXPECT_EQ(handler.m_webUrlResult, WideString());
    EXPECT_EQ(handler.m_result.m_status, 8);
    EXPECT_EQ(connection.m_lastResult.m_status, 7);
  }
};

TEST_F(FrontPageResponse, ADocumentThatCannotBeMadeOrLoadedLeavesEverythingAsItWas) {
  const struct {
    int operation;
    const char* name;
  } cases[] = {{1, "CreateInstance"}, {2, "QueryInterface"}, {4, "loadXML"}};
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    Run(test.operation);
  }
}

TEST_F(FrontPageResponse, ADomThatFailsLaterIsRaised) {
  EXPECT_THROW(Run(3), _com_error) << "put_async";
  EXPECT_THROW(Run(5), _com_error) << "the first query";
  EXPECT_EQ(m_platform.OpenHandles(), 0);
}

}  // namespace
}  // namespace velandoc
