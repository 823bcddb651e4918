#include "frontpage/resolve_document.h"

#include "tests/support/fault_code_page.h"
#include "tests/unit/frontpage/flow_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::AnswerPage;
using testing::DocumentLines;
using testing::FolderLines;
using testing::PagePairs;
using testing::Printable;
using testing::Shown;
using testing::StatusLines;
using testing::WebUrlLines;

constexpr LPCWSTR kUrl = OLESTR("http://h.test:8080/sites/a/Shared%20Documents/b.xlsx");

// Parts of the three bodies.
constexpr char kWebRequest[] = "method=url+to+web+url";
constexpr char kDocumentRequest[] = "url_list=%5bShared+Documents%2fb.xlsx%5d";
constexpr char kFolderRequest[] = "url_list=%5bShared+Documents%5d";

const PagePairs& DocumentPairs() {
  static const PagePairs pairs = {{"vti_etag", "SW|&#34;&#123;7A-1&#125;,3&#34;"},
                                  {"ContentTypeId", "SR|0x0101"},
                                  {"vti_timelastmodified", "TR|04 Mar 2024 10:20:30 -0000"}};
  return pairs;
}

class ResolveDocumentTest : public testing::FlowTest {
 protected:
  ResolveDocumentTest() {
    Reply(kWebRequest, AnswerPage(WebUrlLines("/sites/a", "Shared Documents/b.xlsx")));
    Reply(kDocumentRequest, AnswerPage(DocumentLines("Shared Documents/b.xlsx", DocumentPairs())));
    Reply(kFolderRequest,
          AnswerPage(FolderLines("Shared Documents", {{"vti_listname", "SR|&#123;11-2&#125;"}})));
  }

  void Reply(const std::string& request, std::string_view page) { Reply(request, Page(page)); }
  void Reply(const std::string& request, Answer answer) {
    for (auto& [part, reply] : m_site.replies) {
      if (part == request) {
        reply = std::move(answer);
        return;
      }
    }
    m_site.replies.emplace_back(request, std::move(answer));
  }

  // The result, and what was written: id, list, content type, web, and the number of pairs. "-" for
  // what was not.
  static std::string Resolve(LPCWSTR url = kUrl) {
    Bstr id(OLESTR("-"));
    Bstr list(OLESTR("-"));
    Bstr type(OLESTR("-"));
    Bstr web(OLESTR("-"));
    CDocumentMeta meta;
    meta.m_urlEntry = OLESTR("untouched");
    std::string outcome;
    try {
      outcome = ResolveDocument(url, &id, &list, &type, &web, &meta) ? "true" : "false";
    } catch (const _com_error& error) {
      EXPECT_TRUE(error.Error() == E_UNEXPECTED || error.Error() == E_POINTER) << error.Error();
      outcome = "raised";
    }
    outcome += " " + Shown(id) + " " + Shown(list) + " " + Shown(type) + " " + Shown(web) + " ";
    const bool isUntouched = meta.m_urlEntry == OLESTR("untouched");
    EXPECT_TRUE(!isUntouched || meta.m_values.empty());
    return outcome + (isUntouched ? "-" : std::to_string(meta.m_values.size()));
  }

  std::vector<std::string> Objects() const {
    std::vector<std::string> objects;
    for (const std::string& call : m_site.CallsOf("HttpOpenRequestW")) {
      const std::size_t begin = call.find("POST, ") + 6;
      objects.push_back(call.substr(begin, call.find(',', begin) - begin));
    }
    return objects;
  }
};

constexpr char kWhole[] = "true {7A-1} {11-2} 0x0101 /sites/a 3";
constexpr char kNoDocument[] = "false - {11-2} - /sites/a -";
constexpr char kNoFolder[] = "false {7A-1} - 0x0101 /sites/a 3";
constexpr char kNothing[] = "false - - - - -";

TEST_F(ResolveDocumentTest, TakesThreeRequestsOnOneConnection) {
  EXPECT_EQ(Resolve(), kWhole);
  EXPECT_THAT(m_site.CallsOf("InternetOpenW").size(), 1U);
  EXPECT_THAT(m_site.CallsOf("InternetConnectW"),
              ::testing::ElementsAre("InternetConnectW(1, h.test, 8080, null, null, 3, 0x200, 0)"));
  EXPECT_THAT(Objects(), ::testing::ElementsAre("/_vti_bin/shtml.dll/_vti_rpc",
                                                "/sites/a/_vti_bin/_vti_aut/author.dll",
                                                "/sites/a/_vti_bin/_vti_aut/author.dll"));
  EXPECT_THAT(
      m_site.bodies,
      ::testing::ElementsAre(
          "method=url+to+web+url%3a12.0.0.6665&url=%2fsites%2fa%2fShared%2520Documents%2fb.xlsx",
          "method=getDocsMetaInfo%3a12.0.0.6665&service_name=%2f&url_list=%5bShared+Documents%2fb."
          "xlsx%5d&listHiddenDocs=false&listLinkInfo=true",
          "method=getDocsMetaInfo%3a12.0.0.6665&service_name=%2f&url_list=%5bShared+Documents%5d&"
          "listHiddenDocs=false&listLinkInfo=true"));
  EXPECT_THAT(m_site.CallsOf("InternetCloseHandle"),
              ::testing::ElementsAre("InternetCloseHandle(3)", "InternetCloseHandle(4)",
                                     "InternetCloseHandle(5)", "InternetCloseHandle(2)",
                                     "InternetCloseHandle(1)"))
      << "each request before the next";
}

TEST_F(ResolveDocumentTest, TheMetaInfoIsTheDocuments) {
  CDocumentMeta meta;
  meta.m_values[OLESTR("old")] = OLESTR("x");
  EXPECT_TRUE(ResolveDocument(kUrl, nullptr, nullptr, nullptr, nullptr, &meta));
  EXPECT_EQ(Printable(meta.m_documentName.c_str()), "Shared Documents/b.xlsx");
  EXPECT_TRUE(meta.m_hasDocument);
  EXPECT_FALSE(meta.m_hasUrlEntry);
  EXPECT_EQ(meta.m_values.count(OLESTR("old")), 0U);
  EXPECT_EQ(Printable(meta.m_values[OLESTR("vti_timelastmodified")].c_str()),
            "TR|04 Mar 2024 10:20:30 -0000");
}

TEST_F(ResolveDocumentTest, NoResultNeedBeWanted) {
  EXPECT_TRUE(ResolveDocument(kUrl, nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ(m_site.bodies.size(), 3U);
}

struct FolderCase {
  const char* file;
  const char* document;
  const char* folder;
  const char* why;
};

TEST_F(ResolveDocumentTest, TheFolderIsWhatStandsBeforeTheLastSlash) {
  const FolderCase cases[] = {
      {"b.xlsx", "%5bb.xlsx%5d", "%5b%5d", "a document in the root folder of its web"},
      {"Docs/b.xlsx", "%5bDocs%2fb.xlsx%5d", "%5bDocs%5d", "two levels"},
      {"Lists/A/b", "%5bLists%2fA%2fb%5d", "%5bLists%2fA%5d", "three levels"},
      {"/b", "%5b%2fb%5d", "%5b%2fb%5d", "a lone slash in front changes nothing"},
      {"/a/b", "%5b%2fa%2fb%5d", "%5b%2fa%5d", "one in front of others"},
      {"a/", "%5ba%2f%5d", "%5ba%5d", "a slash at the end"},
      {"", "%5b%5d", "%5b%5d", "no file"},
  };
  for (const FolderCase& test : cases) {
    m_site.bodies.clear();
    m_site.replies = {{kWebRequest, Page(AnswerPage(WebUrlLines("/", test.file)))},
                      {"getDocsMetaInfo", Page(AnswerPage(""))}};
    EXPECT_EQ(Resolve(), "false - - - / -") << test.why;
    ASSERT_EQ(m_site.bodies.size(), 3U);
    EXPECT_THAT(m_site.bodies[1],
                ::testing::HasSubstr("&url_list=" + std::string(test.document) + "&"))
        << test.why;
    EXPECT_THAT(m_site.bodies[2],
                ::testing::HasSubstr("&url_list=" + std::string(test.folder) + "&"))
        << test.why;
  }
}

TEST_F(ResolveDocumentTest, TheListIsThatOfTheFirstLevelFolder) {
  m_site.replies = {
      {kWebRequest, Page(AnswerPage(WebUrlLines("/", "Docs/b")))},
      {"url_list=%5bDocs%5d", Page(AnswerPage(FolderLines("Docs", {{"vti_listname", "SR|list"}})))},
      {"url_list=%5bDocs%2fb%5d",
       Page(AnswerPage(DocumentLines("b", {{"vti_listname", "SR|other"}})))}};
  EXPECT_EQ(Resolve(), "true  list - / 1");
}

TEST_F(ResolveDocumentTest, TheRootWebAndAWebBelowItGiveTheirPaths) {
  const struct {
    const char* web;
    const char* path;
  } cases[] = {{"/", "/_vti_bin/_vti_aut/author.dll"},
               {"/sites/a", "/sites/a/_vti_bin/_vti_aut/author.dll"},
               {"/b", "/b/_vti_bin/_vti_aut/author.dll"}};
  for (const auto& test : cases) {
    m_site.calls.clear();
    m_site.replies[0].second = Page(AnswerPage(WebUrlLines(test.web, "Shared Documents/b.xlsx")));
    EXPECT_EQ(Resolve(), std::string("true {7A-1} {11-2} 0x0101 ") + test.web + " 3");
    EXPECT_EQ(Objects()[1], test.path);
    EXPECT_EQ(Objects()[2], test.path);
  }
}

TEST_F(ResolveDocumentTest, AFailedWebRequestEndsItWithNothingWritten) {
  for (const auto& [answer, why] : FailedRequests()) {
    m_site.bodies.clear();
    Reply(kWebRequest, answer);
    EXPECT_EQ(Resolve(), kNothing) << why;
    EXPECT_EQ(m_site.bodies.size(), 1U) << why;
  }
  EXPECT_EQ(Resolve(OLESTR("h.test/a")), kNothing);
  EXPECT_EQ(Resolve(nullptr), kNothing);
}

TEST_F(ResolveDocumentTest, AMissingWebOrFileGoesOutEmpty) {
  m_site.replies = {{kWebRequest, Page(AnswerPage("<p>fileUrl=a/b\n"))},
                    {"getDocsMetaInfo", Page(AnswerPage(""))}};
  EXPECT_EQ(Resolve(), "false - - -  -");
  EXPECT_EQ(Objects()[1], "/_vti_bin/_vti_aut/author.dll");
  EXPECT_THAT(m_site.bodies[1], ::testing::HasSubstr("&url_list=%5ba%2fb%5d&"));

  m_site.calls.clear();
  m_site.bodies.clear();
  m_site.replies[0].second = Page(AnswerPage("<p>webUrl=/sites/a\n"));
  EXPECT_EQ(Resolve(), "false - - - /sites/a -");
  EXPECT_EQ(Objects()[2], "/sites/a/_vti_bin/_vti_aut/author.dll");
  EXPECT_THAT(m_site.bodies[1], ::testing::HasSubstr("&url_list=%5b%5d&"));
  EXPECT_THAT(m_site.bodies[2], ::testing::HasSubstr("&url_list=%5b%5d&"));
}

TEST_F(ResolveDocumentTest, AWebPageThatCannotBeReadIsOneWithoutWebAndFile) {
  for (const std::string& page : UnreadablePages()) {
    m_site.bodies.clear();
    m_site.replies = {{kWebRequest, Page(page)}, {"getDocsMetaInfo", Page(AnswerPage(""))}};
    EXPECT_EQ(Resolve(), "false - - -  -") << page;
    EXPECT_EQ(m_site.bodies.size(), 3U) << page;
  }
}

TEST_F(ResolveDocumentTest, AFailedDocumentRequestStillLearnsTheList) {
  for (const auto& [answer, why] : FailedRequests()) {
    Reply(kDocumentRequest, answer);
    EXPECT_EQ(Resolve(), kNoDocument) << why;
  }
  for (const std::string& page : UnreadablePages()) {
    Reply(kDocumentRequest, page);
    EXPECT_EQ(Resolve(), kNoDocument) << page;
  }
}

TEST_F(ResolveDocumentTest, AFailedFolderRequestStillLearnsTheDocument) {
  for (const auto& [answer, why] : FailedRequests()) {
    Reply(kFolderRequest, answer);
    EXPECT_EQ(Resolve(), kNoFolder) << why;
  }
  for (const std::string& page : UnreadablePages()) {
    Reply(kFolderRequest, page);
    EXPECT_EQ(Resolve(), kNoFolder) << page;
  }
}

TEST_F(ResolveDocumentTest, AMalformedListDeliversNothing) {
  const std::string odd = "<ul>\n<li>vti_etag\n<li>SW|x\n<li>y\n</ul>\n";
  Reply(kDocumentRequest,
        AnswerPage("<ul>\n<li>document_name=b\n<li>meta_info=\n" + odd + "</ul>\n"));
  EXPECT_EQ(Resolve(), kNoDocument);
  Reply(kFolderRequest,
        AnswerPage("<ul>\n<ul>\n<li>url=f\n<li>meta_info=\n" + odd + "</ul>\n</ul>\n"));
  EXPECT_EQ(Resolve(), "false - - - /sites/a -");
}

TEST_F(ResolveDocumentTest, ADocumentAnsweredAsAFolderHasNoId) {
  Reply(kDocumentRequest, AnswerPage(FolderLines("Shared Documents/b.xlsx", DocumentPairs())));
  EXPECT_EQ(Resolve(), kNoDocument);
}

TEST_F(ResolveDocumentTest, AFolderAnsweredAsADocumentHasNoList) {
  Reply(kFolderRequest,
        AnswerPage(DocumentLines("Shared Documents", {{"vti_listname", "SR|{11-2}"}})));
  EXPECT_EQ(Resolve(), kNoFolder);
}

TEST_F(ResolveDocumentTest, AMissingContentTypeStaysUnwritten) {
  Reply(kDocumentRequest, AnswerPage(DocumentLines("b", {{"vti_etag", "SW|x"}})));
  EXPECT_EQ(Resolve(), "true x {11-2} - /sites/a 1");
  Reply(kDocumentRequest,
        AnswerPage(DocumentLines("b", {{"vti_etag", "SW|x"}, {"ContentTypeId", "SR|"}})));
  EXPECT_EQ(Resolve(), "true x {11-2} - /sites/a 2") << "and so does an empty one";
}

TEST_F(ResolveDocumentTest, AMissingIdAndListAreWrittenEmpty) {
  Reply(kDocumentRequest, AnswerPage(DocumentLines("b", {{"k", "v"}})));
  Reply(kFolderRequest, AnswerPage(FolderLines("f", {{"k", "v"}})));
  EXPECT_EQ(Resolve(), "true   - /sites/a 1");
}

TEST_F(ResolveDocumentTest, AStatusEndsNothing) {
  Reply(kWebRequest,
        AnswerPage(StatusLines("1", "m") + WebUrlLines("/sites/a", "Shared Documents/b.xlsx")));
  Reply(kDocumentRequest, AnswerPage(StatusLines("589830", "No such file.")));
  EXPECT_EQ(Resolve(), kNoDocument);
}

TEST_F(ResolveDocumentTest, ALetterBeyondAsciiComesBackAsItWasSent) {
  m_site.replies = {
      {kWebRequest, Page(AnswerPage(WebUrlLines("/", "Caf&#195;&#169;/b")))},
      {"url_list=%5bCaf%c3%a9%2fb%5d", Page(AnswerPage(DocumentLines("b", DocumentPairs())))},
      {"url_list=%5bCaf%c3%a9%5d", Page(AnswerPage(FolderLines("f", {{"vti_listname", "SR|l"}})))}};
  EXPECT_EQ(Resolve(), "true {7A-1} l 0x0101 / 3");
}

TEST_F(ResolveDocumentTest, EachFailureOfTheNetworkCostsWhatItsRequestDelivers) {
  // The first look at the status, and the dialog behind a 200, may fail without harm.
  const std::string whole = kWhole;
  EXPECT_EQ(NetworkFaults([] { return Resolve(); }),
            "1 " + whole + "; 4 " + kNothing + ", 2 " + whole + ", 3 " + kNothing + ", 2 " +
                kNoDocument + ", 2 " + whole + ", 3 " + kNoDocument + ", 2 " + kNoFolder + ", 2 " +
                whole + ", 3 " + kNoFolder);
}

TEST_F(ResolveDocumentTest, EachFailureOfAConversionCostsWhatItsRequestDelivers) {
  // The first conversion escapes the URL, without which there is no host. A body that does not
  // convert goes out empty, and nobody answers that.
  m_site.replies.emplace_back("", Answer{.status = OLESTR("400")});
  const std::string whole = kWhole;
  EXPECT_EQ(ConversionFaults([] { return Resolve(); }), "1 " + whole + "; 2 " + kNothing +
                                                            ", 1 false - - -  -, 2 " + kNoDocument +
                                                            ", 2 " + kNoFolder);
}

TEST_F(ResolveDocumentTest, EachFailureOfTheDomIsAnUnreadPageOrRaised) {
  // Making and loading a document may fail: the page is as good as unread. All else raises, and
  // what was written by then stays.
  const std::string unread = "false - - -  -";
  const std::string raisedByWeb = "raised - - - - -";
  const std::string raisedByDocument = "raised - - - /sites/a -";
  const std::string raisedByFolder = "raised {7A-1} - 0x0101 /sites/a 3";
  m_site.replies.emplace_back("", Page(AnswerPage("")));
  EXPECT_EQ(DomFaults([] { return Resolve(); }),
            std::string("1 ") + kWhole + "; 2 " + unread + ", 1 " + raisedByWeb + ", 1 " + unread +
                ", 8 " + raisedByWeb + ", 2 " + kNoDocument + ", 1 " + raisedByDocument + ", 1 " +
                kNoDocument + ", 20 " + raisedByDocument + ", 2 " + kNoFolder + ", 1 " +
                raisedByFolder + ", 1 " + kNoFolder + ", 12 " + raisedByFolder);
}

TEST_F(ResolveDocumentTest, AShortageOfMemoryIsRaised) {
  testing::ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  try {
    ResolveDocument(kUrl, nullptr, nullptr, nullptr, nullptr, nullptr);
    ADD_FAILURE() << "nothing was raised";
  } catch (const _com_error& error) {
    EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
  }
  EXPECT_EQ(m_site.OpenHandles(), 0);
}

}  // namespace
}  // namespace velandoc
