#include "hosts/command/server_word.h"

#include <gtest/gtest.h>

#include <string>

#include "hosts/com_apartment.h"

namespace velandoc {
namespace {

class ServerWord : public testing::Test {
 private:
  ComApartment m_apartment;
};

struct WordCase {
  std::string answer;
  const char* word;
  const char* why;
};

std::string Fault(const std::string& inside) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?><soap:Envelope "
         "xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body><soap:Fault>" +
         inside + "</soap:Fault></soap:Body></soap:Envelope>";
}

std::string StatusPage(const std::string& message) {
  return "<html><head><title>vermeer RPC packet</title></head>\n<body>\n"
         "<p>method=getDocsMetaInfo:12.0.0.6665\n<p>status=\n<ul>\n<li>status=589830\n"
         "<li>osstatus=0\n<li>msg=" +
         message + "\n<li>osmsg=\n</ul>\n</body>\n</html>\n";
}

TEST_F(ServerWord, IsWhatTheServerSaid) {
  const WordCase cases[] = {
      {Fault("<faultcode>soap:Server</faultcode><faultstring>Exception.</faultstring><detail>"
             "<errorstring xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">List does not "
             "exist.</errorstring></detail>"),
       "List does not exist.", "a fault's detail says more than its string"},
      {Fault("<faultstring>Server was unable to process request.</faultstring>"),
       "Server was unable to process request.", "a fault without a detail"},
      {"\xEF\xBB\xBF" + Fault("<faultstring> two\r\n  lines </faultstring>"), "two lines",
       "a byte order mark, blanks"},
      {"<S:Envelope xmlns:S=\"urn:x\"><S:Fault><faultstring>own prefix</faultstring></S:Fault>"
       "</S:Envelope>",
       "own prefix", "another prefix and no declaration"},
      {StatusPage("There is no file &#34;b.xlsx&#34;. &#195;&#169;"),
       "There is no file \"b.xlsx\". \xC3\xA9", "references, one for each byte"},
      {StatusPage("You are <b>not</b> allowed\nto &amp; cannot"), "You are not allowed to & cannot",
       "markup and a second line"},
      {StatusPage("a<br>b"), "ab", "markup that is never closed"},
      {StatusPage("\xE9t\xE9"), "\xC3\xA9t\xC3\xA9", "bytes that are no UTF-8"},
      {"<html><head><title>vermeer RPC packet</title></head><body></body></html>", "",
       "the title of every RPC page says nothing"},
      {"<!DOCTYPE html>\n<HTML><HEAD><TITLE>\n404 - Not  Found\n</TITLE></HEAD></HTML>",
       "404 - Not Found", "a page's title"},
      {"<html><body>Sign in</body></html>", "", "a page without one"},
      {"Not here.\nSecond line", "Not here.", "plain text"},
      {"\x1B[2J\x07", "\\x1B[2J\\x07", "nothing steers the terminal"},
      {"", "", "nothing"},
      {"   \r\n ", "", "blanks"},
      {Fault("<faultstring>cut").substr(0, 150), "", "XML that is cut off"},
      {"<?xml version=\"1.0\"?><!DOCTYPE a [<!ENTITY b \"c\">]><a>&b;</a>", "", "a DTD"},
      {"<title>&#60;b&#62;", "", "a title that does not end"},
      {"<p>&#99999999999;&#;&#x41;", "", "references that are none"},
  };
  for (const WordCase& row : cases) EXPECT_EQ(FindServerWord(row.answer), row.word) << row.why;
}

TEST_F(ServerWord, IsNotLongerThanALine) {
  const std::string word = FindServerWord(std::string(299, 'x') + "\xC3\xA9\xC3\xA9");
  EXPECT_EQ(word, std::string(299, 'x') + "...") << "not cut within a character";
  EXPECT_EQ(FindServerWord(std::string(300, 'x')), std::string(300, 'x'));
  EXPECT_EQ(FindServerWord(std::string(64 * 1024, '<')), "");
}

std::string UpdateAnswer(const std::string& result) {
  return Fault(
      "<UpdateListItemsResult xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">"
      "<Results><Result ID=\"1,Update\">" +
      result + "</Result></Results></UpdateListItemsResult>");
}

TEST_F(ServerWord, AnUpdateIsRefusedByItsCode) {
  UpdateVerdict verdict = FindUpdateVerdict(
      UpdateAnswer("<ErrorCode>0x81020014</ErrorCode><ErrorText>Invalid data.\x9</ErrorText>"));
  EXPECT_TRUE(verdict.refused);
  EXPECT_EQ(verdict.code, "0x81020014");
  EXPECT_EQ(verdict.text, "Invalid data.");

  verdict = FindUpdateVerdict(UpdateAnswer("<ErrorCode>0x80070005</ErrorCode>"));
  EXPECT_TRUE(verdict.refused);
  EXPECT_EQ(verdict.text, "");
}

TEST_F(ServerWord, AnUpdateWithoutACodeIsNotRefused) {
  EXPECT_FALSE(FindUpdateVerdict(UpdateAnswer("<ErrorCode>0x00000000</ErrorCode>")).refused);
  EXPECT_FALSE(FindUpdateVerdict(UpdateAnswer("")).refused);
  EXPECT_FALSE(FindUpdateVerdict("").refused);
  EXPECT_FALSE(FindUpdateVerdict("no XML").refused);
}

TEST_F(ServerWord, ElementTextIsThatOfTheFirst) {
  EXPECT_EQ(FindElementText("<?xml version='1.0'?><a xmlns='urn:a'><B> x </B><B>y</B></a>", "B"),
            "x");
  EXPECT_EQ(FindElementText("<?xml version='1.0'?><a/>", "B"), "");
  EXPECT_EQ(FindElementText("<?xml version='1.0'?><a>", "B"), "");
}

}  // namespace
}  // namespace velandoc
