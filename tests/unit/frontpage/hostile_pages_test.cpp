// Pages that an unfriendly server could send: no crash, and time that grows with their size.

#include <algorithm>
#include <chrono>
#include <ctime>
#include <optional>

#include "frontpage/front_page_handler.h"
#include "tests/unit/frontpage/page_fixture.h"
#include "tests/unit/platform/dom_differences.h"

namespace velandoc {
namespace {

using testing::AnswerPage;
using testing::DocumentLines;
using testing::PagePairs;
using testing::WebUrlLines;

/// Generous: a sanitizer's build on a busy machine stays below it, work that grows with the square
/// of the size does not.
constexpr std::chrono::seconds kTimeLimit(120);

std::string Repeat(std::string_view text, std::size_t count) {
  std::string repeated;
  repeated.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) repeated += text;
  return repeated;
}

class HostilePages : public PageTest {
 protected:
  void TearDown() override { EXPECT_LT(std::chrono::steady_clock::now() - m_begin, kTimeLimit); }

  /// Whatever is read, all handlers read it. False if the page does not load.
  bool Read(std::string_view page) {
    if (Load(page) != S_OK) return false;
    m_meta.emplace(OLESTR("/"), OLESTR("a"));
    m_meta->ParseDocument(m_document.Get());
    m_service.emplace();
    m_service->ParseDocument(m_document.Get());
    m_web.emplace(OLESTR("http://h/a"));
    m_web->ParseDocument(m_document.Get());
    return true;
  }

  std::optional<CMetaInfoHandler> m_meta;
  std::optional<COpenServiceHandler> m_service;
  std::optional<CUrlToWebUrlHandler> m_web;

 private:
  std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

TEST_F(HostilePages, AMillionPairsAreRead) {
  const std::size_t count = 1'000'000;
  ASSERT_EQ(Load(AnswerPage("<ul>\n<li>document_name=d\n<li>meta_info=\n<ul>\n" +
                            Repeat("<li>k\n<li>v\n", count - 1) + "<li>last\n<li>w\n</ul>\n" +
                            "</ul>\n")),
            S_OK);
  CMetaInfoHandler handler(OLESTR("/"), OLESTR("a"));
  handler.ParseDocument(m_document.Get());
  EXPECT_TRUE(handler.m_foundMeta.m_hasDocument);
  EXPECT_EQ(Shown(handler.m_foundMeta), "k=v; last=w");
}

TEST_F(HostilePages, ManyKeysAreRead) {
  constexpr int count = 50'000;
  PagePairs pairs;
  for (int i = 0; i < count; ++i) pairs.emplace_back("k" + std::to_string(i), "SR|v");
  ASSERT_TRUE(Read(AnswerPage(DocumentLines("d", pairs))));
  EXPECT_EQ(m_meta->m_foundMeta.m_values.size(), std::size_t{count});
  EXPECT_EQ(Shown(m_meta->m_foundMeta.m_values[OLESTR("k49999")]), "SR|v");
}

TEST_F(HostilePages, WorkGrowsWithTheSizeOfThePage) {
  const struct {
    std::string_view lines;
    const char* why;
  } cases[] = {
      {"<ul>\n<ul>\n<li>url=f\n</ul>\n</ul>\n", "folders"},
      {"<ul>\n<ul>\n<li>x\n</ul>\n</ul>\n", "lists of other things"},
      {"<ul>\n<li>meta_info=\n</ul>\n", "services without pairs"},
      {"<li>document_name=d\n<li>meta_info=\n", "documents without pairs"},
      {"<p>status=\n", "status paragraphs"},
      {"<p>webUrl=/a\n<p>fileUrl=b\n", "webs"},
      {"<li>status=1\n<li>msg=x\ntail\n", "items with tails"},
      {"</body>\n<body>\n<p>x\n<ul>\n<ul>\n<li>y\n</ul>\n</ul>\n", "bodies"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.why);
    const auto read = [&](std::size_t count) {
      const std::string page = "<html>\n<body>\n<p>status=\n<ul>\n</ul>\n" +
                               Repeat(test.lines, count) + "</body>\n</html>\n";
      const std::clock_t begin = std::clock();
      EXPECT_TRUE(Read(page));
      // Shorter times say nothing.
      return std::max<std::clock_t>(std::clock() - begin, CLOCKS_PER_SEC / 50);
    };
    // Four times the page takes four times as long, or sixteen if the time grows with its square.
    constexpr std::size_t count = 5'000;
    bool isLinear = false;
    for (int attempt = 0; attempt < 3 && !isLinear; ++attempt) {
      const std::clock_t single = read(count);
      isLinear = read(4 * count) < 9 * single;
    }
    EXPECT_TRUE(isLinear);
  }
}

TEST_F(HostilePages, DeepNestingIsRefusedOrRead) {
  const auto nested = [](std::size_t depth) {
    return AnswerPage(Repeat("<ul>\n", depth) + "<li>document_name=d\n" + Repeat("</ul>\n", depth));
  };
  EXPECT_TRUE(Read(nested(100)));
  EXPECT_EQ(Shown(m_meta->m_result.m_meta.m_documentName), "d");
  // Where the DOM has no limit of its own, its parser may have one.
  EXPECT_FALSE(Read(nested(1'000)) && !kHasNoDepthLimit);
  Read(Repeat("<ul>\n", 1'000'000));
}

TEST_F(HostilePages, ItemsWithinItemsShareTheirText) {
  // Each of them has all of the text below it for its value.
  const std::string text(100'000, 'x');
  ASSERT_TRUE(Read("<html><body>" + Repeat("<li><p>", 100) + text + Repeat("</p></li>", 100) +
                   "</body></html>"));
  EXPECT_FALSE(m_meta->m_result.m_hasMeta);
}

TEST_F(HostilePages, HugeAttributeLists) {
  const auto tag = [](int count) {
    std::string page = "<html><body";
    for (int i = 0; i < count; ++i) page += " a" + std::to_string(i) + "='1'";
    return page + ">\n" + WebUrlLines("/a", "b") + "</body></html>\n";
  };
  ASSERT_TRUE(Read(tag(1'000)));
  EXPECT_EQ(Shown(m_web->m_webUrlResult), "/a");
  // Wine's parser has no limit here, and its time grows with the square of their number.
  if (!kIsWine) {
    EXPECT_FALSE(Read(tag(100'000)));
  }
}

TEST_F(HostilePages, EntitiesAreNotExpanded) {
  std::string laughs = "<!DOCTYPE html [<!ENTITY a0 \"ha\">";
  for (int i = 1; i < 30; ++i) {
    const std::string below = "&a" + std::to_string(i - 1) + ";";
    laughs += "<!ENTITY a" + std::to_string(i) + " \"" + below + below + "\">";
  }
  laughs += "]>\n<html>\n<body>\n<p>webUrl=&a29;\n</body>\n</html>\n";
  // Where the DOM takes a document type, its parser has a limit of its own.
  EXPECT_FALSE(Read(laughs));
  EXPECT_FALSE(Read("<html>\n<body>\n<p>webUrl=&a29;\n</body>\n</html>\n"));
}

TEST_F(HostilePages, CharactersThatXmlDoesNotHave) {
  const std::string_view characters[] = {{"\0", 1}, {"\x01", 1}, {"\x1F", 1}};
  for (const std::string_view character : characters) {
    EXPECT_FALSE(Read(AnswerPage(WebUrlLines(character, "b"))));
    EXPECT_FALSE(Read(std::string(character) + AnswerPage("")));
  }
  EXPECT_FALSE(Read(AnswerPage("<p>webUrl=&#0;\n")));
  EXPECT_FALSE(Read(AnswerPage("<p>webUrl=&#1;\n")));
  EXPECT_FALSE(Read(AnswerPage("<p>webUrl=&#55296;\n"))) << "half a surrogate pair";
  EXPECT_FALSE(Read(AnswerPage("<p>webUrl=&#1114112;\n"))) << "beyond Unicode";
}

TEST_F(HostilePages, MixedEncodings) {
  // Latin 1, UTF-8 and a byte that is neither, all taken as the page's own characters.
  ASSERT_TRUE(Read(AnswerPage(WebUrlLines("\xE9\xC3\xA9\xFF", "&#233;&#8364;&#128512;"))));
  EXPECT_EQ(Shown(m_web->m_webUrlResult), "\\u00e9\\u00c3\\u00a9\\u00ff");
  EXPECT_EQ(Shown(m_web->m_fileUrlResult), "\\u00e9\\u20ac\\ud83d\\ude00");
  // A declaration does not change what the text is read as.
  ASSERT_TRUE(Read("<?xml version=\"1.0\" encoding=\"utf-8\"?>" +
                   AnswerPage(WebUrlLines("\xC3\xA9", "b"))));
  EXPECT_EQ(Shown(m_web->m_webUrlResult), "\\u00c3\\u00a9");
  // UTF-16, and a byte order mark of UTF-8 as three characters in front of the page.
  EXPECT_FALSE(Read(std::string("\xFF\xFE<\0h\0t\0m\0l\0/\0>\0", 16)));
  EXPECT_FALSE(Read("\xEF\xBB\xBF" + AnswerPage("")));
}

TEST_F(HostilePages, LinesOfAnyLength) {
  ASSERT_TRUE(Read(AnswerPage(WebUrlLines("/" + std::string(1'000'000, 'a'), "b"))));
  EXPECT_EQ(m_web->m_webUrlResult.size(), 1'000'001U);
  ASSERT_TRUE(Read(AnswerPage(std::string(1'000'000, '\n') + WebUrlLines("/a", "b"))));
  EXPECT_EQ(Shown(m_web->m_webUrlResult), "/a");
}

}  // namespace
}  // namespace velandoc
