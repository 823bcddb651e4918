#include "hosts/command/doc_options.h"

#include <gtest/gtest.h>

#include "hosts/command/document_target.h"

namespace velandoc {
namespace {

DocOptions Set(std::vector<std::string> words, bool escape = false) {
  DocOptions options;
  options.action = DocAction::kSet;
  options.target = "http://docs.example.test/a";
  options.words = std::move(words);
  options.escape = escape;
  return options;
}

std::string SetProblem(std::vector<std::string> words, bool escape = false) {
  DocOptions options = Set(std::move(words), escape);
  return FinishDocOptions(options).value_or("");
}

TEST(DocOptions, TakesAssignmentsApart) {
  DocOptions options = Set({"Title=a=b", "Empty=", "Note=two\nlines\tand \xC3\xA9"});
  ASSERT_EQ(FinishDocOptions(options), std::nullopt);
  ASSERT_EQ(options.assignments.size(), 3U);
  EXPECT_EQ(options.assignments[0].name, "Title");
  EXPECT_EQ(options.assignments[0].value, "a=b");
  EXPECT_EQ(options.assignments[1].value, "");
  EXPECT_EQ(options.assignments[2].value, "two\nlines\tand \xC3\xA9");
}

TEST(DocOptions, NamesTheWrongWord) {
  EXPECT_EQ(SetProblem({"Title"}), "'Title' is no assignment: type NAME=VALUE");
  EXPECT_EQ(SetProblem({"=x"}), "'=x' names no column: type NAME=VALUE");
  EXPECT_EQ(SetProblem({"A=1", "A=2"}), "column 'A' is given two values");
  EXPECT_EQ(SetProblem({"A=\xFF"}), "the assignment to 'A' must be UTF-8 text");
}

struct CarriedCase {
  const char* value;
  const char* problem;  // empty: none
};

TEST(DocOptions, RefusesWhatTheUpdateCannotCarry) {
  constexpr CarriedCase kCases[] = {
      {"plain", ""},
      {"a > b \"c\" 'd' ]] ;#", ""},
      {"R&D",
       "it holds '&', with which the whole update would be lost: with --escape it is sent "
       "as a reference"},
      {"R&amp;D",
       "it holds '&', with which the whole update would be lost: with --escape it is "
       "sent as a reference"},
      {"a<b",
       "it holds '<', with which the whole update would be lost: with --escape it is sent "
       "as a reference"},
      {"a]]>b",
       "it holds ']]>', with which the whole update would be lost: with --escape it is "
       "sent as a reference"},
      {"  \t\n", "it holds nothing but blanks, which would not arrive"},
      {"a\rb", "it holds a carriage return, which would arrive as a line feed"},
      {"a\x1Bz", "it holds the control character 0x1B, which XML cannot carry"},
      {"a\x01", "it holds the control character 0x01, which XML cannot carry"},
      {"\xEF\xBF\xBE", "it holds the character U+FFFE, which XML cannot carry"},
  };
  for (const CarriedCase& row : kCases) {
    EXPECT_EQ(FindUncarriedByUpdate(row.value, false).value_or(""), row.problem) << row.value;
  }
  EXPECT_EQ(SetProblem({"Title=R&D"}),
            "the value of 'Title' cannot be written: it holds '&', with which the whole update "
            "would be lost: with --escape it is sent as a reference");
}

TEST(DocOptions, EscapingCarriesMarkupAndNothingElse) {
  EXPECT_EQ(SetProblem({"Title=a & b < c ]]> d"}, true), "");
  EXPECT_EQ(EscapedForUpdate("a & b < c ]]> d &amp;"), "a &amp; b &lt; c ]]&gt; d &amp;amp;");
  EXPECT_EQ(SetProblem({"Title=\x1B"}, true),
            "the value of 'Title' cannot be written: it holds the control character 0x1B, which "
            "XML cannot carry");
  EXPECT_EQ(SetProblem({"Title=  "}, true),
            "the value of 'Title' cannot be written: it holds nothing but blanks, which would not "
            "arrive");
}

struct TypeCase {
  const char* word;
  int type;  // kNone: a mistake
};
constexpr int kNone = -99;

TEST(DocOptions, ReadsTheKindOfCheckIn) {
  constexpr TypeCase kCases[] = {{"minor", 0},
                                 {"major", 1},
                                 {"overwrite", 2},
                                 {"0", 0},
                                 {"7", 7},
                                 {"-1", -1},
                                 {"2147483647", 2147483647},
                                 {"2147483648", kNone},
                                 {"", kNone},
                                 {"Major", kNone},
                                 {"1x", kNone},
                                 {"1.5", kNone},
                                 {" 1", kNone}};
  for (const TypeCase& row : kCases) {
    DocOptions options;
    options.action = DocAction::kCheckIn;
    options.target = "http://docs.example.test/a";
    options.typeWord = row.word;
    const auto problem = FinishDocOptions(options);
    if (row.type == kNone) {
      EXPECT_EQ(problem.value_or(""), "'" + std::string(row.word) +
                                          "' is no kind of check-in: type minor, major, overwrite "
                                          "or a whole number");
    } else {
      EXPECT_EQ(problem, std::nullopt) << row.word;
      EXPECT_EQ(options.type, row.type) << row.word;
    }
  }
}

TEST(DocOptions, ACommentIsTextOfXml) {
  DocOptions options;
  options.action = DocAction::kCheckIn;
  options.target = "http://docs.example.test/a";
  options.comment = "done & <dusted>";
  EXPECT_EQ(FinishDocOptions(options), std::nullopt);
  options.comment = "bell \x07";
  EXPECT_EQ(FinishDocOptions(options).value_or(""),
            "the comment cannot be sent: it holds the control character 0x07, which XML cannot "
            "carry");
  options.comment = "\xFF";
  EXPECT_EQ(FinishDocOptions(options).value_or(""), "the comment must be UTF-8 text");
}

struct TargetCase {
  const char* target;
  bool url;
  const char* problem;
};

TEST(DocumentTarget, IsAUrlOrAPath) {
  constexpr TargetCase kCases[] = {
      {"http://docs.example.test/a.docx", true, ""},
      {"HTTPS://docs.example.test/a.docx", true, ""},
      {"http:docs", true, "'http:docs' has no scheme: did you mean 'http://docs'?"},
      {"ftp://docs/a", true,
       "'ftp://docs/a' cannot be opened: only http:// and https:// are spoken"},
      {"http:///a", true, "'http:///a' names no host: type 'http://HOST'"},
      {"a.docx", false, ""},
      {"/mnt/share/a.docx", false, ""},
      {"/mnt/a://b.docx", false, ""},
      {"\\\\server\\share\\a.docx", false, ""},
      {"Z:\\a.docx", false, ""},
      {"", false, "'' is no document: type its URL or its path on a WebDAV share"},
      {"\xFF", false, "a document's URL or path must be UTF-8 text"},
  };
  for (const TargetCase& row : kCases) {
    EXPECT_EQ(IsUrlTarget(row.target), row.url) << row.target;
    EXPECT_EQ(FindTargetProblem(row.target).value_or(""), row.problem) << row.target;
  }
}

TEST(DocumentTarget, PathsBecomeAbsolute) {
  for (const char* path : {"\\\\server\\share\\a.docx", "//server/share/a.docx", "Z:\\a.docx"}) {
    EXPECT_EQ(AbsolutePath(path), path);
  }
  const std::string absolute = AbsolutePath("\xC3\xA9.docx");
  EXPECT_GT(absolute.size(), std::string("\xC3\xA9.docx").size());
  EXPECT_TRUE(absolute.ends_with("\xC3\xA9.docx")) << absolute;
}

}  // namespace
}  // namespace velandoc
