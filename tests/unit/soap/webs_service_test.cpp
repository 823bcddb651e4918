#include "soap/webs_service.h"

#include <gmock/gmock.h>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/unit/soap/service_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using testing::Printable;

std::string Result(const std::string& url) {
  return std::string("<WebUrlFromPageUrlResponse xmlns=\"") + testing::kService +
         "\"><WebUrlFromPageUrlResult>" + url +
         "</WebUrlFromPageUrlResult></WebUrlFromPageUrlResponse>";
}

class WebUrlFromPageUrlTest : public testing::ServiceTest {
 protected:
  // The web URL, or "none" for false.
  std::string Ask(Answer answer, LPCWSTR pageUrl = OLESTR("http://h/sites/a/b.xlsx")) {
    m_platform.answers = {std::move(answer)};
    Bstr webUrl(OLESTR("untouched"));
    const bool found = WebUrlFromPageUrl(pageUrl, webUrl);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    EXPECT_TRUE(found || webUrl.View() == OLESTR("untouched"));
    return found ? Printable(webUrl.Text().c_str()) : "none";
  }
  static std::string Run() {
    Bstr webUrl(OLESTR("untouched"));
    if (WebUrlFromPageUrl(OLESTR("http://h/a"), webUrl)) {
      return webUrl.View() == OLESTR("http://h/sites/a") ? "ok" : "wrong";
    }
    return webUrl.View() == OLESTR("untouched") ? "false" : "touched";
  }
};

TEST_F(WebUrlFromPageUrlTest, AsksTheWebsServiceAtTheRoot) {
  EXPECT_EQ(Ask(Xml(Envelope(Result("http://h.test/sites/a"))),
                OLESTR("http://h.test/sites/a/Shared Documents/b & c.xlsx?x#y")),
            "http://h.test/sites/a");
  EXPECT_THAT(Objects(), ElementsAre("h.test:80/_vti_bin/webs.asmx"));
  EXPECT_EQ(Action(0), "http://schemas.microsoft.com/sharepoint/soap/WebUrlFromPageUrl");
  EXPECT_EQ(Method(0),
            "WebUrlFromPageUrl* ( pageUrl* ( 'http://h.test/sites/a/Shared Documents/b & "
            "c.xlsx?x#y' ) )");
}

TEST_F(WebUrlFromPageUrlTest, AnHttpsPageOnPort8443IsAskedForOnPort443) {
  EXPECT_EQ(Ask(Xml(Envelope(Result("x"))), OLESTR("https://h:8443/a/b.xlsx")), "x");
  EXPECT_THAT(Objects(), ElementsAre("h:443/_vti_bin/webs.asmx"));
  EXPECT_EQ(Method(0), "WebUrlFromPageUrl* ( pageUrl* ( 'https://h:8443/a/b.xlsx' ) )");
}

TEST_F(WebUrlFromPageUrlTest, EveryKindOfEnvelopeIsRead) {
  for (const std::string& answer : Envelopes(Result("http://h/sites/\xC3\xA9"))) {
    EXPECT_EQ(Ask(Xml(answer)), "http://h/sites/\\u00e9") << answer;
  }
}

TEST_F(WebUrlFromPageUrlTest, TheValueIsTakenAsItIs) {
  const std::string open =
      std::string("<r:WebUrlFromPageUrlResponse xmlns:r='") + testing::kService + "'>";
  const std::string close = "</r:WebUrlFromPageUrlResponse>";
  const struct {
    std::string content;
    const char* url;
    const char* why;
  } cases[] = {
      {open + "<r:WebUrlFromPageUrlResult>http://h/a/</r:WebUrlFromPageUrlResult>" + close,
       "http://h/a/", "with its slash"},
      {open + "no URL & &lt;all&gt;" + close, "none", "a raw & is no XML"},
      {open + "no URL &amp; &lt;all&gt;" + close, "no URL & <all>", "anything"},
      {open + close, "", "an empty text is an answer"},
      {open + "\n  <r:WebUrlFromPageUrlResult>http://h/a</r:WebUrlFromPageUrlResult>\n" + close,
       "http://h/a", "indented"},
      {open + "<x>a</x><y>b</y>" + close, "ab", "all text of the response element"},
      {"<WebUrlFromPageUrlResponse>x</WebUrlFromPageUrlResponse>", "none", "in no namespace"},
      {"<WebUrlFromPageUrlResponse xmlns='urn:x'>x</WebUrlFromPageUrlResponse>", "none",
       "in another namespace"},
      {std::string("<WebUrlFromPageUrlResult xmlns='") + testing::kService +
           "'>x</WebUrlFromPageUrlResult>",
       "none", "the result without its response"},
      {Result("first") + Result("second"), "first", "the first of several"},
  };
  for (const auto& test : cases) EXPECT_EQ(Ask(Xml(Envelope(test.content))), test.url) << test.why;
}

TEST_F(WebUrlFromPageUrlTest, AFailedCallIsFalse) {
  for (const Refusal& refusal : Refusals()) EXPECT_EQ(Ask(refusal.answer), "none") << refusal.why;
}

TEST_F(WebUrlFromPageUrlTest, AUrlWithoutAHostIsNeverSent) {
  for (const LPCWSTR url : {LPCWSTR(nullptr), OLESTR(""), OLESTR("h/a"), OLESTR("\\\\h\\a")}) {
    EXPECT_EQ(Ask(Xml(Envelope(Result("x"))), url), "none") << Printable(url);
  }
  EXPECT_TRUE(m_platform.bodies.empty());
  m_platform.answers.clear();
}

TEST_F(WebUrlFromPageUrlTest, AFailureOfTheDomRaisesBeforeTheAnswerAndIsFalseBehindIt) {
  // Making the envelope: six calls, and the null document behind a failure. Then the parameters and
  // the request's text; the answer's document, of which two ways to fail are results; the reading.
  EXPECT_EQ(DomFaults({Xml(Envelope(Result("http://h/sites/a")))}, Run),
            "6 raised E_POINTER, 6 raised, 2 false, 1 raised, 1 false, 1 raised, 2 false");
}

TEST_F(WebUrlFromPageUrlTest, AFailureOfTheNetworkIsFalse) {
  // A first look at the status, or a dialog, that fails after a 200 does no harm.
  EXPECT_EQ(NetworkFaults({Xml(Envelope(Result("http://h/sites/a")))}, Run),
            "4 false, 2 ok, 3 false");
}

TEST_F(WebUrlFromPageUrlTest, AShortageOfMemoryRaises) {
  testing::ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  EXPECT_EQ(testing::OutcomeOf(Run), "raised E_OUTOFMEMORY");
  EXPECT_EQ(m_platform.OpenHandles(), 0);
}

}  // namespace
}  // namespace velandoc
