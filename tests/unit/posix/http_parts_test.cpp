// The small parts of the ports over libcurl, one table each.
#include <curl/curl.h>
#include <gtest/gtest.h>

#include "platform/posix/http/challenge.h"
#include "platform/posix/http/endpoint.h"
#include "platform/posix/http/name_override.h"
#include "platform/posix/http/proxy.h"
#include "platform/posix/wininet/netrc.h"
#include "tests/support/posix/environment_scope.h"

namespace velandoc::http {
namespace {

using test::EnvironmentScope;
using wininet::FindInNetrc;
using wininet::NetrcLogin;

TEST(Challenge, ReadsSchemesAndRealm) {
  struct Case {
    std::vector<std::string_view> values;
    unsigned long schemes;
    const char* realm;
  };
  const Case cases[] = {
      {{"Basic realm=\"a b\""}, CURLAUTH_BASIC, "a b"},
      {{"basic"}, CURLAUTH_BASIC, ""},
      {{"Negotiate", "NTLM"}, CURLAUTH_NEGOTIATE | CURLAUTH_NTLM, ""},
      {{"Digest realm=\"x\", nonce=\"n,Basic\", qop=\"auth\", Basic realm=\"y\""},
       CURLAUTH_DIGEST | CURLAUTH_BASIC,
       "x"},
      {{"Digest realm=\"q\\\"t\""}, CURLAUTH_DIGEST, "q\"t"},
      {{"Bearer realm=\"z\""}, 0, "z"},
      {{"NTLM TlRMTVNTUAAC=="}, CURLAUTH_NTLM, ""},
      {{",,, \"Basic"}, CURLAUTH_BASIC, ""},
      {{"Basic realm=\"open"}, CURLAUTH_BASIC, "open"},
      {{""}, 0, ""},
      {{}, 0, ""},
  };
  for (const Case& row : cases) {
    const Challenge challenge = ParseChallenges(row.values);
    EXPECT_EQ(challenge.schemes, row.schemes);
    EXPECT_EQ(challenge.realm, row.realm);
  }
}

TEST(Challenge, PrefersTheStrongerPasswordScheme) {
  EXPECT_EQ(PasswordScheme(CURLAUTH_BASIC | CURLAUTH_DIGEST | CURLAUTH_NTLM), CURLAUTH_NTLM);
  EXPECT_EQ(PasswordScheme(CURLAUTH_BASIC | CURLAUTH_DIGEST), CURLAUTH_DIGEST);
  EXPECT_EQ(PasswordScheme(CURLAUTH_BASIC | CURLAUTH_NEGOTIATE), CURLAUTH_BASIC);
  EXPECT_EQ(PasswordScheme(CURLAUTH_NEGOTIATE), 0U);
}

TEST(NameOverride, FindsTheFirstThatFits) {
  constexpr char kList[] = "a.test=10.0.0.1,,B.test=[::1]:99,a.test=x,bad,empty=,=y,c=d=e";
  EXPECT_EQ(FindOverride(kList, "A.TEST"), "10.0.0.1");
  EXPECT_EQ(FindOverride(kList, "b.test"), "[::1]:99");
  EXPECT_EQ(FindOverride(kList, "c"), "d=e");
  for (const char* host : {"bad", "empty", "x.a.test", "test"}) {
    EXPECT_EQ(FindOverride(kList, host), std::nullopt) << host;
  }
  EXPECT_EQ(FindOverride("", "a"), std::nullopt);
}

TEST(NameOverride, IsWrittenForLibcurl) {
  EXPECT_EQ(ConnectToText("a"), std::nullopt);
  const EnvironmentScope list("VELANDOC_RESOLVE", "a=10.0.0.1,b=10.0.0.1:99,c=[::1],d=[::1]:99");
  EXPECT_EQ(ConnectToText("a"), "::10.0.0.1:");
  EXPECT_EQ(ConnectToText("b"), "::10.0.0.1:99");
  EXPECT_EQ(ConnectToText("c"), "::[::1]:");
  EXPECT_EQ(ConnectToText("d"), "::[::1]:99");
  EXPECT_EQ(ConnectToText("e"), std::nullopt);
}

TEST(Netrc, FindsTheFirstEntryOfAHost) {
  constexpr char kText[] =
      "# a comment machine no login no\n"
      "machine a.test login anna password pa\n"
      "macdef init\n machine b.test login wrong password wrong\n\n"
      "machine b.test account acc login \"b ob\"\n  password \"p\\\"w\"\n"
      "machine a.test login second password x\n"
      "machine nologin.test password x\n"
      "default login any password pd\n";
  struct Case {
    const char* host;
    const char* user;
    const char* password;
  };
  for (const Case& row : {Case{"a.test", "anna", "pa"}, Case{"A.TEST", "anna", "pa"},
                          Case{"b.test", "b ob", "p\"w"}, Case{"other", "any", "pd"}}) {
    SCOPED_TRACE(row.host);
    const auto login = FindInNetrc(kText, row.host);
    ASSERT_TRUE(login.has_value());
    EXPECT_EQ(login->user, row.user);
    EXPECT_EQ(login->password, row.password);
  }
  EXPECT_FALSE(FindInNetrc("machine a login x", "b").has_value());
  EXPECT_FALSE(FindInNetrc("", "b").has_value());
  EXPECT_FALSE(FindInNetrc("machine", "b").has_value());
}

TEST(Proxy, ExcludesHosts) {
  struct Case {
    const char* list;
    const char* host;
    bool excluded;
  };
  for (const Case& row :
       {Case{"a.test", "a.test", true}, Case{"a.test", "A.Test", true},
        Case{"a.test", "x.a.test", true}, Case{"a.test", "xa.test", false},
        Case{".a.test", "a.test", true}, Case{"b, a.test", "a.test", true}, Case{"*", "any", true},
        Case{"", "any", false}, Case{"::1", "[::1]", true}, Case{",,", "any", false}}) {
    EXPECT_EQ(IsExcludedHost(row.list, row.host), row.excluded) << row.list << " " << row.host;
  }
}

TEST(Proxy, ComesFromTheEnvironment) {
  const EnvironmentScope none("no_proxy", nullptr);
  const EnvironmentScope noneUpper("NO_PROXY", nullptr);
  const EnvironmentScope all("all_proxy", nullptr);
  const EnvironmentScope allUpper("ALL_PROXY", nullptr);
  const EnvironmentScope upper("HTTP_PROXY", "http://wrong:1");
  const EnvironmentScope httpsLower("https_proxy", nullptr);
  const EnvironmentScope httpsUpper("HTTPS_PROXY", "http://u:p@[::1]:99/");
  const Endpoint plain{false, "a.test", 80};
  const Endpoint secure{true, "a.test", 443};
  {
    const EnvironmentScope lower("http_proxy", nullptr);
    EXPECT_FALSE(ProxyFor(plain).has_value());
  }
  const EnvironmentScope lower("http_proxy", "p.test:8080");
  const std::optional<Proxy> proxy = ProxyFor(plain);
  ASSERT_TRUE(proxy.has_value());
  EXPECT_EQ(proxy->endpoint.host, "p.test");
  EXPECT_EQ(proxy->endpoint.port, 8080U);
  EXPECT_TRUE(proxy->TakesWholeUrl(plain));
  EXPECT_FALSE(proxy->HasLogin());
  const std::optional<Proxy> other = ProxyFor(secure);
  ASSERT_TRUE(other.has_value());
  EXPECT_EQ(other->endpoint.host, "[::1]");
  EXPECT_EQ(other->endpoint.port, 99U);
  EXPECT_FALSE(other->TakesWholeUrl(secure));
  EXPECT_TRUE(other->HasLogin());
  const EnvironmentScope excluded("NO_PROXY", "a.test");
  EXPECT_FALSE(ProxyFor(plain).has_value());
}

TEST(Endpoint, ResolvesDotSegmentsOfTheObjectName) {
  struct Case {
    LPCWSTR name;
    const char* target;
  };
  for (const Case& row :
       {Case{u"/a/./b", "/a/b"}, Case{u"/a/../b", "/b"}, Case{u"/../b", "/b"}, Case{u"/a/..", "/"},
        Case{u"/a/.", "/a/"}, Case{u"..", "/"}, Case{u"/a/.../b..c", "/a/.../b..c"},
        Case{u"/a?x/../y", "/a?x/../y"}, Case{u"//a", "//a"}, Case{u"", "/"}}) {
    EXPECT_EQ(RequestTarget(row.name), row.target);
  }
}

TEST(Endpoint, FollowsLocations) {
  struct Case {
    const char* location;
    bool secure;
    const char* host;
    unsigned port;
    const char* target;
  };
  for (const Case& row :
       {Case{"/x?y", false, "a.test", 81, "/x?y"}, Case{"z", false, "a.test", 81, "/dir/z"},
        Case{"?q", false, "a.test", 81, "/dir/page?q"},
        Case{"//b.test/x", false, "b.test", 80, "/x"},
        Case{"https://b.test", true, "b.test", 443, "/"},
        Case{"HTTP://b.test:8080/a b#f", false, "b.test", 8080, "/a%20b"},
        Case{"http://u:p@b.test/", false, "b.test", 80, "/"},
        Case{"http://b.test/a%2db//c?_=%7B", false, "b.test", 80, "/a%2db//c?_=%7B"},
        Case{"http://b.test?q=a/../b c", false, "b.test", 80, "/?q=a/../b%20c"},
        Case{"https://b.test:/x", true, "b.test", 443, "/x"},
        Case{"https://b.test:65535", true, "b.test", 65535, "/"},
        Case{"http://[::1]:99/x", false, "[::1]", 99, "/x"},
        Case{"http://[::1]", false, "[::1]", 80, "/"},
        Case{"http://b.test/\xC3\xA9\t?\xC3\xA9", false, "b.test", 80, "/%c3%a9%09?%c3%a9"},
        Case{"/a/../final/./x", false, "a.test", 81, "/final/x"},
        Case{"../up", false, "a.test", 81, "/up"}, Case{"./z?", false, "a.test", 81, "/dir/z?"},
        Case{"#part", false, "a.test", 81, "/dir/page"},
        Case{"a/b:c", false, "a.test", 81, "/dir/a/b:c"}}) {
    SCOPED_TRACE(row.location);
    Endpoint endpoint{false, "a.test", 81};
    std::string target = "/dir/page?old";
    ASSERT_TRUE(FollowLocation(row.location, endpoint, target));
    EXPECT_EQ(endpoint, (Endpoint{row.secure, row.host, row.port}));
    EXPECT_EQ(target, row.target);
  }
  for (const char* location :
       {"ftp://x/", "hdfs://x:1/y", "http://", "mailto:x", "http:/x", "https:x", "//", "http:///x",
        "http://a b/", "http://b.test:0/", "http://b.test:65536/", "http://b.test:8x/",
        "http://b.test:-1/", "http://[::1/", "http://[::1]x/", "http://u@/", "a:b"}) {
    SCOPED_TRACE(location);
    Endpoint endpoint{false, "a.test", 81};
    std::string target = "/t";
    EXPECT_FALSE(FollowLocation(location, endpoint, target));
    EXPECT_EQ(target, "/t");
    EXPECT_EQ(endpoint.host, "a.test");
  }
}

}  // namespace
}  // namespace velandoc::http
