#include "frontpage/page_reader.h"

#include <string>
#include <vector>

#include "tests/unit/frontpage/page_fixture.h"
#include "tests/unit/platform/dom_differences.h"

namespace velandoc {
namespace {

using testing::AnswerPage;
using testing::DocumentLines;
using testing::FaultDom;
using testing::FolderLines;
using testing::PairLines;
using testing::StatusLines;

struct RepairCase {
  const char* page;
  const char* repaired;
  const char* why;
};

TEST(RepairPage, ClosesWhatALineOpens) {
  const RepairCase cases[] = {
      {"", "", "nothing"},
      {"\n", "", "an empty line"},
      {"a\nb", "ab", "the lines are joined with nothing between"},
      {"a\nb\n", "ab", "a final line feed changes nothing"},
      {"<p>a\n<li>b\n", "<p>a</p><li>b</li>", "one of each"},
      {"<p>a\n\n\n<li>b", "<p>a</p><li>b</li>", "no final line feed, empty lines between"},
      {"<p>\n<li>", "<p></p><li></li>", "nothing behind the tag"},
      {" <p>a\n\t<li>b\n", " <p>a\t<li>b", "a blank in front"},
      {"<P>a\n<LI>b\n<p >c\n<lix>d\n<pre>", "<P>a<LI>b<p >c<lix>d<pre>", "other tags"},
      {"<p>a<p>b\n", "<p>a<p>b</p>", "only the line is looked at"},
      {"<p>a</p>\n", "<p>a</p></p>", "and not whether it is closed already"},
      {"<p>a\r\n<li>b\r\n", "<p>a\r</p><li>b\r</li>", "a carriage return stays in the element"},
      {"<ul>\n<li>a\n</ul>\n", "<ul><li>a</li></ul>", "lists are left alone"},
      {"<li>a\ntail\n<li>b\n", "<li>a</li>tail<li>b</li>", "a line feed inside a value"},
  };
  for (const RepairCase& test : cases) {
    EXPECT_EQ(Shown(RepairPage(Widen(test.page))), Shown(Widen(test.repaired))) << test.why;
  }
}

using LoadResponseDomTest = PageTest;

TEST_F(LoadResponseDomTest, GivesADocumentOrNone) {
  EXPECT_EQ(Load("<a>\n<p>b\n</a>"), S_OK);
  EXPECT_TRUE(m_document);
  EXPECT_EQ(Load("<a>\n <p>b\n</a>"), E_FAIL);
  EXPECT_FALSE(m_document) << "the one before is not kept";
}

TEST_F(LoadResponseDomTest, AListItemBehindASpaceDoesNotLoad) {
  EXPECT_EQ(Load("<html>\n<body>\n<ul>\n<li>a\n</ul>\n</body>\n</html>\n"), S_OK);
  EXPECT_EQ(Load("<html>\n<body>\n<ul>\n <li>a\n</ul>\n</body>\n</html>\n"), E_FAIL);
}

TEST_F(LoadResponseDomTest, NothingElseIsRepaired) {
  const std::string_view pages[] = {
      "",
      "plain text\n",
      "<html>\n<body>\nSign in<br>\n</body>\n</html>\n",
      "<html>\n<body>\n<a href=x>b</a>\n</body>\n</html>\n",
      "<html>\n<body>\n<p>a&nbsp;b\n</body>\n</html>\n",
      "<html>\n<body>\n<p>a & b\n</body>\n</html>\n",
      "<html>\n<body>\n<p>a <b>c\n</body>\n</html>\n",
      "<html>\n<body>\n</html>\n",
  };
  for (const std::string_view page : pages) {
    EXPECT_EQ(Load(page), E_FAIL) << page;
    EXPECT_FALSE(m_document) << page;
  }
}

TEST_F(LoadResponseDomTest, TheFirstFailureOfTheDomIsTheResultOrRaised) {
  const char* const expected[] = {"CreateInstance", "QueryInterface", "put_async(false)",
                                  "loadXML"};
  for (int failAt = 1; failAt <= 4; ++failAt) {
    FaultDom dom(failAt, E_UNEXPECTED);
    if (failAt == 3) {
      EXPECT_THROW(Load("<a/>"), _com_error);
    } else {
      EXPECT_EQ(Load("<a/>"), E_UNEXPECTED) << failAt;
    }
    EXPECT_FALSE(m_document) << failAt;
    EXPECT_EQ(dom.operations.back(), expected[failAt - 1]);
  }
}

TEST_F(LoadResponseDomTest, AParserThatSaysNoIsAFailure) {
  FaultDom dom(0, S_OK);
  dom.refuseText = true;
  EXPECT_EQ(Load("<a/>"), E_FAIL);
  EXPECT_FALSE(m_document);
}

class ParseStatusTest : public PageTest {
 protected:
  bool Parse(std::string_view lines) {
    EXPECT_EQ(Load(AnswerPage(lines)), S_OK) << lines;
    return ParseStatus(m_result, m_document.Get());
  }

  CFrontPageResult m_result;
};

TEST_F(ParseStatusTest, ReadsNumberAndMessage) {
  EXPECT_TRUE(Parse(StatusLines("589830", "The file is checked out.")));
  EXPECT_EQ(m_result.m_status, 589830);
  EXPECT_EQ(Shown(m_result.m_statusMessage), "The file is checked out.");
  EXPECT_FALSE(m_result.m_hasStatus) << "the handler's to set";
}

TEST_F(ParseStatusTest, AStatusOfZeroIsAStatus) {
  EXPECT_TRUE(Parse(StatusLines("0", "")));
  EXPECT_EQ(m_result.m_status, 0);
}

TEST_F(ParseStatusTest, TheMessageKeepsAFurtherEqualsSign) {
  EXPECT_TRUE(Parse(StatusLines("1", "a=b=c")));
  EXPECT_EQ(Shown(m_result.m_statusMessage), "a=b=c");
}

TEST_F(ParseStatusTest, WithoutAParagraphNothingChanges) {
  m_result.m_status = 7;
  m_result.m_statusMessage = OLESTR("x");
  EXPECT_FALSE(Parse("<p>statuses=\n<ul>\n<li>status=1\n<li>msg=y\n</ul>\n"));
  EXPECT_FALSE(Parse("<ul>\n<li>status=1\n</ul>\n"));
  EXPECT_FALSE(Parse("<div>\n<p>status=\n<ul>\n<li>status=1\n</ul>\n</div>\n")) << "below the body";
  EXPECT_EQ(m_result.m_status, 7);
  EXPECT_EQ(Shown(m_result.m_statusMessage), "x");
  EXPECT_FALSE(ParseStatus(m_result, nullptr));
}

TEST_F(ParseStatusTest, AParagraphAloneIsAStatusToo) {
  m_result.m_status = 7;
  EXPECT_EQ(Load("<html><body>\n<p>status=\n</body></html>"), S_OK);
  EXPECT_TRUE(ParseStatus(m_result, m_document.Get())) << "nothing behind it";
  EXPECT_TRUE(Parse("<p>status=\n<ul>\n<li>osstatus=1\n<li>osmsg=y\n</ul>\n"));
  EXPECT_TRUE(Parse("<p>status=\ntext\n<ul>\n<li>status=1\n</ul>\n")) << "text is its neighbour";
  EXPECT_EQ(m_result.m_status, 7);
  EXPECT_EQ(m_result.m_statusMessage, WideString());
}

TEST_F(ParseStatusTest, EitherValueMayBeMissing) {
  EXPECT_TRUE(Parse("<p>status=\n<ul>\n<li>msg=y\n</ul>\n"));
  EXPECT_EQ(m_result.m_status, 0);
  EXPECT_EQ(Shown(m_result.m_statusMessage), "y");
  EXPECT_TRUE(Parse("<p>status=\n<ul>\n<li>status=5\n</ul>\n"));
  EXPECT_EQ(m_result.m_status, 5);
  EXPECT_EQ(Shown(m_result.m_statusMessage), "y");
}

TEST_F(ParseStatusTest, TheNumberIsReadUpToTheFirstOtherCharacter) {
  const struct {
    const char* text;
    std::int32_t status;
  } cases[] = {{"", 0},
               {"x1", 0},
               {"12x", 12},
               {" 12", 12},
               {"-5", -5},
               {"+5", 5},
               {"- 5", 0},
               {"0x10", 0},
               {"2147483647", 2147483647},
               {"1=2", 1},
               {"0012", 12},
               {"9999999999", 2147483647},
               {"2147483648", 2147483647},
               {"-9999999999", -2147483647 - 1}};
  for (const auto& test : cases) {
    EXPECT_TRUE(Parse(StatusLines(test.text, "")));
    EXPECT_EQ(m_result.m_status, test.status) << test.text;
  }
}

// The number of the N-th of these operations among all, both counted from 1.
int NumberOf(const std::vector<std::string>& operations, std::string_view name, int nth) {
  for (std::size_t i = 0; i < operations.size(); ++i) {
    if (operations[i] == name && --nth == 0) return static_cast<int>(i) + 1;
  }
  ADD_FAILURE() << "there is no such operation: " << name;
  return 0;
}

TEST_F(ParseStatusTest, ATextThatCannotBeReadIsSkipped) {
  const auto parse = [](int failAt, CFrontPageResult& result) {
    FaultDom dom(failAt, E_UNEXPECTED);
    ComPtr<IXMLDOMDocument2> document;
    EXPECT_EQ(LoadResponseDom(Widen(AnswerPage(StatusLines("5", "y"))), document), S_OK);
    EXPECT_TRUE(ParseStatus(result, document.Get()));
    return dom.operations;
  };
  CFrontPageResult whole;
  const std::vector<std::string> operations = parse(0, whole);
  EXPECT_EQ(whole.m_status, 5);
  EXPECT_EQ(Shown(whole.m_statusMessage), "y");

  CFrontPageResult noNumber;
  parse(NumberOf(operations, "get_text", 1), noNumber);
  EXPECT_EQ(noNumber.m_status, 0);
  EXPECT_EQ(Shown(noNumber.m_statusMessage), "y");

  CFrontPageResult noMessage;
  parse(NumberOf(operations, "get_text", 2), noMessage);
  EXPECT_EQ(noMessage.m_status, 5);
  EXPECT_EQ(noMessage.m_statusMessage, WideString());
}

TEST_F(ParseStatusTest, AQueryThatFailsIsRaised) {
  const char* const operations[] = {"selectSingleNode", "get_nextSibling", "selectSingleNode",
                                    "get_text", "selectSingleNode"};
  for (int failAt = 1; failAt <= 5; ++failAt) {
    FaultDom dom(4 + failAt, E_UNEXPECTED);  // behind the four of loading
    ComPtr<IXMLDOMDocument2> document;
    ASSERT_EQ(LoadResponseDom(Widen(AnswerPage(StatusLines("5", "y"))), document), S_OK);
    CFrontPageResult result;
    if (failAt == 4) {
      EXPECT_NO_THROW(ParseStatus(result, document.Get()));
    } else {
      EXPECT_THROW(ParseStatus(result, document.Get()), _com_error);
    }
    EXPECT_EQ(dom.operations[static_cast<std::size_t>(3 + failAt)], operations[failAt - 1]);
  }
}

class ParseMetaInfoTest : public PageTest {
 protected:
  bool Parse(std::string_view lines) {
    EXPECT_EQ(Load(AnswerPage(lines)), S_OK) << lines;
    return ParseMetaInfo(m_meta, m_document.Get());
  }
  std::string Flags() const {
    return std::string(m_meta.m_hasDocument ? "document" : "-") +
           (m_meta.m_hasUrlEntry ? " url" : " -");
  }

  CDocumentMeta m_meta;
};

TEST_F(ParseMetaInfoTest, ReadsADocument) {
  EXPECT_TRUE(Parse(DocumentLines("Shared Documents/b.xlsx", {{"k", "SR|v"}, {"a", "IR|1"}})));
  EXPECT_EQ(Shown(m_meta.m_documentName), "Shared Documents/b.xlsx");
  EXPECT_EQ(m_meta.m_urlEntry, WideString());
  EXPECT_EQ(Shown(m_meta), "a=IR|1; k=SR|v");
  EXPECT_EQ(Flags(), "document -");
}

TEST_F(ParseMetaInfoTest, ReadsAFolder) {
  EXPECT_TRUE(Parse(FolderLines("Shared Documents", {{"vti_listname", "SR|{1}"}})));
  EXPECT_EQ(m_meta.m_documentName, WideString());
  EXPECT_EQ(Shown(m_meta.m_urlEntry), "Shared Documents");
  EXPECT_EQ(Shown(m_meta), "vti_listname=SR|{1}");
  EXPECT_EQ(Flags(), "- url");
}

TEST_F(ParseMetaInfoTest, ReadsPairsThatBelongToTheBody) {
  EXPECT_TRUE(Parse("<p>meta_info=\n" + PairLines({{"k", "v"}})));
  EXPECT_EQ(Shown(m_meta), "k=v");
  EXPECT_EQ(Flags(), "- -");
}

TEST_F(ParseMetaInfoTest, ADocumentWinsOverAFolder) {
  EXPECT_TRUE(Parse(FolderLines("f", {{"of", "folder"}}) + DocumentLines("d", {{"of", "file"}})));
  EXPECT_EQ(Shown(m_meta.m_documentName), "d");
  EXPECT_EQ(m_meta.m_urlEntry, WideString());
  EXPECT_EQ(Shown(m_meta), "of=file");
  EXPECT_EQ(Flags(), "document -");
}

TEST_F(ParseMetaInfoTest, ADocumentWithoutPairsStillWins) {
  EXPECT_FALSE(Parse("<ul>\n<ul>\n<li>document_name=d\n</ul>\n</ul>\n" +
                     FolderLines("f", {{"of", "folder"}})));
  EXPECT_EQ(Shown(m_meta.m_documentName), "d");
  EXPECT_EQ(Shown(m_meta), "");
  EXPECT_EQ(Flags(), "- -");
}

TEST_F(ParseMetaInfoTest, AFolderCountsOnlyBelowTwoLists) {
  EXPECT_FALSE(Parse("<ul>\n<li>url=f\n<li>meta_info=\n" + PairLines({{"k", "v"}}) + "</ul>\n"));
  EXPECT_EQ(m_meta.m_urlEntry, WideString());
  EXPECT_FALSE(Parse("<ul>\n<ul>\n<ul>\n<li>url=f\n<li>meta_info=\n" + PairLines({{"k", "v"}}) +
                     "</ul>\n</ul>\n</ul>\n"));
  EXPECT_EQ(m_meta.m_urlEntry, WideString());
}

TEST_F(ParseMetaInfoTest, ADocumentCountsAnywhere) {
  EXPECT_TRUE(
      Parse("<ul>\n<li>document_name=d\n<li>meta_info=\n" + PairLines({{"k", "v"}}) + "</ul>\n"));
  EXPECT_EQ(Flags(), "document -");
}

TEST_F(ParseMetaInfoTest, AnOddCountKeepsNameAndPairsAndClearsNoFlag) {
  const std::string lines =
      "<ul>\n<ul>\n<li>document_name=d\n<li>meta_info=\n<ul>\n<li>a\n<li>1\n"
      "<li>b\n<li>2\n<li>c\n</ul>\n</ul>\n</ul>\n";
  EXPECT_FALSE(Parse(lines));
  EXPECT_EQ(Shown(m_meta.m_documentName), "d");
  EXPECT_EQ(Shown(m_meta), "a=1; b=2");
  EXPECT_EQ(Flags(), "- -");
}

TEST_F(ParseMetaInfoTest, AnEmptyListIsNoMetaInfo) {
  EXPECT_FALSE(Parse(DocumentLines("d", {})));
  EXPECT_EQ(Shown(m_meta.m_documentName), "d");
  EXPECT_EQ(Flags(), "- -");
}

TEST_F(ParseMetaInfoTest, ADuplicatedKeyKeepsItsFirstValue) {
  EXPECT_TRUE(Parse(DocumentLines("d", {{"k", "1"}, {"K", "2"}, {"k", "3"}})));
  EXPECT_EQ(Shown(m_meta), "K=2; k=1");
  EXPECT_TRUE(Parse(DocumentLines("d", {{"k", "4"}, {"l", "5"}})));
  EXPECT_EQ(Shown(m_meta), "K=2; k=1; l=5") << "also one that stood there before";
}

TEST_F(ParseMetaInfoTest, ThePrefixIsCutByItsLength) {
  EXPECT_TRUE(Parse(DocumentLines("document_name=x", {{"k", "v"}})));
  EXPECT_EQ(Shown(m_meta.m_documentName), "document_name=x");
  EXPECT_TRUE(Parse(DocumentLines("", {{"k", "v"}})));
  EXPECT_EQ(m_meta.m_documentName, WideString());
  EXPECT_TRUE(Parse(FolderLines("", {{"k", "v"}})));
  EXPECT_EQ(m_meta.m_urlEntry, WideString());
}

TEST_F(ParseMetaInfoTest, OnlyItemsOfTheListItselfArePairs) {
  EXPECT_TRUE(Parse("<p>meta_info=\n<ul>\n<li>a\n<li>1\n<ul>\n<li>b\n<li>2\n</ul>\n<p>c\n</ul>\n"));
  EXPECT_EQ(Shown(m_meta), "a=1");
}

TEST_F(ParseMetaInfoTest, WithoutAListThereAreNoPairs) {
  EXPECT_FALSE(Parse(""));
  EXPECT_FALSE(Parse("<p>meta_info=\ntext\n"));
  EXPECT_FALSE(Parse("<ul>\n<li>document_name=d\n<li>meta_info=\n</ul>\n")) << "nothing behind it";
  EXPECT_FALSE(
      Parse("<ul>\n<li>document_name=d\n<li>meta_info=x\n" + PairLines({{"k", "v"}}) + "</ul>\n"))
      << "the comparison is exact";
  EXPECT_EQ(Shown(m_meta), "");
  EXPECT_EQ(Flags(), "- -");
  EXPECT_FALSE(ParseMetaPairs(m_meta, nullptr));
}

TEST_F(ParseMetaInfoTest, ANullDocumentRaises) {
  EXPECT_THROW(ParseMetaInfo(m_meta, nullptr), _com_error);
}

TEST_F(ParseMetaInfoTest, CarriageReturnsStandInTheExactComparisons) {
  const std::string page = testing::WithCarriageReturns(
      AnswerPage(DocumentLines("d", {{"k", "v"}}) + StatusLines("5", "m")));
  ASSERT_EQ(Load(page), S_OK);
  CFrontPageResult result;
  EXPECT_EQ(ParseStatus(result, m_document.Get()), kMatchesAcrossCarriageReturn);
  EXPECT_EQ(ParseMetaInfo(m_meta, m_document.Get()), kMatchesAcrossCarriageReturn);
  EXPECT_EQ(Shown(m_meta.m_documentName), "d") << "found by its beginning";
  EXPECT_EQ(m_meta.m_hasDocument, kMatchesAcrossCarriageReturn);
}

TEST_F(ParseMetaInfoTest, EachFailureOfTheDomIsRaised) {
  const std::string page = AnswerPage(DocumentLines("d", {{"k", "v"}}));
  int operations = 4;
  for (int failAt = 4; failAt <= operations; ++failAt) {
    // Not yet: the four of loading.
    const bool fails = failAt > 4;
    FaultDom dom(fails ? failAt : 0, E_UNEXPECTED);
    CDocumentMeta meta;
    ComPtr<IXMLDOMDocument2> document;
    ASSERT_EQ(LoadResponseDom(Widen(page), document), S_OK);
    if (fails) {
      try {
        ParseMetaInfo(meta, document.Get());
        ADD_FAILURE() << dom.operations.back() << " passed";
      } catch (const _com_error& error) {
        EXPECT_EQ(error.Error(), E_UNEXPECTED);
      }
      EXPECT_FALSE(meta.m_hasDocument);
    } else {
      EXPECT_TRUE(ParseMetaInfo(meta, document.Get()));
      operations = dom.Count();
    }
  }
  EXPECT_EQ(operations, 4 + 11);
}

}  // namespace
}  // namespace velandoc
