// The system's files, through the port and through MFC's names.
#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <sstream>

#include "platform/mfc/file.h"
#include "platform/owners.h"
#include "tests/support/temporary_folder.h"

namespace velandoc {
namespace {

constexpr UINT kMode = CFile::modeCreate | CFile::modeReadWrite | CFile::shareExclusive;

class FileSystemTest : public ::testing::Test {
 protected:
  WideString Path(const char* name) const {
    const std::string narrow = (m_folder.Path() / name).string();
    return WideString(narrow.begin(), narrow.end());
  }
  std::string Content(const char* name) const {
    std::ostringstream content;
    content << std::ifstream(m_folder.Path() / name, std::ios::binary).rdbuf();
    return content.str();
  }
  const testing::TemporaryFolder m_folder;
  FileSystem& m_files = SystemPort<FileSystem>();
};

TEST_F(FileSystemTest, AFileIsMadeAnewAndHoldsWhatWasWritten) {
  std::ofstream(m_folder.Path() / "a") << "an older and longer text";
  std::string expected;
  CFile file;
  ASSERT_TRUE(file.Open(Path("a").c_str(), kMode));
  for (const std::size_t size : {0, 1, 8192, 300000, 5, 262144, 262143}) {
    const std::string piece(size, static_cast<char>('a' + expected.size() % 26));
    file.Write(piece.data(), static_cast<UINT>(size));
    expected += piece;
  }
  file.Close();
  file.Close();
  EXPECT_TRUE(Content("a") == expected);
}

TEST_F(FileSystemTest, WhatIsOpenIsNotOpenedTwiceAndKeepsItsContent) {
  CFile first;
  ASSERT_TRUE(first.Open(Path("a").c_str(), kMode));
  first.Write("abc", 3);
  CFile second;
  EXPECT_FALSE(second.Open(Path("a").c_str(), kMode));
  EXPECT_EQ(m_files.GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  first.Close();
  EXPECT_EQ(Content("a"), "abc");
}

TEST_F(FileSystemTest, FoldersAndPlacesThatAreNotThereAreNoFiles) {
  CFile file;
  EXPECT_FALSE(file.Open(Path("none/a").c_str(), kMode));
  EXPECT_FALSE(file.Open(Path(".").c_str(), kMode));
  EXPECT_FALSE(file.Open(Path("a").c_str(), CFile::modeReadWrite)) << "there is one mode";
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path() / "a"));
}

TEST_F(FileSystemTest, DeletingTellsWhetherThereWasAFile) {
  std::ofstream(m_folder.Path() / "a") << "x";
  EXPECT_TRUE(m_files.DeleteFileW(Path("a").c_str()));
  EXPECT_FALSE(m_files.DeleteFileW(Path("a").c_str()));
  EXPECT_EQ(m_files.GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(FileSystemTest, TemporaryFilesHaveNamesOfTheirOwn) {
  std::array<OLECHAR, 260> folder{};
  const DWORD length = m_files.GetTempPathW(260, folder.data());
  ASSERT_GT(length, 1U);
  EXPECT_EQ(WideView(folder.data()).size(), length);
  EXPECT_EQ(folder[length - 1], kPathSeparator);
  std::array<OLECHAR, 260> names[2]{};
  const WideString here = Path("");
  for (auto& name : names) {
    ASSERT_NE(m_files.GetTempFileNameW(here.c_str(), OLESTR("hdfs"), name.data()), 0U);
    EXPECT_NE(WideView(name.data()).find(OLESTR("hdf")), WideView::npos);
    CFile file;
    EXPECT_TRUE(file.Open(name.data(), kMode));
  }
  EXPECT_NE(WideView(names[0].data()), WideView(names[1].data()));
  EXPECT_EQ(m_files.GetTempFileNameW(Path("none").c_str(), OLESTR("hdfs"), names[0].data()), 0U);
}

TEST_F(FileSystemTest, ATemporaryNameNeedsNoPrefixAndEndsInTmp) {
  std::array<OLECHAR, 260> name{};
  ASSERT_NE(m_files.GetTempFileNameW(Path("").c_str(), nullptr, name.data()), 0U);
  WideString path = name.data();
  EXPECT_TRUE(path.starts_with(Path("")));
  for (OLECHAR& unit : path) unit |= 0x20;
  EXPECT_TRUE(path.ends_with(OLESTR(".tmp")));
  EXPECT_EQ(std::filesystem::file_size(std::filesystem::path(name.data())), 0U);
}

TEST_F(FileSystemTest, AFileThatIsNotOpenTakesNothing) {
  CFile file;
  EXPECT_FALSE(file.Open(Path("none/a").c_str(), kMode));
  try {
    file.Write("abc", 3);
    ADD_FAILURE() << "nothing was raised";
  } catch (CFileException* exception) {
    EXPECT_EQ(exception->m_lOsError, LONG{ERROR_INVALID_HANDLE});
    exception->Delete();
  }
}

TEST(CMemFileTest, GrowsWithWhatIsWritten) {
  CMemFile file;
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    file.Write("abc", 3);
    expected += "abc";
  }
  file.Write("", 0);
  file.Close();
  EXPECT_EQ(file.GetContent(), expected);
  EXPECT_FALSE(file.Open(OLESTR("a"), kMode));
}

}  // namespace
}  // namespace velandoc
