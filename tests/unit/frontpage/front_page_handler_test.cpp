#include "frontpage/front_page_handler.h"

#include <type_traits>

#include "tests/unit/frontpage/page_fixture.h"

namespace velandoc {
namespace {

using testing::AnswerPage;
using testing::DocumentLines;
using testing::FolderLines;
using testing::PairLines;
using testing::ServiceLines;
using testing::StatusLines;
using testing::WebUrlLines;

// A method like those whose answers are read for status and meta-info alone.
class PlainHandler final : public CFrontPageHandler {
 public:
  PlainHandler() : CFrontPageHandler(OLESTR("/plain")) {}
};

class PlainUrlHandler final : public CFrontPageDocUrlHandlerBase {
 public:
  PlainUrlHandler(WideView web, WideView file) : CFrontPageDocUrlHandlerBase(web, file) {}
};

TEST(FrontPageHandler, ThePathsOfTheMethods) {
  EXPECT_EQ(Shown(PlainHandler().GetPath()), "/plain");
  EXPECT_EQ(Shown(CUrlToWebUrlHandler(OLESTR("http://h/a")).GetPath()),
            "/_vti_bin/shtml.dll/_vti_rpc");
  EXPECT_EQ(Shown(COpenServiceHandler().GetPath()), "_vti_bin/_vti_aut/author.dll")
      << "with no leading slash";
}

TEST(FrontPageHandler, TheRootWebAndAWebBelowItGiveTheTwoFormsOfThePath) {
  const struct {
    LPCWSTR web;
    const char* path;
  } cases[] = {
      {OLESTR("/"), "/_vti_bin/_vti_aut/author.dll"},
      {OLESTR("/sites/a"), "/sites/a/_vti_bin/_vti_aut/author.dll"},
      {OLESTR("/sites/a/"), "/sites/a//_vti_bin/_vti_aut/author.dll"},
      {OLESTR("//"), "///_vti_bin/_vti_aut/author.dll"},
      {OLESTR(""), "/_vti_bin/_vti_aut/author.dll"},
      {OLESTR("sites/a b"), "sites/a b/_vti_bin/_vti_aut/author.dll"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Shown(CMetaInfoHandler(test.web, OLESTR("f")).GetPath()), test.path);
    EXPECT_EQ(Shown(PlainUrlHandler(test.web, OLESTR("f")).GetPath()), test.path);
  }
}

TEST(FrontPageHandler, ParametersKeepTheirOrder) {
  PlainHandler handler;
  handler.AddParam(OLESTR("z"), OLESTR("1"));
  handler.AddParam(OLESTR("a"), OLESTR("2"));
  handler.AddParam(OLESTR("z"), OLESTR("3"));
  std::string shown;
  for (const auto& [name, value] : handler.m_params) {
    shown += Shown(name) + "=" + Shown(value) + " ";
  }
  EXPECT_EQ(shown, "z=1 a=2 z=3 ");
}

TEST(FrontPageHandler, IsNeverDeletedThroughABase) {
  EXPECT_FALSE(std::has_virtual_destructor_v<CFrontPageHandler>);
  EXPECT_FALSE(std::has_virtual_destructor_v<CFrontPageDocUrlHandlerBase>);
  EXPECT_FALSE(std::has_virtual_destructor_v<CMetaInfoHandler>);
  EXPECT_FALSE(std::has_virtual_destructor_v<COpenServiceHandler>);
  EXPECT_FALSE(std::has_virtual_destructor_v<CUrlToWebUrlHandler>);
}

template <class... Members>
bool AreInOrder(const Members&... members) {
  const void* const addresses[] = {&members...};
  return std::is_sorted(std::begin(addresses), std::end(addresses), std::less<>());
}

TEST(FrontPageHandler, MembersLieInTheirOrder) {
  CUrlToWebUrlHandler web(OLESTR("http://h/a"));
  EXPECT_TRUE(AreInOrder(web.m_path, web.m_params, web.m_result, web.m_components,
                         web.m_webUrlResult, web.m_fileUrlResult));
  CMetaInfoHandler meta(OLESTR("/"), OLESTR("f"));
  EXPECT_TRUE(AreInOrder(meta.m_path, meta.m_params, meta.m_result, meta.m_webPathArg,
                         meta.m_fileUrl, meta.m_foundMeta));
  const CFrontPageResult& result = meta.m_result;
  EXPECT_TRUE(AreInOrder(result.m_meta, result.m_extraText, result.m_statusMessage, result.m_status,
                         result.m_hasStatus, result.m_hasMeta));
}

TEST(FrontPageHandler, AResultStartsEmpty) {
  const CFrontPageResult result;
  EXPECT_EQ(result.m_extraText, WideString());
  EXPECT_EQ(result.m_statusMessage, WideString());
  EXPECT_EQ(result.m_status, 0);
  EXPECT_FALSE(result.m_hasStatus);
  EXPECT_FALSE(result.m_hasMeta);
  EXPECT_TRUE(result.m_meta.m_values.empty());
}

TEST(FrontPageHandler, TheUrlIsCrackedAsItIsGiven) {
  const CUrlToWebUrlHandler handler(OLESTR("HTTPS://u:p@h.test:81/a%20b/c d?x=y"));
  EXPECT_EQ(testing::Printable(handler.m_components.urlPath), "/a%20b/c d");
  EXPECT_EQ(handler.m_components.port, 81);
  const CUrlToWebUrlHandler failed(OLESTR("h.test/a"));
  EXPECT_EQ(failed.m_components.schemeIndex, -1);
  EXPECT_EQ(testing::Printable(failed.m_components.urlPath), "");
}

class ParseDocumentTest : public PageTest {
 protected:
  template <class Handler>
  void Parse(Handler& handler, std::string_view lines) {
    ASSERT_EQ(Load(AnswerPage(lines)), S_OK) << lines;
    handler.ParseDocument(m_document.Get());
  }
};

TEST_F(ParseDocumentTest, APlainMethodReadsStatusAndMetaInfo) {
  PlainHandler handler;
  Parse(handler, DocumentLines("d", {{"k", "v"}}) + StatusLines("3", "m"));
  EXPECT_TRUE(handler.m_result.m_hasStatus);
  EXPECT_EQ(handler.m_result.m_status, 3);
  EXPECT_EQ(Shown(handler.m_result.m_statusMessage), "m");
  EXPECT_TRUE(handler.m_result.m_hasMeta);
  EXPECT_EQ(Shown(handler.m_result.m_meta), "k=v");
  EXPECT_EQ(handler.m_result.m_extraText, WideString());
  Parse(handler, "");
  EXPECT_FALSE(handler.m_result.m_hasStatus) << "set by each page";
  EXPECT_FALSE(handler.m_result.m_hasMeta);
  EXPECT_EQ(handler.m_result.m_status, 3) << "what is not there stays";

  PlainUrlHandler below(OLESTR("/"), OLESTR("f"));
  Parse(below, DocumentLines("d", {{"k", "v"}}));
  EXPECT_EQ(Shown(below.m_result.m_meta), "k=v");
}

TEST_F(ParseDocumentTest, AStatusOfZeroSetsTheFlag) {
  PlainHandler handler;
  Parse(handler, StatusLines("0", ""));
  EXPECT_TRUE(handler.m_result.m_hasStatus);
  EXPECT_EQ(handler.m_result.m_status, 0);
}

TEST_F(ParseDocumentTest, MetaInfoOfADocumentIsFound) {
  CMetaInfoHandler handler(OLESTR("/"), OLESTR("f"));
  Parse(handler, DocumentLines("d", {{"k", "v"}}));
  EXPECT_TRUE(handler.m_foundMeta.m_hasDocument);
  EXPECT_FALSE(handler.m_foundMeta.m_hasUrlEntry);
  EXPECT_EQ(Shown(handler.m_foundMeta), "k=v");
  EXPECT_EQ(Shown(handler.m_foundMeta.m_documentName), "d");
}

TEST_F(ParseDocumentTest, AFolderInAnswerToADocumentIsNoDocument) {
  CMetaInfoHandler handler(OLESTR("/"), OLESTR("f"));
  Parse(handler, "<p>document_list=\n<ul>\n<ul>\n<li>url=f\n<li>meta_info=\n" +
                     PairLines({{"k", "v"}}) + "</ul>\n</ul>\n");
  EXPECT_TRUE(handler.m_foundMeta.m_hasUrlEntry);
  EXPECT_FALSE(handler.m_foundMeta.m_hasDocument);
  EXPECT_EQ(Shown(handler.m_foundMeta.m_urlEntry), "f");
}

TEST_F(ParseDocumentTest, AnOddListIsNotFound) {
  CMetaInfoHandler handler(OLESTR("/"), OLESTR("f"));
  Parse(handler,
        "<ul>\n<li>document_name=d\n<li>meta_info=\n<ul>\n<li>k\n<li>v\n<li>x\n</ul>\n"
        "</ul>\n");
  EXPECT_EQ(Shown(handler.m_result.m_meta), "k=v");
  EXPECT_EQ(Shown(handler.m_result.m_meta.m_documentName), "d");
  EXPECT_FALSE(handler.m_result.m_hasMeta);
  EXPECT_FALSE(handler.m_foundMeta.m_hasDocument);
  EXPECT_EQ(Shown(handler.m_foundMeta), "");
  EXPECT_EQ(handler.m_foundMeta.m_documentName, WideString());
}

TEST_F(ParseDocumentTest, PairsOfTheBodyAreFoundWithoutAFlag) {
  CMetaInfoHandler handler(OLESTR("/"), OLESTR("f"));
  Parse(handler, "<p>meta_info=\n" + PairLines({{"k", "v"}}));
  EXPECT_TRUE(handler.m_result.m_hasMeta);
  EXPECT_EQ(Shown(handler.m_foundMeta), "k=v");
  EXPECT_FALSE(handler.m_foundMeta.m_hasDocument);
  EXPECT_FALSE(handler.m_foundMeta.m_hasUrlEntry);
}

struct WebUrlCase {
  std::string lines;
  const char* web;
  const char* file;
  const char* why;
};

TEST_F(ParseDocumentTest, TheWebUrlAndTheFileUrl) {
  const WebUrlCase cases[] = {
      {WebUrlLines("/sites/a", "Shared Documents/b.xlsx"), "/sites/a", "Shared Documents/b.xlsx",
       "in the usual order"},
      {"<p>fileUrl=b.xlsx\n<p>webUrl=/\n", "/", "b.xlsx", "in the other one"},
      {WebUrlLines("/sites/a", ""), "/sites/a", "", "no file"},
      {"<p>webUrl=/a\n", "/a", "", "no line of the file"},
      {"<p>fileUrl=b\n", "", "b", "no line of the web"},
      {StatusLines("1", "m"), "", "", "neither"},
      {"<div>\n<p>webUrl=/a\n</div>\n<p>webUrl=/b\n", "/a", "", "the first, anywhere"},
      {"<p>webUrl=/a=b\n<p>fileUrl=webUrl=x\n", "/a=b", "webUrl=x", "further equals signs"},
      {"<p>weburl=/a\n<p>FileUrl=b\n", "", "", "case counts"},
  };
  for (const WebUrlCase& test : cases) {
    CUrlToWebUrlHandler handler(OLESTR("http://h/a"));
    Parse(handler, test.lines);
    EXPECT_EQ(Shown(handler.m_webUrlResult), test.web) << test.why;
    EXPECT_EQ(Shown(handler.m_fileUrlResult), test.file) << test.why;
  }
}

TEST_F(ParseDocumentTest, TheWebUrlComesWithStatusAndMetaInfo) {
  CUrlToWebUrlHandler handler(OLESTR("http://h/a"));
  Parse(handler, WebUrlLines("/a", "b") + StatusLines("4", "") + DocumentLines("d", {{"k", "v"}}));
  EXPECT_TRUE(handler.m_result.m_hasStatus);
  EXPECT_TRUE(handler.m_result.m_hasMeta);
  EXPECT_EQ(Shown(handler.m_result.m_meta), "k=v");
}

TEST_F(ParseDocumentTest, TheServicesPairsLandInTheResultWithBothFlagsFalse) {
  COpenServiceHandler handler;
  Parse(handler, ServiceLines({{"vti_username", "SX|D\\bob"}}) + StatusLines("1", "m"));
  EXPECT_EQ(Shown(handler.m_result.m_meta), "vti_username=SX|D\\bob");
  EXPECT_FALSE(handler.m_result.m_hasMeta);
  EXPECT_FALSE(handler.m_result.m_hasStatus) << "nobody looks for a status then";
  EXPECT_FALSE(handler.m_result.m_meta.m_hasDocument);
  EXPECT_FALSE(handler.m_result.m_meta.m_hasUrlEntry);
}

TEST_F(ParseDocumentTest, TheServicesPairsNeedNotBeWellFormed) {
  COpenServiceHandler handler;
  Parse(handler, "<ul>\n<li>meta_info=\n<ul>\n<li>k\n<li>v\n<li>x\n</ul>\n</ul>\n");
  EXPECT_EQ(Shown(handler.m_result.m_meta), "k=v");
}

TEST_F(ParseDocumentTest, AServiceWithoutPairsIsReadLikeAnyAnswer) {
  COpenServiceHandler handler;
  Parse(handler, StatusLines("1", "m") + DocumentLines("d", {{"k", "v"}}));
  EXPECT_TRUE(handler.m_result.m_hasStatus);
  EXPECT_TRUE(handler.m_result.m_hasMeta);
  EXPECT_EQ(Shown(handler.m_result.m_meta), "k=v");
}

}  // namespace
}  // namespace velandoc
