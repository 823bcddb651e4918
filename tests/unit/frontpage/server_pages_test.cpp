// Pages of servers that are known, through the handler that would get them: from the bytes of the
// answer to what the method is left with.

#include "frontpage/form_body.h"
#include "frontpage/front_page_connection.h"
#include "tests/unit/frontpage/page_fixture.h"
#include "tests/unit/platform/dom_differences.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::AnswerPage;
using testing::DocumentLines;
using testing::FolderLines;
using testing::PairLines;
using testing::ServiceLines;
using testing::StatusLines;
using testing::WebUrlLines;

class ServerPages : public ::testing::Test {
 protected:
  // As many reads of the largest size as it takes.
  static Answer AnswerOf(std::string_view page) {
    constexpr std::size_t largest = 8192;
    Answer answer;
    for (; !page.empty(); page.remove_prefix(std::min(largest, page.size()))) {
      answer.chunks.emplace_back(page.substr(0, largest));
    }
    return answer;
  }

  void Receive(CFrontPageHandler& handler, std::string_view page) {
    m_platform.answers = {AnswerOf(page)};
    CFrontPageConnection connection(OLESTR("http://h.test/a"));
    connection.m_handler = &handler;
    EXPECT_TRUE(RunRequest(connection));
  }

  std::string WebAndFile(std::string_view page) {
    CUrlToWebUrlHandler handler(OLESTR("http://h.test/a"));
    Receive(handler, page);
    return Shown(handler.m_webUrlResult) + " | " + Shown(handler.m_fileUrlResult);
  }

  /// "document NAME: pairs", "folder URL: pairs" or "nothing".
  std::string Found(std::string_view page) {
    CMetaInfoHandler handler(OLESTR("/"), OLESTR("a"));
    Receive(handler, page);
    const CDocumentMeta& meta = handler.m_foundMeta;
    if (meta.m_hasDocument) return "document " + Shown(meta.m_documentName) + ": " + Shown(meta);
    if (meta.m_hasUrlEntry) return "folder " + Shown(meta.m_urlEntry) + ": " + Shown(meta);
    return "nothing";
  }

  std::string Login(std::string_view page) {
    COpenServiceHandler handler;
    Receive(handler, page);
    return Shown(handler.m_result.m_meta.m_values[OLESTR("vti_username")]);
  }

  /// "status: message", or "none".
  std::string Status(std::string_view page) {
    CUrlToWebUrlHandler handler(OLESTR("http://h.test/a"));
    Receive(handler, page);
    if (!handler.m_result.m_hasStatus) return "none";
    return std::to_string(handler.m_result.m_status) + ": " +
           Shown(handler.m_result.m_statusMessage);
  }

  testing::ComScope m_com;
  testing::ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
};

TEST_F(ServerPages, TheSkeletonIsReadWithLineFeedsOnly) {
  const std::string page =
      "<html><head><title>vermeer RPC packet</title></head>\n"
      "<body>\n"
      "<p>method=url to web url:12.0.0.6665\n"
      "<p>webUrl=/sites/a\n"
      "<p>fileUrl=Shared Documents/b.xlsx\n"
      "</body>\n"
      "</html>\n";
  EXPECT_EQ(WebAndFile(page), "/sites/a | Shared Documents/b.xlsx");
}

TEST_F(ServerPages, TheLastLineFeedMayBeMissing) {
  std::string page = AnswerPage(WebUrlLines("/sites/a", "b"));
  page.pop_back();
  EXPECT_EQ(WebAndFile(page), "/sites/a | b");
}

TEST_F(ServerPages, WebAndFileComeInEitherOrder) {
  EXPECT_EQ(WebAndFile(AnswerPage("<p>webUrl=/sites/a\n<p>fileUrl=b\n")), "/sites/a | b");
  EXPECT_EQ(WebAndFile(AnswerPage("<p>fileUrl=b\n<p>webUrl=/sites/a\n")), "/sites/a | b");
}

TEST_F(ServerPages, TheFileMayBeEmpty) {
  EXPECT_EQ(WebAndFile(AnswerPage(WebUrlLines("/sites/a", ""))), "/sites/a | ");
}

TEST_F(ServerPages, ADocumentStandsInTheDocumentList) {
  const std::string page =
      "<html><head><title>vermeer RPC packet</title></head>\n"
      "<body>\n"
      "<p>method=getDocsMetaInfo:12.0.0.6665\n"
      "<p>document_list=\n"
      "<ul>\n"
      "<ul>\n"
      "<li>document_name=Shared Documents/b.xlsx\n"
      "<li>meta_info=\n"
      "<ul>\n"
      "<li>vti_timelastmodified\n"
      "<li>TR|04 Mar 2024 10:20:30 -0000\n"
      "<li>vti_etag\n"
      "<li>SW|&#34;&#123;7A-1&#125;,3&#34;\n"
      "</ul>\n"
      "</ul>\n"
      "</ul>\n"
      "<p>urldirs=\n"
      "<ul>\n"
      "</ul>\n"
      "</body>\n"
      "</html>\n";
  EXPECT_EQ(Found(page),
            "document Shared Documents/b.xlsx: vti_etag=SW|\"{7A-1},3\"; "
            "vti_timelastmodified=TR|04 Mar 2024 10:20:30 -0000");
}

TEST_F(ServerPages, AFolderStandsBehindAnEmptyDocumentList) {
  const std::string page = AnswerPage(
      "<p>document_list=\n"
      "<ul>\n"
      "</ul>\n"
      "<p>urldirs=\n"
      "<ul>\n"
      "<ul>\n"
      "<li>url=Shared Documents\n"
      "<li>meta_info=\n"
      "<ul>\n"
      "<li>vti_listname\n"
      "<li>SR|&#123;11-2&#125;\n"
      "</ul>\n"
      "</ul>\n"
      "</ul>\n");
  EXPECT_EQ(Found(page), "folder Shared Documents: vti_listname=SR|{11-2}");
}

TEST_F(ServerPages, AFolderMayStandInTheDocumentList) {
  EXPECT_EQ(Found(AnswerPage("<p>document_list=\n<ul>\n<ul>\n<li>url=f\n<li>meta_info=\n" +
                             PairLines({{"k", "SR|v"}}) + "</ul>\n</ul>\n")),
            "folder f: k=SR|v");
}

TEST_F(ServerPages, AFolderMayStandInBothLists) {
  const std::string entry =
      "<ul>\n<ul>\n<li>url=f\n<li>meta_info=\n" + PairLines({{"k", "SR|v"}}) + "</ul>\n</ul>\n";
  EXPECT_EQ(Found(AnswerPage("<p>document_list=\n" + entry + "<p>urldirs=\n" + entry)),
            "folder f: k=SR|v");
}

TEST_F(ServerPages, ADocumentAndAFolderAtOnceAreTheDocument) {
  EXPECT_EQ(Found(AnswerPage(DocumentLines("d", {{"k", "1"}}) +
                             "<p>urldirs=\n<ul>\n<ul>\n<li>url=f"
                             "\n<li>meta_info=\n" +
                             PairLines({{"k", "2"}}) + "</ul>\n</ul>\n")),
            "document d: k=1");
}

TEST_F(ServerPages, TheServiceTellsTheLogin) {
  const std::string page = AnswerPage(
      "<p>service=\n"
      "<ul>\n"
      "<li>service_name=/\n"
      "<li>meta_info=\n"
      "<ul>\n"
      "<li>vti_casesensitiveurls\n"
      "<li>IX|0\n"
      "<li>vti_username\n"
      "<li>SX|DOM&#92;bob\n"
      "</ul>\n"
      "</ul>\n");
  EXPECT_EQ(Login(page), "SX|DOM\\bob");
}

TEST_F(ServerPages, AStatusComesWithHttp200) {
  const std::string page = AnswerPage(
      "<p>status=\n"
      "<ul>\n"
      "<li>status=589830\n"
      "<li>osstatus=0\n"
      "<li>msg=There is no file with URL &#39;a&#39; in this web.\n"
      "<li>osmsg=\n"
      "</ul>\n");
  EXPECT_EQ(Status(page), "589830: There is no file with URL 'a' in this web.");
  EXPECT_EQ(Found(page), "nothing");
  EXPECT_EQ(WebAndFile(page), " | ");
  EXPECT_EQ(Login(page), "");
}

TEST_F(ServerPages, AStatusDoesNotHideWhatWasDelivered) {
  EXPECT_EQ(Found(AnswerPage(StatusLines("1", "m") + DocumentLines("d", {{"k", "v"}}))),
            "document d: k=v");
}

TEST_F(ServerPages, AllEscapesAreDecimalReferences) {
  EXPECT_EQ(Found(AnswerPage(DocumentLines("&#34;&#38;&#39;&#59;&#60;&#61;&#62;&#92;&#123;&#125;",
                                           {{"k", "SR|&#60;b&#62;"}}))),
            "document \"&';<=>\\{}: k=SR|<b>");
}

TEST_F(ServerPages, ALetterOfTwoBytesComesAndGoesAsTwoUnits) {
  CUrlToWebUrlHandler handler(OLESTR("http://h.test/a"));
  Receive(handler, AnswerPage(WebUrlLines("/", "Caf&#195;&#169;.xlsx")));
  EXPECT_EQ(handler.m_fileUrlResult,
            (WideString(OLESTR("Caf")) + OLECHAR{0xC3} + OLECHAR{0xA9} + OLESTR(".xlsx")));
  const CMetaInfoHandler next(handler.m_webUrlResult, handler.m_fileUrlResult);
  EXPECT_THAT(Shown(BuildRequestBody(next)),
              ::testing::HasSubstr("&url_list=%5bCaf%c3%a9.xlsx%5d&"));
}

TEST_F(ServerPages, RawBytesAreReadInTheAnsiCodePage) {
  CUrlToWebUrlHandler handler(OLESTR("http://h.test/a"));
  Receive(handler, AnswerPage(WebUrlLines("/", "Caf\xC3\xA9\x80.xlsx")));
  // The euro sign is where the code page is not Latin 1.
  EXPECT_EQ(Shown(handler.m_fileUrlResult), "Caf\\u00c3\\u00a9\\u20ac.xlsx");
}

TEST_F(ServerPages, APageWithCarriageReturnsLosesItsExactItems) {
  using testing::WithCarriageReturns;
  EXPECT_EQ(WebAndFile(WithCarriageReturns(AnswerPage(WebUrlLines("/sites/a", "b")))),
            "/sites/a | b")
      << "found by its beginning, and the end of the text is trimmed";
  const std::string document =
      WithCarriageReturns(AnswerPage(DocumentLines("d", {{"k", "v"}}) + StatusLines("5", "m")));
  EXPECT_EQ(Found(document), kMatchesAcrossCarriageReturn ? "document d: k=v" : "nothing");
  EXPECT_EQ(Status(document), kMatchesAcrossCarriageReturn ? "5: m" : "none");
  const std::string service =
      WithCarriageReturns(AnswerPage(ServiceLines({{"vti_username", "SX|bob"}})));
  EXPECT_EQ(Login(service), kMatchesAcrossCarriageReturn ? "SX|bob" : "");
}

TEST_F(ServerPages, ARawAmpersandMakesThePageUnreadable) {
  EXPECT_EQ(Found(AnswerPage(DocumentLines("R&D.xlsx", {{"k", "v"}}))), "nothing");
  EXPECT_EQ(WebAndFile(AnswerPage(WebUrlLines("/", "R & D.xlsx"))), " | ");
}

TEST_F(ServerPages, MarkupInAMessageIsReadAsText) {
  EXPECT_EQ(Status(AnswerPage(StatusLines("5", "The <b>file</b> is gone."))),
            "5: The file is gone.");
  EXPECT_EQ(Status(AnswerPage(StatusLines("5", "Gone.<br>Really."))), "none")
      << "unless it is no XML: then nothing is read at all";
}

TEST_F(ServerPages, ALineFeedInAValueKeepsThePairsAligned) {
  EXPECT_EQ(Found(AnswerPage(DocumentLines(
                "d", {{"vti_title", "SR|first line\nsecond line"}, {"vti_z", "SR|z"}}))),
            "document d: vti_title=SR|first line; vti_z=SR|z")
      << "the tail is text between the items";
}

TEST_F(ServerPages, PagesOfAnotherKindAreLeftAlone) {
  const char* const pages[] = {
      // a login page, as XML and as HTML
      "<html><head><title>Sign in</title></head><body><form action=\"/login\"><p>Name</p></form>"
      "</body></html>",
      "<!DOCTYPE html>\n<html>\n<head><meta charset=utf-8>\n<title>Sign in</title>\n<body>\n<input>"
      "\n</html>\n",
      "OK\n",
      "",
      "\n\n",
      "{\"error\":\"no\"}",
      "<?xml version=\"1.0\"?><soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/"
      "\"/>",
  };
  for (const char* const page : pages) {
    EXPECT_EQ(WebAndFile(page), " | ") << page;
    EXPECT_EQ(Found(page), "nothing") << page;
    EXPECT_EQ(Login(page), "") << page;
    EXPECT_EQ(Status(page), "none") << page;
  }
}

TEST_F(ServerPages, ANulInAReadHidesTheRestOfThatRead) {
  const std::string page = AnswerPage(WebUrlLines("/a", "b"));
  CUrlToWebUrlHandler handler(OLESTR("http://h.test/a"));
  const std::size_t half = page.find("<p>webUrl");
  m_platform.answers = {
      Answer{.chunks = {page.substr(0, half) + std::string("\0junk & <", 9), page.substr(half)}}};
  CFrontPageConnection connection(OLESTR("http://h.test/a"));
  connection.m_handler = &handler;
  EXPECT_TRUE(RunRequest(connection));
  EXPECT_EQ(Shown(handler.m_webUrlResult), "/a");
}

TEST_F(ServerPages, APageThatIsCutShortIsNoPage) {
  const std::string page = AnswerPage(DocumentLines("d", {{"k", "v"}}));
  // Without its final line feed a page is whole.
  for (std::size_t size = 0; size + 1 < page.size(); ++size) {
    ASSERT_EQ(Found(std::string_view(page).substr(0, size)), "nothing") << size;
  }
  EXPECT_EQ(Found(page), "document d: k=v");
}

}  // namespace
}  // namespace velandoc
