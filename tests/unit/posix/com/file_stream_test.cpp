// Streams over files: modes, gathered writes, and the errors that come late.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <string>

#include "platform/owners.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeResult;
using testing::TemporaryFolder;

class FileStreamTest : public ::testing::Test {
 protected:
  WideString Name(const std::string& name) const { return (m_folder.Path() / name).u16string(); }
  HRESULT Open(const std::string& name, DWORD mode, BOOL create, ComPtr<IStream>& stream) const {
    return SHCreateStreamOnFileEx(Name(name).c_str(), mode, 0, create, nullptr, stream.Receive());
  }
  std::string Content(const std::string& name) const {
    std::ifstream file(m_folder.Path() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void Make(const std::string& name, const std::string& content) const {
    std::ofstream(m_folder.Path() / name, std::ios::binary) << content;
  }

  TemporaryFolder m_folder;
};

struct ModeRow {
  bool isThere;
  DWORD mode;
  BOOL create;
  const char* result;
  const char* contentAfter;  // null: no file
  const char* why;
};

TEST_F(FileStreamTest, OpensAndMakesFilesAsTheModeSays) {
  const ModeRow rows[] = {
      {true, STGM_READ, FALSE, "S_OK", "old", "read what is there"},
      {false, STGM_READ, FALSE, "80070002", nullptr, "nothing there to read"},
      {true, STGM_READ, TRUE, "80070050", "old", "must not be there"},
      {false, STGM_WRITE, TRUE, "S_OK", "", "made"},
      {true, STGM_WRITE | STGM_CREATE, FALSE, "S_OK", "", "emptied"},
      {false, STGM_READWRITE | STGM_CREATE, TRUE, "S_OK", "", "made by STGM_CREATE"},
      {true, STGM_WRITE | STGM_SHARE_DENY_WRITE, FALSE, "S_OK", "old", "kept until written"},
      {true, STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_CREATE, TRUE, "S_OK", "", "emptied"},
      {true, 3, FALSE, "E_INVALIDARG", "old", "no access mode"},
      {true, 0x10000, FALSE, "E_INVALIDARG", "old", "no transactions"},
  };
  for (const ModeRow& row : rows) {
    std::filesystem::remove(m_folder.Path() / "file");
    if (row.isThere) Make("file", "old");
    ComPtr<IStream> stream;
    EXPECT_EQ(DescribeResult(Open("file", row.mode, row.create, stream)), row.result) << row.why;
    stream.Reset();
    EXPECT_EQ(std::filesystem::exists(m_folder.Path() / "file"), row.contentAfter != nullptr)
        << row.why;
    if (row.contentAfter != nullptr) {
      EXPECT_EQ(Content("file"), row.contentAfter) << row.why;
    }
  }
}

TEST_F(FileStreamTest, RefusesFoldersAndMissingPaths) {
  ComPtr<IStream> stream;
  EXPECT_EQ(DescribeResult(Open("no/such", STGM_WRITE | STGM_CREATE, TRUE, stream)), "80070002");
  EXPECT_EQ(DescribeResult(Open("", STGM_READ, FALSE, stream)), "80070005");
  EXPECT_EQ(DescribeResult(Open("", STGM_WRITE, FALSE, stream)), "80070005");
  Make("file", "x");
  EXPECT_EQ(DescribeResult(Open("file/below", STGM_READ, FALSE, stream)), "80070003");
  EXPECT_FALSE(stream);
}

TEST_F(FileStreamTest, GathersSmallWrites) {
  ComPtr<IStream> stream;
  ASSERT_EQ(Open("file", STGM_WRITE | STGM_CREATE, TRUE, stream), S_OK);
  ULONG written = 0;
  EXPECT_EQ(stream->Write("abc", 3, &written), S_OK);
  EXPECT_EQ(written, 3U);
  EXPECT_EQ(Content("file"), "") << "not yet";
  EXPECT_EQ(stream->Commit(STGC_DEFAULT), S_OK);
  EXPECT_EQ(Content("file"), "abc");
  EXPECT_EQ(stream->Write("def", 3, nullptr), S_OK);
  stream.Reset();
  EXPECT_EQ(Content("file"), "abcdef") << "with the last reference";
}

TEST_F(FileStreamTest, KeepsTheOrderOfSmallAndLargeWrites) {
  ComPtr<IStream> stream;
  ASSERT_EQ(Open("file", STGM_WRITE | STGM_CREATE, TRUE, stream), S_OK);
  std::string expected;
  for (const std::size_t size : {1U, 8192U, 65536U, 3U, 65535U, 2U, 200000U, 0U, 5U}) {
    const std::string piece(size, static_cast<char>('a' + expected.size() % 26));
    ULONG written = 0;
    ASSERT_EQ(stream->Write(piece.data(), static_cast<ULONG>(size), &written), S_OK);
    EXPECT_EQ(written, size);
    expected += piece;
  }
  stream.Reset();
  EXPECT_EQ(Content("file"), expected);
}

TEST_F(FileStreamTest, ReadsWritesAndSeeks) {
  ComPtr<IStream> stream;
  ASSERT_EQ(Open("file", STGM_READWRITE | STGM_CREATE, TRUE, stream), S_OK);
  ASSERT_EQ(stream->Write("0123456789", 10, nullptr), S_OK);
  LARGE_INTEGER move{};
  ULARGE_INTEGER position{};
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_CUR, &position), S_OK);
  EXPECT_EQ(position.QuadPart, 10U);
  move.QuadPart = 2;
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_SET, &position), S_OK);
  char text[20] = {};
  ULONG read = 0;
  EXPECT_EQ(stream->Read(text, 3, &read), S_OK);
  EXPECT_EQ(std::string(text, read), "234");
  EXPECT_EQ(stream->Write("XY", 2, nullptr), S_OK);
  EXPECT_EQ(stream->Read(text, 20, &read), S_OK) << "what was written is behind";
  EXPECT_EQ(std::string(text, read), "789");
  EXPECT_EQ(stream->Read(text, 20, &read), S_OK);
  EXPECT_EQ(read, 0U) << "the end";
  EXPECT_EQ(Content("file"), "01234XY789");
  move.QuadPart = -1;
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_SET, nullptr), STG_E_SEEKERROR);
  EXPECT_EQ(stream->Seek(move, 3, nullptr), STG_E_INVALIDFUNCTION);
  ULARGE_INTEGER size{};
  size.QuadPart = 4;
  EXPECT_EQ(stream->SetSize(size), S_OK);
  EXPECT_EQ(Content("file"), "0123");
}

TEST_F(FileStreamTest, ReadsAheadWithoutShowingIt) {
  std::string content(900001, '\0');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i % 251);
  Make("file", content);
  ComPtr<IStream> stream;
  ASSERT_EQ(Open("file", STGM_READ | STGM_SHARE_DENY_WRITE, FALSE, stream), S_OK);
  std::string found;
  std::string piece(400000, '\0');
  // Around the size of what is read ahead, and larger ones between small ones.
  for (const ULONG size : {1U, 8192U, 400000U, 3U, 65535U, 262144U, 65537U, 8192U, 400000U, 1U}) {
    ULONG read = 0;
    ASSERT_EQ(stream->Read(piece.data(), size, &read), S_OK);
    found.append(piece, 0, read);
    LARGE_INTEGER none{};
    ULARGE_INTEGER position{};
    if (size != 8192) continue;  // asking for the position drops what was read ahead
    EXPECT_EQ(stream->Seek(none, STREAM_SEEK_CUR, &position), S_OK);
    EXPECT_EQ(position.QuadPart, found.size());
  }
  EXPECT_TRUE(found == content);
  LARGE_INTEGER move{};
  move.QuadPart = -3;
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_END, nullptr), S_OK);
  ULONG read = 0;
  EXPECT_EQ(stream->Read(piece.data(), 2, &read), S_OK);
  move.QuadPart = -1;
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_CUR, nullptr), S_OK);
  EXPECT_EQ(stream->Read(piece.data() + 2, 9, &read), S_OK);
  EXPECT_EQ(piece.substr(0, 2 + read),
            content.substr(content.size() - 3, 2) + content.substr(content.size() - 2));
  move.QuadPart = -1;
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_SET, nullptr), STG_E_SEEKERROR);
}

TEST_F(FileStreamTest, KeepsToItsAccessMode) {
  Make("file", "text");
  ComPtr<IStream> stream;
  ASSERT_EQ(Open("file", STGM_READ, FALSE, stream), S_OK);
  EXPECT_EQ(stream->Write("x", 1, nullptr), STG_E_ACCESSDENIED);
  EXPECT_EQ(stream->SetSize(ULARGE_INTEGER{}), STG_E_ACCESSDENIED);
  ASSERT_EQ(Open("file", STGM_WRITE, FALSE, stream), S_OK);
  char byte = 0;
  EXPECT_EQ(stream->Read(&byte, 1, nullptr), STG_E_ACCESSDENIED);
}

TEST_F(FileStreamTest, TellsOfAFullDiskWhenTheBytesGoOut) {
  ComPtr<IStream> stream;
  ASSERT_EQ(SHCreateStreamOnFileEx(u"/dev/full", STGM_WRITE, 0, FALSE, nullptr, stream.Receive()),
            S_OK);
  EXPECT_EQ(stream->Write("abc", 3, nullptr), S_OK) << "gathered";
  EXPECT_EQ(stream->Commit(STGC_DEFAULT), STG_E_MEDIUMFULL);
  EXPECT_EQ(stream->Commit(STGC_DEFAULT), STG_E_MEDIUMFULL) << "still not written";
  const std::string large(70000, 'x');
  ULONG written = 1;
  EXPECT_EQ(stream->Write(large.data(), 70000, &written), STG_E_MEDIUMFULL);
  EXPECT_EQ(written, 0U);
}

TEST_F(FileStreamTest, TellsOfItself) {
  Make("file", "12345");
  ComPtr<IStream> stream;
  ASSERT_EQ(Open("file", STGM_READWRITE, FALSE, stream), S_OK);
  STATSTG stat{};
  ASSERT_EQ(stream->Stat(&stat, STATFLAG_DEFAULT), S_OK);
  EXPECT_EQ(WideString(stat.pwcsName), Name("file"));
  CoTaskMemFree(stat.pwcsName);
  EXPECT_EQ(stat.type, STGTY_STREAM);
  EXPECT_EQ(stat.cbSize.QuadPart, 5U);
  EXPECT_EQ(stat.grfMode, STGM_READWRITE);
  const std::uint64_t time =
      std::uint64_t{stat.mtime.dwHighDateTime} << 32 | stat.mtime.dwLowDateTime;
  EXPECT_GT(time, 132539328000000000U) << "behind 1 January 2021";
  ASSERT_EQ(stream->Stat(&stat, STATFLAG_NONAME), S_OK);
  EXPECT_EQ(stat.pwcsName, nullptr);
  IStream* clone = nullptr;
  EXPECT_EQ(stream->Clone(&clone), E_NOTIMPL);
  EXPECT_EQ(stream->Revert(), E_NOTIMPL);
}

TEST_F(FileStreamTest, CopiesToAnotherStream) {
  const std::string content(150000, 'c');
  Make("from", content);
  ComPtr<IStream> from;
  ComPtr<IStream> to;
  ASSERT_EQ(Open("from", STGM_READ, FALSE, from), S_OK);
  ASSERT_EQ(Open("to", STGM_WRITE, TRUE, to), S_OK);
  ULARGE_INTEGER size{};
  ULARGE_INTEGER read{};
  ULARGE_INTEGER written{};
  size.QuadPart = 100000;
  EXPECT_EQ(from->CopyTo(to.Get(), size, &read, &written), S_OK);
  EXPECT_EQ(read.QuadPart, 100000U);
  EXPECT_EQ(written.QuadPart, 100000U);
  size.QuadPart = ~0ULL;
  EXPECT_EQ(from->CopyTo(to.Get(), size, &read, &written), S_OK);
  EXPECT_EQ(read.QuadPart, 50000U);
  to.Reset();
  EXPECT_EQ(Content("to"), content);
}

}  // namespace
}  // namespace velandoc
