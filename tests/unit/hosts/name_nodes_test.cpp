#include "hosts/command/name_nodes.h"

#include <gtest/gtest.h>

namespace velandoc {
namespace {

TEST(NameNodes, AreReadFromOneWord) {
  std::vector<NameNode> nodes;
  EXPECT_FALSE(ReadNameNodes(
      "http://a,https://b.test:9871/,HTTP://[::1]:80/webhdfs/v1,http://[::1]", nodes));
  ASSERT_EQ(nodes.size(), 4U);
  EXPECT_EQ(nodes[0].url, "http://a");
  EXPECT_EQ(nodes[0].port, std::nullopt);
  EXPECT_EQ(nodes[1].url, "https://b.test:9871");
  EXPECT_EQ(nodes[1].port, 9871);
  EXPECT_EQ(nodes[2].url, "HTTP://[::1]:80");
  EXPECT_EQ(nodes[2].port, 80);
  EXPECT_EQ(nodes[3].port, std::nullopt);
}

TEST(NameNodes, AreRefusedIfOneCannotBeAsked) {
  for (const char* text :
       {"", "a", "http://a,", ",http://a", "ftp://a", "http://", "http://a:0", "http://a:65536",
        "http://a:x", "http://a:1 ", "http://u:p@a", "http://a/x", "http://a?x", "http://a#x"}) {
    std::vector<NameNode> nodes;
    EXPECT_TRUE(ReadNameNodes(text, nodes)) << text;
  }
}

TEST(NameNodes, RememberTheActiveOne) {
  NameNodes nodes({{"http://a", std::nullopt}, {"http://b", std::nullopt}});
  EXPECT_EQ(nodes.Active(), 0U);
  nodes.SetActive(1);
  EXPECT_EQ(nodes.All()[nodes.Active()].url, "http://b");
}

}  // namespace
}  // namespace velandoc
