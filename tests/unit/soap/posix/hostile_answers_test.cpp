// Answers that an unfriendly server could send to the operations: the told result, in time and
// memory that grow with their size.

#include <gtest/gtest.h>

#include <chrono>

#include "soap/check_out.h"
#include "soap/list_fields.h"
#include "soap/list_items.h"
#include "soap/user_group_service.h"
#include "soap/webs_service.h"
#include "tests/support/field_text.h"
#include "tests/unit/soap/service_fixture.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::RowText;

/// Generous: a sanitizer's build on a busy machine stays below it, work that grows with the square
/// of the size does not.
constexpr std::chrono::seconds kTimeLimit(60);

std::string Repeat(std::string_view text, std::size_t count) {
  std::string repeated;
  repeated.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) repeated += text;
  return repeated;
}

std::string Attributes(std::size_t count) {
  std::string attributes;
  for (std::size_t i = 0; i < count; ++i) {
    attributes += " ows_A" + std::to_string(i) + "='" + std::to_string(i) + "'";
  }
  return attributes;
}

std::string Row(const std::string& attributes) {
  return "<z:row xmlns:z='#RowsetSchema'" + attributes + "/>";
}

class HostileAnswers : public testing::ServiceTest {
 protected:
  void TearDown() override { EXPECT_LT(std::chrono::steady_clock::now() - m_begin, kTimeLimit); }

  bool ReadFields(const std::string& content) {
    m_platform.answers = {
        Xml(std::string("<a xmlns='") + testing::kService + "'>" + content + "</a>")};
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    m_fields.clear();
    return GetListContentType(connection, OLESTR("L"), OLESTR("0x01"), m_fields);
  }
  bool ReadRow(Answer answer) {
    m_platform.answers = {std::move(answer)};
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    m_row.clear();
    return GetListItems(connection, OLESTR("U"), OLESTR("L"), {}, m_row);
  }
  // All operations end in their failure.
  void ExpectRefused(const std::string& answer, const char* why) {
    EXPECT_FALSE(ReadRow(Xml(answer))) << why;
    m_platform.answers = {Xml(answer), Xml(answer), Xml(answer),
                          Xml(answer), Xml(answer), Xml(answer)};
    Bstr text;
    EXPECT_FALSE(WebUrlFromPageUrl(OLESTR("http://h/a"), text)) << why;
    EXPECT_FALSE(GetUserInfo(OLESTR("http://h"), OLESTR("a"), &text, nullptr)) << why;
    EXPECT_FALSE(CheckOutFile(OLESTR("http://h/a"))) << why;
    EXPECT_FALSE(CheckInFile(OLESTR("http://h/a"), nullptr, 0)) << why;
    EXPECT_EQ(UndoCheckOut(OLESTR("http://h/a")), -1) << why;
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    EXPECT_FALSE(GetListContentType(connection, OLESTR("L"), OLESTR("0x01"), m_fields)) << why;
  }

  FieldList m_fields;
  RowAttributes m_row;

 private:
  std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

TEST_F(HostileAnswers, WhatIsNoXmlEndsEveryOperationInItsFailure) {
  using namespace std::string_literals;
  const std::string service = testing::kService;
  ExpectRefused(Repeat("<a>", 100'000), "nesting without an end");
  ExpectRefused(Repeat("<a>", 10'000) + Repeat("</a>", 10'000), "nesting beyond the limit");
  ExpectRefused("<a" + Attributes(100'000) + "/>", "attributes beyond the limit");
  ExpectRefused("<!DOCTYPE a [<!ENTITY b 'x'>]><a xmlns='" + service + "'>&b;</a>",
                "entities of its own");
  ExpectRefused(
      "<!DOCTYPE a [<!ENTITY b 'bbbbbbbbbb'><!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;'><!ENTITY d "
      "'&c;&c;&c;&c;&c;&c;&c;&c;'>]><a>&d;</a>",
      "entities that grow");
  ExpectRefused("<!DOCTYPE a SYSTEM 'file:///etc/passwd'><a/>", "a file of the host");
  ExpectRefused("<a>&unknown;</a>", "an entity that nobody declared");
  ExpectRefused("<a>&#0;</a>", "a reference to NUL");
  ExpectRefused("<a>\x01</a>", "a control character");
  ExpectRefused("<a>\0</a>"s, "a NUL, which ends the text");
  ExpectRefused("\xFF\xFE<\0a\0/\0>\0"s, "UTF-16");
  ExpectRefused(std::string(1'000'000, '<'), "nothing but brackets");
  ExpectRefused(std::string(1'000'000, '\0'), "nothing at all");
}

TEST_F(HostileAnswers, ALongRowIsReadUpToTheLimitOfATag) {
  EXPECT_TRUE(ReadRow(Xml(Row(Attributes(2000)))));
  EXPECT_EQ(m_row.size(), 2001U) << "the declaration is one";
  EXPECT_EQ(m_row[OLESTR("ows_A1999")], OLESTR("1999"));
  EXPECT_FALSE(ReadRow(Xml(Row(Attributes(2048))))) << "with the declaration one too many";
  EXPECT_FALSE(ReadRow(Xml(Row(Attributes(1'000'000)))));
}

TEST_F(HostileAnswers, ALongValueIsReadWhole) {
  EXPECT_TRUE(ReadRow(Xml(Row(" ows_A='" + std::string(10'000'000, 'x') + "'"))));
  EXPECT_EQ(m_row[OLESTR("ows_A")].size(), 10'000'000U);
}

TEST_F(HostileAnswers, OfManyRowsTheFirstIsRead) {
  EXPECT_TRUE(ReadRow(Xml("<a>" + Repeat(Row(" ows_A='1'"), 100'000) + "</a>")));
  EXPECT_EQ(RowText(m_row), "ows_A='1' xmlns:z='#RowsetSchema'");
}

TEST_F(HostileAnswers, ANulEndsAReadOfTheAnswerOnly) {
  using namespace std::string_literals;
  EXPECT_TRUE(ReadRow(Answer{
      .chunks = {"<z:row xmlns:z='#RowsetSchema' \0 ows_A='hidden'"s, "ows_B='2'/>\0garbage"s}}));
  EXPECT_EQ(RowText(m_row), "ows_B='2' xmlns:z='#RowsetSchema'");
}

TEST_F(HostileAnswers, BytesThatAreNoUtf8BecomeReplacements) {
  EXPECT_TRUE(ReadRow(Xml(Row(" ows_A='a\xFFz' ows_B='\xC3' ows_C='\xED\xA0\x80'"))));
  EXPECT_EQ(m_row[OLESTR("ows_A")], OLESTR("a\ufffdz"));
  EXPECT_EQ(m_row[OLESTR("ows_B")], OLESTR("\ufffd"));
  EXPECT_NE(m_row[OLESTR("ows_C")].find(u'\ufffd'), WideString::npos);
}

TEST_F(HostileAnswers, TheEncodingThatADeclarationNamesIsNotBelieved) {
  for (const char* encoding : {"utf-8", "UTF-16", "iso-8859-1", "windows-1252", "klingon"}) {
    const std::string declaration =
        std::string("<?xml version='1.0' encoding='") + encoding + "'?>";
    EXPECT_TRUE(ReadRow(Xml(declaration + Row(" ows_A='\xC3\xA9'")))) << encoding;
    EXPECT_EQ(m_row[OLESTR("ows_A")], OLESTR("\u00e9")) << encoding;
  }
}

TEST_F(HostileAnswers, ManyColumnsAreReadInLinearTime) {
  EXPECT_TRUE(ReadFields(Repeat("<Field SourceID='l' Name='n'/>", 100'000)));
  EXPECT_EQ(m_fields.size(), 100'000U);
  EXPECT_EQ(testing::FieldText(m_fields.back()), "name='n' sourceId='l'");
}

TEST_F(HostileAnswers, ManyChoicesAreReadInLinearTime) {
  EXPECT_TRUE(ReadFields("<Field SourceID='l'><CHOICES>" + Repeat("<CHOICE>x</CHOICE>", 200'000) +
                         "</CHOICES></Field>"));
  ASSERT_EQ(m_fields.size(), 1U);
  EXPECT_EQ(m_fields.front().m_choices.size(), 200'000U);
}

// Each of them is written out with all that it holds; the limit of the nesting keeps that in
// bounds.
TEST_F(HostileAnswers, ColumnsInsideColumnsAreReadAsDeepAsXmlMayBe) {
  EXPECT_TRUE(ReadFields(Repeat("<Field SourceID='l'>", 250) + std::string(100'000, 'x') +
                         Repeat("</Field>", 250)));
  EXPECT_EQ(m_fields.size(), 250U);
  EXPECT_FALSE(ReadFields(Repeat("<Field SourceID='l'>", 300) + Repeat("</Field>", 300)));
  EXPECT_TRUE(m_fields.empty());
}

TEST_F(HostileAnswers, ColumnsWithManyAttributesAreReadInLinearTime) {
  EXPECT_TRUE(ReadFields(Repeat("<Field SourceID='l' Name='A1999'" + Attributes(1999) + "/>", 50)));
  EXPECT_EQ(m_fields.size(), 50U);
  EXPECT_EQ(m_fields.front().m_value, OLESTR(""));
}

TEST_F(HostileAnswers, AnyPrefixOfAnAnswerIsRefused) {
  const std::string answer = Envelope(Row(" ows_A='&lt;&#65;'"));
  for (std::size_t size = 0; size < answer.size(); ++size) {
    EXPECT_FALSE(ReadRow(Xml(answer.substr(0, size)))) << size;
  }
  EXPECT_TRUE(ReadRow(Xml(answer)));
}

TEST_F(HostileAnswers, ALongResultIsNoBoolean) {
  const std::string result = std::string("<CheckOutFileResult xmlns='") + testing::kService + "'>" +
                             std::string(1'000'000, '1') + "</CheckOutFileResult>";
  const std::string web =
      std::string("<WebUrlFromPageUrlResponse xmlns='") + testing::kService + "'>http://h";
  m_platform.answers = {Xml(web + "</WebUrlFromPageUrlResponse>"), Xml(result)};
  EXPECT_FALSE(CheckOutFile(OLESTR("http://h/a")));
  EXPECT_EQ(m_platform.OpenHandles(), 0);

  m_platform.bodies.clear();
  m_platform.answers = {
      Xml(web + "/" + std::string(1'000'000, 'x') + "</WebUrlFromPageUrlResponse>")};
  EXPECT_FALSE(CheckOutFile(OLESTR("http://h/a"))) << "a URL too long for a connection";
  EXPECT_EQ(m_platform.bodies.size(), 1U) << "is asked for nothing";
  EXPECT_EQ(m_platform.OpenHandles(), 0);
}

}  // namespace
}  // namespace velandoc
