#include "hdfs/request_params.h"

#include <gtest/gtest.h>

#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::Printable;

HdfsRequestParams NameNode() {
  HdfsRequestParams params;
  params.m_serverName = OLESTR("nn.example.test");
  return params;
}

TEST(HdfsAddress, StandsAtTheNameNodesPortAndAtOpen) {
  const HdfsRequestParams params;
  EXPECT_EQ(params.m_port, 50070);
  EXPECT_EQ(params.m_op, OLESTR("OPEN"));
  EXPECT_EQ(params.m_secure, 0);
  EXPECT_TRUE(params.m_serverName.empty());
  EXPECT_TRUE(params.m_hdfsPath.empty());
  EXPECT_TRUE(params.m_userName.empty());
  EXPECT_TRUE(params.m_queryParams.empty());
}

struct BaseCase {
  VARIANT_BOOL secure;
  std::uint16_t port;
  const OLECHAR* url;
};

TEST(HdfsAddress, ABaseUrlNamesThePortUnlessItIsTheSchemesOwn) {
  const BaseCase cases[] = {
      {0, 50070, OLESTR("http://nn.example.test:50070")},
      {0, 80, OLESTR("http://nn.example.test")},
      {0, 443, OLESTR("http://nn.example.test:443")},
      {0, 0, OLESTR("http://nn.example.test:0")},
      {0, 65535, OLESTR("http://nn.example.test:65535")},
      {VARIANT_TRUE, 443, OLESTR("https://nn.example.test")},
      {VARIANT_TRUE, 80, OLESTR("https://nn.example.test:80")},
      {1, 50470, OLESTR("https://nn.example.test:50470")},
  };
  for (const BaseCase& c : cases) {
    HdfsRequestParams params = NameNode();
    params.m_secure = c.secure;
    params.m_port = c.port;
    EXPECT_EQ(params.BuildBaseUrl(), c.url) << Printable(c.url);
  }
}

TEST(HdfsAddress, WithoutAServerNameThereIsNoBaseUrl) {
  const HdfsRequestParams params;
  EXPECT_EQ(params.BuildBaseUrl(), OLESTR(""));
  EXPECT_EQ(params.BuildPathUrl(), OLESTR("/webhdfs/v1/"));
}

TEST(HdfsAddress, AHostThatIsTooLongIsLeftOutWithItsPort) {
  HdfsRequestParams params;
  params.m_serverName.assign(256, 'h');
  EXPECT_EQ(params.BuildBaseUrl(), OLESTR("http://") + params.m_serverName + OLESTR(":50070"));
  params.m_serverName.assign(257, 'h');
  EXPECT_EQ(params.BuildBaseUrl(), OLESTR("http://"));
}

TEST(HdfsAddress, APathAlwaysBeginsWithASlash) {
  HdfsRequestParams params = NameNode();
  const std::pair<const OLECHAR*, const OLECHAR*> cases[] = {
      {OLESTR(""), OLESTR("/webhdfs/v1/")},
      {OLESTR("data"), OLESTR("/webhdfs/v1/data")},
      {OLESTR("/data"), OLESTR("/webhdfs/v1/data")},
      {OLESTR("//data"), OLESTR("/webhdfs/v1//data")},
      {OLESTR("/user/a b-c.txt"), OLESTR("/webhdfs/v1/user/a%20b%2dc.txt")},
      {OLESTR("/\u00e9\u4e2d"), OLESTR("/webhdfs/v1/\u00e9\u4e2d")},
  };
  for (const auto& [path, target] : cases) {
    params.m_hdfsPath = path;
    EXPECT_EQ(params.BuildPathUrl(), OLESTR("http://nn.example.test:50070") + WideString(target));
  }
}

TEST(HdfsAddress, OperationAndUserStandAsTheyAre) {
  HdfsRequestParams params = NameNode();
  params.m_hdfsPath = OLESTR("/f");
  EXPECT_EQ(params.BuildOpUrl(params.m_op),
            OLESTR("http://nn.example.test:50070/webhdfs/v1/f?op=OPEN"));
  params.m_userName = OLESTR("bob b");
  EXPECT_EQ(params.BuildOpUrl(OLESTR("x&y=z")),
            OLESTR("http://nn.example.test:50070/webhdfs/v1/f?op=x&y=z&user.name=bob b"));
}

TEST(HdfsRequestParams, ParametersFollowInTheOrderOfTheirKeys) {
  HdfsRequestParams params = NameNode();
  params.m_hdfsPath = OLESTR("/u/a b.txt");
  params.m_userName = OLESTR("bob");
  params.SetQueryParam(OLESTR("permission"), OLESTR("755"));
  params.SetQueryParam(OLESTR("overwrite"), OLESTR("true"));
  EXPECT_EQ(params.BuildFullUrl(OLESTR("CREATE")),
            OLESTR("http://nn.example.test:50070/webhdfs/v1/u/a%20b.txt?op=CREATE&user.name=bob"
                   "&overwrite=true&permission=755"));
}

TEST(HdfsRequestParams, AParameterStaysUntilItIsReplaced) {
  HdfsRequestParams params = NameNode();
  params.SetQueryParam(OLESTR("overwrite"), OLESTR("true"));
  params.SetQueryParam(OLESTR("permission"), OLESTR("755"));
  params.SetQueryParam(OLESTR("recursive"), OLESTR("false"));
  params.SetQueryParam(OLESTR("overwrite"), OLESTR("false"));
  EXPECT_EQ(params.BuildFullUrl(OLESTR("DELETE")),
            OLESTR("http://nn.example.test:50070/webhdfs/v1/?op=DELETE"
                   "&overwrite=false&permission=755&recursive=false"));
}

TEST(HdfsRequestParams, KeysDifferInCaseAndValuesAreEncoded) {
  HdfsRequestParams params = NameNode();
  params.SetQueryParam(OLESTR("a b"), OLESTR("\u00e9 -"));
  params.SetQueryParam(OLESTR("A b"), OLESTR(""));
  EXPECT_EQ(params.BuildFullUrl(OLESTR("X")), OLESTR("http://nn.example.test:50070/webhdfs/v1/?op=X"
                                                     "&A b=&a b=\u00c3\u00a9%20%2d"));
}

struct ParseCase {
  const OLECHAR* url;
  bool ok;
  VARIANT_BOOL secure;
  const OLECHAR* host;
  std::uint16_t port;
};

TEST(HdfsAddress, ParsesSchemeHostAndPort) {
  const ParseCase cases[] = {
      {OLESTR("http://h.test"), true, 0, OLESTR("h.test"), 50070},
      {OLESTR("https://h.test"), true, -1, OLESTR("h.test"), 50470},
      {OLESTR("HTTPS://h.test"), true, -1, OLESTR("h.test"), 50470},
      {OLESTR("http://h.test:8020"), true, 0, OLESTR("h.test"), 8020},
      {OLESTR("https://h.test:8020"), true, -1, OLESTR("h.test"), 8020},
      // Both usual ports stand for the name node's, whatever the scheme.
      {OLESTR("http://h.test:80"), true, 0, OLESTR("h.test"), 50070},
      {OLESTR("http://h.test:443"), true, 0, OLESTR("h.test"), 50070},
      {OLESTR("https://h.test:80"), true, -1, OLESTR("h.test"), 50470},
      {OLESTR("https://h.test:443"), true, -1, OLESTR("h.test"), 50470},
      {OLESTR("http://h.test:0"), true, 0, OLESTR("h.test"), 50070},
      {OLESTR("http://u:p@h.test:1/a/b"), true, 0, OLESTR("h.test"), 1},
      // A query ends it, with everything taken over.
      {OLESTR("https://h.test:8020/?a"), false, -1, OLESTR("h.test"), 8020},
      {OLESTR("https://h.test:8020/#a"), false, -1, OLESTR("h.test"), 8020},
      // An empty host ends it before the port.
      {OLESTR("https:///a"), false, -1, OLESTR(""), 7},
      // Nothing is taken over.
      {OLESTR("ftp://h.test"), false, 1, OLESTR("was"), 7},
      {OLESTR("h.test"), false, 1, OLESTR("was"), 7},
      {OLESTR(""), false, 1, OLESTR("was"), 7},
      {nullptr, false, 1, OLESTR("was"), 7},
  };
  for (const ParseCase& c : cases) {
    SCOPED_TRACE(Printable(c.url));
    HdfsRequestParams params;
    params.m_secure = 1;
    params.m_serverName = OLESTR("was");
    params.m_port = 7;
    params.m_hdfsPath = OLESTR("/p");
    params.m_userName = OLESTR("bob");
    EXPECT_EQ(params.ParseBaseUrl(c.url), c.ok);
    EXPECT_EQ(params.m_secure, c.secure);
    EXPECT_EQ(params.m_serverName, c.host);
    EXPECT_EQ(params.m_port, c.port);
    EXPECT_EQ(params.m_hdfsPath, OLESTR("/p"));
    EXPECT_EQ(params.m_userName, OLESTR("bob"));
  }
}

TEST(HdfsAddress, SecureAloneLeavesThePort) {
  HdfsRequestParams params = NameNode();
  params.m_secure = VARIANT_TRUE;
  EXPECT_EQ(params.BuildBaseUrl(), OLESTR("https://nn.example.test:50070"));
}

}  // namespace
}  // namespace velandoc
