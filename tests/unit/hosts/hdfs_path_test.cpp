#include "hosts/command/hdfs_path.h"

#include <gtest/gtest.h>

#include "hosts/text_encoding.h"
#include "platform/file_system.h"

namespace velandoc {
namespace {

TEST(HdfsPath, RefusesWhatCannotBeSent) {
  struct Row {
    std::string path;
    const char* problem;  // null: none
  };
  const Row rows[] = {
      {"/", nullptr},
      {"/a/b c/\xC3\xA9%#?&+-", nullptr},
      {"/a..b/...", nullptr},
      {"/\x10\x7F", nullptr},  // two digits each
      {"", "'' is no path in HDFS: it must begin with '/'"},
      {"a", "'a' is no path in HDFS: it must begin with '/'"},
      {"/.", "'/.': HDFS has no '.' and no '..'"},
      {"/a/../b", "'/a/../b': HDFS has no '.' and no '..'"},
      {"/a/..", "'/a/..': HDFS has no '.' and no '..'"},
      {"/a\nb", "'/a\\nb' holds the control character 0x0A, which cannot be sent"},
      {"/\x0F", "'/\\x0F' holds the control character 0x0F, which cannot be sent"},
      {"/\xFF", "a path in HDFS must be UTF-8 text"},
  };
  for (const Row& row : rows) {
    const auto problem = FindPathProblem(row.path);
    EXPECT_EQ(problem.value_or("none"), row.problem != nullptr ? row.problem : "none");
  }
}

TEST(HdfsPath, RenamesOnlyToWhatArrives) {
  for (const char* path : {"/a", "/ \x7F%"}) {
    EXPECT_FALSE(FindRenameProblem(path, HdfsStack::kWinInet)) << path;
    EXPECT_FALSE(FindRenameProblem(path, HdfsStack::kWinHttp)) << path;
  }
  for (const char* path : {"/\xC3\xA9", "/\xE8\xAE\xA1"}) {
    EXPECT_FALSE(FindRenameProblem(path, HdfsStack::kWinInet)) << path;
    EXPECT_TRUE(FindRenameProblem(path, HdfsStack::kWinHttp)) << path;
  }
  EXPECT_TRUE(FindRenameProblem("/\xF0\x9F\x98\x80", HdfsStack::kWinInet));
}

TEST(HdfsPath, IsTakenApartAndPutTogether) {
  EXPECT_EQ(CleanPath("//a///b/"), "/a/b");
  EXPECT_EQ(CleanPath("///"), "/");
  EXPECT_EQ(JoinPath("/", "a"), "/a");
  EXPECT_EQ(JoinPath("/a", "b"), "/a/b");
  EXPECT_EQ(NameOf("/a/b"), "b");
  EXPECT_EQ(NameOf("/"), "");
  EXPECT_EQ(FolderOf("/a/b"), "/a");
  EXPECT_EQ(FolderOf("/a"), "/");
  EXPECT_EQ(FolderOf("/"), "/");
}

TEST(HdfsPath, LetsAServerNameNoOtherFolder) {
  for (const char* name : {"", ".", "..", "a/b", "/a", "\xFF"}) EXPECT_FALSE(IsPlainName(name));
  EXPECT_FALSE(IsPlainName(std::string_view("a\0b", 3)));
  for (const char* name : {"a", "...", "a b", ".hidden", "\xC3\xA9"})
    EXPECT_TRUE(IsPlainName(name));
  const bool isSlashAlone = kPathSeparator == OLESTR('/');
  EXPECT_EQ(IsPlainName("a\\b"), isSlashAlone);
  EXPECT_EQ(IsPlainName("c:"), isSlashAlone);
}

TEST(HdfsPath, NamesAPartAlikeAndNotTooLong) {
  EXPECT_EQ(PartName("a.txt"), ".a.txt.velandoc-part");
  const std::string longest(240, 'x');
  EXPECT_EQ(PartName(longest).size(), 255U);
  const std::string longer(241, 'x');
  EXPECT_EQ(PartName(longer), PartName(longer));
  EXPECT_LT(PartName(longer).size(), 64U);
  EXPECT_NE(PartName(longer), PartName(std::string(255, 'y')));
}

}  // namespace
}  // namespace velandoc
