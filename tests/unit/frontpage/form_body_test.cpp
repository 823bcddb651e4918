#include "frontpage/form_body.h"

#include <gtest/gtest.h>

#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

std::string Encoded(WideView text) { return testing::Printable(EncodeFormValue(text).c_str()); }

struct EncodeCase {
  WideString text;
  const char* encoded;
  const char* why;
};

TEST(EncodeFormValue, EscapesUnitByUnit) {
  const EncodeCase cases[] = {
      {OLESTR(""), "", "nothing"},
      {OLESTR("azAZ09-._~"), "azAZ09-._~", "all that stays"},
      {OLESTR(" "), "+", "a space"},
      {OLESTR("+"), "%2b", "a plus is no space"},
      {OLESTR(":/[]&%="), "%3a%2f%5b%5d%26%25%3d", "what the body is made of"},
      {OLESTR("!\"#$'()*,;<>?@\\^`{|}"),
       "%21%22%23%24%27%28%29%2a%2c%3b%3c%3e%3f%40%5c%5e%60%7b%7c%7d", "the rest of ASCII"},
      {OLESTR("@[`{/:"), "%40%5b%60%7b%2f%3a", "the neighbours of the ranges"},
      {OLESTR("\t\n\r"), "%9%a%d", "one digit below 16"},
      {WideString(1, 0), "%0", "a NUL"},
      {WideString{15, 16, 17}, "%f%10%11", "where two digits begin"},
      {WideString{0x7F, 0x80, 0xFF, 0x100}, "%7f%80%ff%100", "where three digits begin"},
      {WideString{0xFFF, 0x1000, 0xFFFF}, "%fff%1000%ffff", "where four digits begin"},
      {WideString{0xE9}, "%e9", "an accented letter is one unit"},
      {WideString{0xC3, 0xA9}, "%c3%a9", "the same as it is read from a page"},
      {WideString{0x4E2D}, "%4e2d", "no UTF-8"},
      {WideString{0xD83D, 0xDE00}, "%d83d%de00", "a surrogate pair is two units"},
      {WideString{0xDE00}, "%de00", "half a pair"},
  };
  for (const EncodeCase& test : cases) EXPECT_EQ(Encoded(test.text), test.encoded) << test.why;
}

TEST(EncodeFormValue, TildeAndDotOfAFileNameStayLiteral) {
  EXPECT_EQ(Encoded(OLESTR("~a.b+c d.xlsx")), "~a.b%2bc+d.xlsx");
}

class AnyHandler final : public CFrontPageHandler {
 public:
  AnyHandler() : CFrontPageHandler(OLESTR("/path")) {}
};

std::string Body(const CFrontPageHandler& handler) {
  return testing::Printable(BuildRequestBody(handler).c_str());
}

TEST(BuildRequestBody, JoinsThePairsInTheirOrder) {
  AnyHandler handler;
  EXPECT_EQ(Body(handler), "");
  handler.AddParam(OLESTR("z"), OLESTR("1 2"));
  EXPECT_EQ(Body(handler), "z=1+2");
  handler.AddParam(OLESTR("a b"), OLESTR(""));
  EXPECT_EQ(Body(handler), "z=1+2&a+b=");
  handler.AddParam(OLESTR("z"), OLESTR("="));
  EXPECT_EQ(Body(handler), "z=1+2&a+b=&z=%3d");
}

TEST(BuildRequestBody, AnEmptyFirstPairStillSeparates) {
  AnyHandler handler;
  handler.AddParam(OLESTR(""), OLESTR(""));
  handler.AddParam(OLESTR(""), OLESTR(""));
  EXPECT_EQ(Body(handler), "=&=");
}

TEST(BuildRequestBody, OfTheThreeMethods) {
  EXPECT_EQ(Body(CUrlToWebUrlHandler(
                OLESTR("http://h.test:8080/sites/a/Shared%20Documents/b.xlsx?x=y#z"))),
            "method=url+to+web+url%3a12.0.0.6665"
            "&url=%2fsites%2fa%2fShared%2520Documents%2fb.xlsx")
      << "the escape of the URL is escaped once more; host and query have no part in it";
  EXPECT_EQ(Body(CUrlToWebUrlHandler(OLESTR("http://h/sites/a/Shared Documents/b.xlsx"))),
            "method=url+to+web+url%3a12.0.0.6665&url=%2fsites%2fa%2fShared+Documents%2fb.xlsx")
      << "a bare space";
  EXPECT_EQ(Body(CMetaInfoHandler(OLESTR("/sites/a"), OLESTR("Shared Documents/b.xlsx"))),
            "method=getDocsMetaInfo%3a12.0.0.6665&service_name=%2f"
            "&url_list=%5bShared+Documents%2fb.xlsx%5d&listHiddenDocs=false&listLinkInfo=true");
  EXPECT_EQ(Body(CMetaInfoHandler(OLESTR("/"), OLESTR(""))),
            "method=getDocsMetaInfo%3a12.0.0.6665&service_name=%2f&url_list=%5b%5d"
            "&listHiddenDocs=false&listLinkInfo=true");
  EXPECT_EQ(Body(COpenServiceHandler()), "method=open+service");
}

TEST(BuildRequestBody, AUrlThatDoesNotParseGoesOutEmpty) {
  const LPCWSTR urls[] = {OLESTR("h.test"), OLESTR(""), nullptr};
  for (const LPCWSTR url : urls) {
    EXPECT_EQ(Body(CUrlToWebUrlHandler(url)), "method=url+to+web+url%3a12.0.0.6665&url=")
        << testing::Printable(url);
  }
}

}  // namespace
}  // namespace velandoc
