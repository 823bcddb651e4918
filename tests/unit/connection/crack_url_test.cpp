#include <gtest/gtest.h>

#include <algorithm>

#include "connection/schemes.h"
#include "connection/url_components.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::Printable;

WideString Repeat(OLECHAR unit, std::size_t count) { return WideString(count, unit); }

// "index scheme user:password host port path extra", "-" for an empty text; "fails".
std::string Describe(const UrlComponents& url) {
  const auto text = [](LPCWSTR field, std::uint32_t length) {
    EXPECT_EQ(WideView(field).size(), length);
    return length == 0 ? std::string("-") : Printable(field);
  };
  return std::to_string(url.schemeIndex) + " " + text(url.schemeName, url.schemeNameLength) + " " +
         text(url.userName, url.userNameLength) + ":" + text(url.password, url.passwordLength) +
         " " + text(url.hostName, url.hostNameLength) + " " + std::to_string(url.port) + " " +
         text(url.urlPath, url.urlPathLength) + " " + text(url.extraInfo, url.extraInfoLength);
}

std::string Crack(LPCWSTR text) {
  UrlComponents url;
  if (CrackUrl(text, url)) return Describe(url);
  EXPECT_EQ(Describe(url), "-1 - -:- - 0 - -") << "a failed parse leaves the components cleared";
  return "fails";
}

struct CrackCase {
  const OLECHAR* in;
  const char* out;
  const char* why;
};

const CrackCase kCrackCases[] = {
    {OLESTR("http://h.test/a/b?x=1"), "2 http -:- h.test 80 /a/b ?x=1", "the usual form"},
    {OLESTR("https://h.test"), "3 https -:- h.test 443 - -", "no path stays empty"},
    {OLESTR("HTTPS://H.Test/A"), "3 HTTPS -:- H.Test 443 /A -", "case is ignored, spelling kept"},
    {OLESTR("ftp://h"), "0 ftp -:- h 21 - -", "default port"},
    {OLESTR("gopher://h"), "1 gopher -:- h 70 - -", "default port"},
    {OLESTR("socks://h"), "7 socks -:- h 1080 - -", "default port"},
    {OLESTR("dav://h/a"), "-1 dav -:- h 0 /a -", "an unknown scheme has no port"},
    {OLESTR("dav://h:81/a"), "-1 dav -:- h 81 /a -", "but may bring one"},

    {OLESTR(""), "fails", "empty"},
    {OLESTR("h.test"), "fails", "no scheme"},
    {OLESTR("h.test/a?b=c"), "fails", "no scheme"},
    {OLESTR("h.test:80/a"), "-1 h.test -:- 80 0 /a -", "what stands before a colon is a scheme"},
    {OLESTR("[::1]"), "fails", "colons in brackets end no scheme"},
    {OLESTR("[::1]:80/a"), "-1 [::1] -:- 80 0 /a -", "the first colon outside brackets"},
    {OLESTR("[http://h"), "fails", "brackets that stay open hide every colon"},
    {OLESTR("://h/a"), "-1 - -:- h 0 /a -", "no text is an unknown name"},
    {OLESTR("a:b"), "-1 a -:- b 0 - -", "no slashes: a host follows"},

    {OLESTR("http:h/a"), "2 http -:- h 80 /a -", "no slashes: a host follows"},
    {OLESTR("http:/a/b?c"), "2 http -:- - 80 /a/b ?c", "one slash: a path, and no host"},
    {OLESTR("http:///a"), "2 http -:- - 80 /a -", "an empty host parses"},
    {OLESTR("http://"), "2 http -:- - 80 - -", "an empty host parses"},
    {OLESTR("http:"), "2 http -:- - 80 - -", "an empty host parses"},
    {OLESTR("http:////a"), "2 http -:- - 80 //a -", "two slashes are skipped, not more"},

    {OLESTR("mailto:me@h.test"), "6 mailto me:- h.test 0 - -", "user and host"},
    {OLESTR("mailto:me@h.test:25"), "6 mailto me:- h.test 0 - -", "never a port"},
    {OLESTR("mailto://me@h.test"), "fails", "slashes are refused"},
    {OLESTR("mailto:/me"), "6 mailto -:- - 0 /me -", "a single slash is not"},
    {OLESTR("MailTo://x"), "fails", "in any spelling"},
    {OLESTR("news:comp.lang"), "5 news -:- comp.lang 0 - -", "no port"},
    {OLESTR("news://h:119/g"), "5 news -:- h 0 /g -", "never a port"},

    {OLESTR("file:///c:/a?b#c"), "4 file -:- - 0 /c:/a?b#c -", "a file's path holds ? and #"},
    {OLESTR("file://server/share"), "4 file -:- - 0 server/share -", "no host either"},
    {OLESTR("file:c:\\a"), "4 file -:- - 0 c:\\a -", "straight to the path"},
    {OLESTR("file:/a:b@c"), "4 file -:- - 0 /a:b@c -", "straight to the path"},

    {OLESTR("http://h?x:y@z/w"), "2 http -:- h 80 - ?x:y@z/w", "? ends the host"},
    {OLESTR("http://h#f"), "2 http -:- h#f 80 - -", "# does not end the host"},
    {OLESTR("http://h#f/a"), "2 http -:- h#f 80 /a -", "# does not end the host"},
    {OLESTR("http://h/a#f?x"), "2 http -:- h 80 /a #f?x", "the first of ? and # counts"},
    {OLESTR("http://h/a?x#f"), "2 http -:- h 80 /a ?x#f", "the first of ? and # counts"},
    {OLESTR("http://h/a?"), "2 http -:- h 80 /a ?", "a lone ? stays"},
    {OLESTR("http://h/a:b@c"), "2 http -:- h 80 /a:b@c -", "nothing special in a path"},

    {OLESTR("http://[::1]/a"), "2 http -:- [::1] 80 /a -", "brackets stay part of the host"},
    {OLESTR("http://[::1]:8080/a"), "2 http -:- [::1] 8080 /a -", "a port behind them"},
    {OLESTR("http://me@[::1]:81"), "2 http me:- [::1] 81 - -", "behind a user too"},
    {OLESTR("http://me:pw@[::1]:81"), "2 http me:pw [::1] 81 - -", "behind a password too"},
    {OLESTR("http://[::1/a"), "2 http -:- [::1 80 /a -", "open brackets end with the host"},
    {OLESTR("http://[a:b]c:1"), "2 http -:- [a:b]c 1 - -", "plain up to ], then a port"},

    {OLESTR("http://h:8080"), "2 http -:- h 8080 - -", "port at the end"},
    {OLESTR("http://h:80/a"), "2 http -:- h 80 /a -", "port before a path"},
    {OLESTR("http://h:/a"), "2 http -:- h 0 /a -", "no digits are port 0, not the default"},
    {OLESTR("http://h:"), "2 http -:- h 0 - -", "no digits are port 0, not the default"},
    {OLESTR("http://h:0"), "2 http -:- h 0 - -", "a port of 0 stays"},
    {OLESTR("http://h:80x/a"), "2 http -:- h 80 /a -", "digits up to another character"},
    {OLESTR("http://h:x80/a"), "2 http -:- h 0 /a -", "no leading digits"},
    {OLESTR("http://h: \t80"), "2 http -:- h 80 - -", "leading blanks"},
    {OLESTR("http://h:+81"), "2 http -:- h 81 - -", "a sign"},
    {OLESTR("http://h:+-81"), "2 http -:- h 0 - -", "one sign only"},
    {OLESTR("http://h:-1"), "2 http -:- h 65535 - -", "cut to 16 bits"},
    {OLESTR("http://h:65535"), "2 http -:- h 65535 - -", "the largest"},
    {OLESTR("http://h:65536"), "2 http -:- h 0 - -", "cut to 16 bits"},
    {OLESTR("http://h:65616"), "2 http -:- h 80 - -", "cut to 16 bits"},
    {OLESTR("http://h:2147483647"), "2 http -:- h 65535 - -", "the largest of 32 bits"},
    {OLESTR("http://h:99999999999999999999"), "2 http -:- h 65535 - -", "the nearest of 32 bits"},
    {OLESTR("http://h:-99999999999999999999"), "2 http -:- h 0 - -", "the nearest of 32 bits"},
    {OLESTR("http://h:80?x=1"), "2 http -:- h 80 - -", "? does not end the second token"},
    {OLESTR("http://h:80?a/b"), "2 http -:- h 80 /b -", "? does not end the second token"},
    {OLESTR("http://h:1:2/a"), "2 http -:- h 1 /a -", "nor does a second colon"},

    {OLESTR("http://me@h/a"), "2 http me:- h 80 /a -", "a user"},
    {OLESTR("http://me:pw@h/a"), "2 http me:pw h 80 /a -", "user and password"},
    {OLESTR("http://me:pw@h:81/a"), "2 http me:pw h 81 /a -", "and port"},
    {OLESTR("http://me@h:81/a"), "2 http me:- h 81 /a -", "user and port"},
    {OLESTR("http://me:p:w@h"), "2 http me:p:w h 80 - -", "colons in a password"},
    {OLESTR("http://me:p?w@h"), "2 http me:p?w h 80 - -", "? in a password"},
    {OLESTR("http://me:@h"), "2 http me:- h 80 - -", "an empty password"},
    {OLESTR("http://@h"), "2 http -:- h 80 - -", "an empty user"},
    {OLESTR("http://:pw@h"), "fails", "a password with an empty user"},
    {OLESTR("http://me:p/w@h"), "2 http -:- me 0 /w@h -", "/ ends the token: host and port"},
    {OLESTR("http://a@b@h"), "fails", "a second user"},
    {OLESTR("http://a:p@b@h"), "fails", "a second user"},
    {OLESTR("http://a@b:p@h"), "fails", "a second user, with a password"},
    {OLESTR("http://a:p@b:q@h"), "fails", "a second user, with a password"},
    {OLESTR("http://@b:p@h"), "fails", "an empty user has been seen too"},
    {OLESTR("http://a@"), "2 http a:- - 80 - -", "an empty host"},
    {OLESTR("http://h/\u00e9"), "2 http -:- h 80 /\\u00e9 -", "nothing is escaped"},
};

TEST(CrackUrl, SplitsByTheTable) {
  for (const CrackCase& test : kCrackCases) {
    EXPECT_EQ(Crack(test.in), test.out) << Printable(test.in) << ": " << test.why;
  }
}

TEST(CrackUrl, NullIsAnEmptyUrl) { EXPECT_EQ(Crack(nullptr), "fails"); }

struct LimitCase {
  const char* part;
  WideString before;
  std::size_t capacity;
  WideString behind;
};

TEST(CrackUrl, EachPartHasItsCapacity) {
  const LimitCase cases[] = {
      {"unknown scheme", OLESTR(""), 32, OLESTR("://h")},
      {"host", OLESTR("http://"), 256, OLESTR("")},
      {"host before a path", OLESTR("http://"), 256, OLESTR("/a")},
      {"host before a port", OLESTR("http://"), 256, OLESTR(":80/a")},
      {"user", OLESTR("http://"), 128, OLESTR("@h")},
      {"user before a password", OLESTR("http://"), 128, OLESTR(":p@h")},
      {"password", OLESTR("http://u:"), 128, OLESTR("@h")},
      {"path", OLESTR("http://h/"), 2047, OLESTR("")},
      {"path before extra", OLESTR("http://h/"), 2047, OLESTR("?x")},
      {"path of a file", OLESTR("file:"), 2048, OLESTR("")},
      {"extra", OLESTR("http://h/a?"), 2047, OLESTR("")},
  };
  for (const LimitCase& test : cases) {
    SCOPED_TRACE(test.part);
    EXPECT_NE(Crack((test.before + Repeat('7', test.capacity) + test.behind).c_str()), "fails");
    EXPECT_EQ(Crack((test.before + Repeat('7', test.capacity + 1) + test.behind).c_str()), "fails");
    // As long as the reader's longest token, and far beyond.
    for (const std::size_t length : {2088, 2089, 2090, 100000}) {
      EXPECT_EQ(Crack((test.before + Repeat('7', length) + test.behind).c_str()), "fails");
    }
  }
}

TEST(CrackUrl, APortHasAtMost128Characters) {
  const WideString zeros = Repeat('0', 126);
  EXPECT_EQ(Crack((OLESTR("http://h:") + zeros + OLESTR("81/a")).c_str()), "2 http -:- h 81 /a -");
  EXPECT_EQ(Crack((OLESTR("http://h:") + zeros + OLESTR("081/a")).c_str()), "fails");
}

TEST(CrackUrl, PathAndExtraCanBothBeFull) {
  const WideString path = OLESTR("/") + Repeat('p', 2047);
  const WideString extra = OLESTR("?") + Repeat('q', 2047);
  UrlComponents url;
  ASSERT_TRUE(CrackUrl((OLESTR("http://h") + path + extra).c_str(), url));
  EXPECT_EQ(url.UrlPath(), path);
  EXPECT_EQ(url.ExtraInfo(), extra);
}

TEST(CrackUrl, LeavesNothingOfAnEarlierUrl) {
  UrlComponents url;
  ASSERT_TRUE(CrackUrl(OLESTR("https://me:pw@h:81/a?x"), url));
  ASSERT_TRUE(CrackUrl(OLESTR("x:"), url));
  EXPECT_EQ(Describe(url), "-1 x -:- - 0 - -");
  EXPECT_FALSE(CrackUrl(OLESTR("x"), url));
  EXPECT_EQ(Describe(url), "-1 - -:- - 0 - -");
}

TEST(UrlComponents, NewOnesStandAtHttp) {
  const UrlComponents url;
  EXPECT_EQ(Describe(url), "2 http -:- - 80 - -");
}

TEST(UrlComponents, ClearedOnesHaveNoScheme) {
  UrlComponents url;
  url.Clear();
  EXPECT_EQ(Describe(url), "-1 - -:- - 0 - -");
}

TEST(UrlComponents, FieldsStandInOrder) {
  const UrlComponents url;
  const auto* base = reinterpret_cast<const char*>(&url);
  const auto at = [&](const void* field) { return static_cast<const char*>(field) - base; };
  const std::ptrdiff_t order[] = {
      at(url.schemeName),      at(url.hostName),        at(url.userName),
      at(url.password),        at(url.urlPath),         at(url.extraInfo),
      at(&url.port),           at(&url.schemeIndex),    at(&url.schemeNameLength),
      at(&url.hostNameLength), at(&url.userNameLength), at(&url.passwordLength),
      at(&url.urlPathLength),  at(&url.extraInfoLength)};
  EXPECT_TRUE(std::is_sorted(std::begin(order), std::end(order)));
  EXPECT_EQ(sizeof url.schemeName, 33 * sizeof(OLECHAR));
  EXPECT_EQ(sizeof url.hostName, 257 * sizeof(OLECHAR));
  EXPECT_EQ(sizeof url.userName, 129 * sizeof(OLECHAR));
  EXPECT_EQ(sizeof url.password, 129 * sizeof(OLECHAR));
  EXPECT_EQ(sizeof url.urlPath, 2049 * sizeof(OLECHAR));
  EXPECT_EQ(sizeof url.extraInfo, 2049 * sizeof(OLECHAR));
}

struct RootCase {
  const OLECHAR* in;
  const char* out;
  const char* why;
};

const RootCase kRootCases[] = {
    {OLESTR("http://h.test:8080/sites/a/b.xlsx?x#y"), "http://h.test", "port and path are dropped"},
    {OLESTR("HTTPS://Docs.Test/a"), "HTTPS://Docs.Test", "in the spelling of the URL"},
    {OLESTR("https://me:pw@h.test/"), "https://h.test", "user and password are dropped"},
    {OLESTR("http://[::1]:81/a"), "http://[::1]", "brackets belong to the host"},
    {OLESTR("http:h/a"), "http://h", "the slashes are always written"},
    {OLESTR("file:///c:/a"), "file://", "no host"},
    {OLESTR("h.test"), "", "no scheme does not parse"},
    {OLESTR(""), "", "does not parse"},
    {OLESTR("mailto://x"), "", "does not parse"},
};

TEST(GetServerRoot, IsSchemeAndHost) {
  for (const RootCase& test : kRootCases) {
    EXPECT_EQ(Printable(GetServerRoot(test.in).c_str()), test.out) << test.why;
  }
  EXPECT_TRUE(GetServerRoot(nullptr).empty());
}

}  // namespace
}  // namespace velandoc
