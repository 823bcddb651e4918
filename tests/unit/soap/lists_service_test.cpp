#include "soap/lists_service.h"

#include <gtest/gtest.h>

#include "platform/code_page.h"
#include "tests/support/dom_tree.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/fault_dom.h"
#include "tests/support/fault_wininet.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::ComScope;
using testing::ExhaustedCodePage;
using testing::FaultCodePage;
using testing::FaultDom;
using testing::FaultWinInet;
using testing::ScriptedWinInet;

constexpr char kLists[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>"
    "<soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>"
    "<GetListCollectionResponse xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">"
    "<GetListCollectionResult><Lists><List ID=\"{1}\"/></Lists></GetListCollectionResult>"
    "</GetListCollectionResponse></soap:Body></soap:Envelope>";

class GetListCollectionTest : public ::testing::Test {
 protected:
  bool Ask(LPCWSTR url, Answer answer) {
    m_platform.answers = {std::move(answer)};
    const bool found = GetListCollection(url);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    return found;
  }

  ComScope m_com;
  ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
};

TEST_F(GetListCollectionTest, AsksTheListsServiceAtTheRoot) {
  EXPECT_TRUE(Ask(OLESTR("http://h.test:8080/sites/a/b.xlsx?x"), Answer{.chunks = {kLists}}));
  EXPECT_EQ(m_platform.calls[1], "InternetConnectW(1, h.test, 80, null, null, 3, 0x200, 0)")
      << "on the scheme's default port";
  EXPECT_EQ(m_platform.calls[2],
            "HttpOpenRequestW(2, POST, /_vti_bin/lists.asmx, null, null, text/*, 0x400200, 0)");
  EXPECT_EQ(m_platform.headerBlocks[0],
            "Content-Type: text/xml; charset=utf-8\\u000aSOAPAction: "
            "http://schemas.microsoft.com/sharepoint/soap/GetListCollection");
  const std::string& body = m_platform.bodies[0];
  EXPECT_EQ(testing::TreeOfText(WideString(body.begin(), body.end())),
            "soap:Envelope{http://schemas.xmlsoap.org/soap/envelope/} ( "
            "soap:Body{http://schemas.xmlsoap.org/soap/envelope/} ( "
            "GetListCollection{http://schemas.microsoft.com/sharepoint/soap/} ) )");
}

TEST_F(GetListCollectionTest, HttpsIsAskedOnItsOwnDefaultPort) {
  EXPECT_TRUE(Ask(OLESTR("HTTPS://h:81/"), Answer{.chunks = {kLists}}));
  EXPECT_EQ(m_platform.calls[1], "InternetConnectW(1, h, 443, null, null, 3, 0x200, 0)");
  EXPECT_EQ(m_platform.calls[2],
            "HttpOpenRequestW(2, POST, /_vti_bin/lists.asmx, null, null, text/*, 0xc00200, 0)");
}

struct ProbeCase {
  Answer answer;
  bool found;
  const char* why;
};

Answer Xml(std::string text) { return Answer{.chunks = {std::move(text)}}; }

TEST_F(GetListCollectionTest, IsDecidedByTheResultNode) {
  const std::string open = "<r xmlns='http://schemas.microsoft.com/sharepoint/soap/'>";
  const ProbeCase cases[] = {
      {Xml(kLists), true, "the usual answer"},
      {Xml(open + "<GetListCollectionResult/></r>"), true, "a server with no lists"},
      {Xml("<p:r xmlns:p='http://schemas.microsoft.com/sharepoint/soap/'>\n "
           "<p:GetListCollectionResult>x</p:GetListCollectionResult>\n</p:r>"),
       true, "another prefix, indented"},
      {Xml("<GetListCollectionResult/>"), false, "in no namespace"},
      {Xml("<GetListCollectionResult xmlns='urn:x'/>"), false, "in another namespace"},
      {Xml(open + "<Result/></r>"), false, "no result node"},
      {Xml("<html><body>Sign in</body></html>"), false, "a login page that is XML"},
      {Xml("<html><br></html>"), false, "a login page that is none"},
      {Xml("not xml"), false, "no XML"},
      {Answer{}, false, "an empty body"},
      {Answer{.status = OLESTR("404"), .chunks = {kLists}}, false, "no such service"},
      {Answer{.status = OLESTR("500"), .chunks = {kLists}}, false, "a fault"},
      {Answer{.status = OLESTR("302"), .chunks = {kLists}}, false, "a redirect that got here"},
      {Answer{.status = OLESTR("401"), .chunks = {kLists}}, false, "declined credentials"},
      {Answer{.error = 12029}, false, "nobody listens"},
      {Answer{.error = 12007}, false, "no such host"},
      {Answer{.chunks = {kLists}, .readError = 12030}, false, "a body that breaks off"},
  };
  for (const ProbeCase& test : cases) {
    EXPECT_EQ(Ask(OLESTR("http://h/"), test.answer), test.found) << test.why;
  }
}

TEST_F(GetListCollectionTest, AUrlWithoutAHostIsNeverSent) {
  const LPCWSTR urls[] = {OLESTR("h.test"), OLESTR(""), nullptr, OLESTR("file:///c:/a"),
                          OLESTR("mailto://x")};
  for (const LPCWSTR url : urls) {
    EXPECT_FALSE(GetListCollection(url)) << testing::Printable(url);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
  }
  EXPECT_TRUE(m_platform.CallsOf("HttpSendRequestW").empty());
}

TEST_F(GetListCollectionTest, CredentialsThatFailEndInFalse) {
  for (int attempt = 0; attempt < 4; ++attempt) {
    m_platform.answers.push_back(Answer{.status = OLESTR("401")});
  }
  m_platform.dialogResults = {12032, 12032, 12032};
  EXPECT_FALSE(GetListCollection(OLESTR("http://h/")));
}

TEST_F(GetListCollectionTest, CredentialsThatServeEndInTrue) {
  m_platform.answers = {Answer{.status = OLESTR("401")}, Xml(kLists)};
  m_platform.dialogResults = {12032};
  EXPECT_TRUE(GetListCollection(OLESTR("http://h/")));
}

TEST_F(GetListCollectionTest, NoFailureOfTheDomGetsOut) {
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE(failAt);
    m_platform.answers = {Xml(kLists)};
    FaultDom dom(failAt, E_UNEXPECTED);
    EXPECT_EQ(GetListCollection(OLESTR("http://h/")), failAt == 0);
    EXPECT_EQ(dom.alive, 0);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    if (failAt == 0) operations = dom.Count();
    m_platform.answers.clear();
  }
  EXPECT_EQ(operations, 16);
}

TEST_F(GetListCollectionTest, NoFailureOfTheNetworkGetsOut) {
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE(failAt);
    m_platform.answers = {Xml(kLists)};
    FaultWinInet fault(m_platform, failAt, 12030);
    PortScope<WinInet> scope(fault);
    // A first look at the status, or a dialog, that fails after a 200 does no harm.
    EXPECT_EQ(GetListCollection(OLESTR("http://h/")), failAt == 0 || failAt == 5 || failAt == 6);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    if (failAt == 0) operations = fault.Count();
    m_platform.answers.clear();
  }
  EXPECT_EQ(operations, 9);
}

TEST_F(GetListCollectionTest, AShortageOfMemoryIsFalse) {
  ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  EXPECT_FALSE(GetListCollection(OLESTR("http://h/")));
  EXPECT_EQ(m_platform.OpenHandles(), 0);
}

TEST_F(GetListCollectionTest, NoFailureOfAConversionGetsOut) {
  for (int failAt = 1; failAt <= 3; ++failAt) {
    SCOPED_TRACE(failAt);
    m_platform.answers = {Xml(kLists)};
    FaultCodePage fault(SystemPort<CodePage>(), failAt);
    PortScope<CodePage> scope(fault);
    // The script answers an empty body too.
    EXPECT_EQ(GetListCollection(OLESTR("http://h/")), failAt == 2);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    m_platform.answers.clear();
  }
}

}  // namespace
}  // namespace velandoc
