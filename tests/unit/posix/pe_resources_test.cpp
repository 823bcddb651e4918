// The reader of satellites: what it finds in a good file, and that no broken one leads it astray.
#include "platform/posix/pe_resources.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <random>

namespace velandoc {
namespace {

std::string German() {
  std::ifstream file(VELANDOC_GERMAN_SATELLITE, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Everything a reader can be asked of one file; the sum keeps the compiler from leaving it out.
std::size_t ReadAll(std::string bytes) {
  const std::optional<PeResources> resources = PeResources::Read(std::move(bytes));
  if (!resources) return 0;
  std::size_t sum = 1;
  for (const WORD id : {WORD{0}, WORD{100}, WORD{105}, WORD{111}, WORD{0xFFFF}}) {
    sum += resources->LoadString(id).size();
  }
  if (const auto found = resources->Find(6, 7)) {
    for (const char c : *found) sum += static_cast<unsigned char>(c);
  }
  return sum;
}

void Put(std::string& bytes, std::size_t offset, std::uint32_t number) {
  ASSERT_LE(offset + 4, bytes.size());
  for (std::size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<char>(number >> (8 * i));
}
std::uint32_t Get(const std::string& bytes, std::size_t offset) {
  std::uint32_t number = 0;
  std::memcpy(&number, &bytes.at(offset), 4);
  return number;
}

/// Where the parts of a 64-bit file lie.
struct Layout {
  explicit Layout(const std::string& bytes)
      : header(Get(bytes, 0x3C)),
        optional(header + 24),
        resourceRva(optional + 112 + 16),
        sections(optional + (Get(bytes, header + 20) & 0xFFFF)) {}
  std::size_t header;
  std::size_t optional;
  std::size_t resourceRva;
  std::size_t sections;

  /// The file's offset of the first resource directory.
  std::size_t Directory(const std::string& bytes) const {
    for (std::size_t at = sections;; at += 40) {
      if (Get(bytes, at + 12) == Get(bytes, resourceRva)) return Get(bytes, at + 20);
    }
  }
};

TEST(PeResources, ReadsTheStringTable) {
  const std::optional<PeResources> resources = PeResources::Read(German());
  ASSERT_TRUE(resources);
  EXPECT_EQ(resources->LoadString(100), u"Velandoc");
  EXPECT_EQ(resources->LoadString(105), u"HDFS-Client: Ordner f\u00FCr Dateien anlegen");
  EXPECT_EQ(resources->LoadString(106), u"") << "a row without text";
  EXPECT_EQ(resources->LoadString(99), u"");
  EXPECT_EQ(resources->LoadString(112), u"") << "a block that is not there";
  EXPECT_EQ(resources->LoadString(0xFFFF), u"");
}

TEST(PeResources, FindsByTypeAndNumber) {
  const std::optional<PeResources> resources = PeResources::Read(German());
  ASSERT_TRUE(resources);
  ASSERT_TRUE(resources->Find(6, 7));
  EXPECT_EQ(resources->Find(6, 7)->size(), 0x186U);
  EXPECT_FALSE(resources->Find(6, 8));
  EXPECT_FALSE(resources->Find(5, 7));
  EXPECT_FALSE(resources->Find(1, 1)) << "a type with a name is no number";
}

TEST(PeResources, OtherFilesAreRefused) {
  EXPECT_FALSE(PeResources::Read(""));
  EXPECT_FALSE(PeResources::Read("MZ"));
  EXPECT_FALSE(PeResources::Read(std::string("\x7F") + "ELF" + std::string(1000, '\0')));
  EXPECT_FALSE(PeResources::Read("MZ" + std::string(1000, '\0')));
  EXPECT_FALSE(PeResources::Read("MZ" + std::string(kMaxResourceFile, '\0')));
}

TEST(PeResources, A32BitFileServesToo) {
  // The 64-bit file with the shorter header's directories: what such a file has of interest here.
  std::string bytes = German();
  const Layout layout(bytes);
  const std::uint32_t rva = Get(bytes, layout.resourceRva);
  bytes[layout.optional] = 0x0B;
  bytes[layout.optional + 1] = 0x01;
  Put(bytes, layout.optional + 92, 16);
  Put(bytes, layout.optional + 96 + 16, rva);
  const std::optional<PeResources> resources = PeResources::Read(bytes);
  ASSERT_TRUE(resources);
  EXPECT_EQ(resources->LoadString(104), u"HDFS-Client: Hochladen");
}

TEST(PeResources, HeadersThatPointOutsideAreRefused) {
  const std::string good = German();
  const Layout layout(good);
  struct {
    std::size_t offset;
    std::uint32_t number;
    const char* why;
  } const rows[] = {
      {0x3C, 0xFFFFFFFF, "the header beyond the file"},
      {0x3C, static_cast<std::uint32_t>(good.size() - 2), "the header over the end"},
      {layout.header, 0x00004551, "another signature"},
      {layout.header + 4, 0xFFFF8664, "too many sections"},
      {layout.header + 4, 0x00008664, "no sections"},
      {layout.header + 20, 0xFFFF, "sections beyond the file"},
      {layout.optional, 0x30B, "an unknown kind"},
      {layout.optional + 108, 2, "no directory for resources"},
      {layout.resourceRva, 0, "no resources"},
      {layout.resourceRva, 0xFFFFFFF0, "resources in no section"},
  };
  for (const auto& row : rows) {
    std::string bytes = good;
    Put(bytes, row.offset, row.number);
    EXPECT_FALSE(PeResources::Read(bytes)) << row.why;
  }
  for (std::size_t at = layout.sections;; at += 40) {
    if (Get(good, at + 12) != Get(good, layout.resourceRva)) continue;
    std::string bytes = good;
    Put(bytes, at + 16, 0xFFFFFFFF);
    EXPECT_FALSE(PeResources::Read(bytes)) << "a section longer than the file";
    bytes = good;
    Put(bytes, at + 20, 0xFFFFFFFF);
    EXPECT_FALSE(PeResources::Read(bytes)) << "a section beyond the file";
    break;
  }
}

TEST(PeResources, DirectoriesThatLieAreEmpty) {
  const std::string good = German();
  const std::size_t directory = Layout(good).Directory(good);
  // The third entry leads to the string table, behind two with names.
  const std::size_t entry = directory + 16 + 2 * 8;
  ASSERT_EQ(Get(good, entry), 6U);
  const std::size_t ids = directory + (Get(good, entry + 4) & 0x7FFFFFFF);
  const std::size_t languages = directory + (Get(good, ids + 16 + 4) & 0x7FFFFFFF);
  const std::size_t leaf = directory + Get(good, languages + 16 + 4);
  struct {
    std::size_t offset;
    std::uint32_t number;
    const char* why;
  } const rows[] = {
      {directory + 12, 0xFFFFFFFF, "entries beyond the file"},
      {directory + 12, 0, "no entries"},
      {entry + 4, 0x7FFFFFFF, "data where a directory is due"},
      {entry + 4, 0xFFFFFFFF, "a directory beyond the file"},
      {entry + 4, 0x80000000, "a directory that leads to itself"},
      {ids + 16 + 4, 0x80000000, "a second level that leads to the first"},
      {languages + 16 + 4, 0x80000000, "a fourth level"},
      {languages + 16 + 4, 0x7FFFFFFF, "a leaf beyond the file"},
      {languages + 12, 0, "no language"},
      {leaf, 0, "data before the section"},
      {leaf, 0xFFFFFFFF, "data behind the section"},
      {leaf + 4, 0x7FFFFFFF, "data longer than the section"},
      {leaf + 4, 0xFFFFFFFF, "the same"},
      {leaf + 4, 0, "data of no length"},
      {leaf + 4, 1, "half a length"},
  };
  for (const auto& row : rows) {
    std::string bytes = good;
    Put(bytes, row.offset, row.number);
    const std::optional<PeResources> resources = PeResources::Read(bytes);
    ASSERT_TRUE(resources) << row.why;
    EXPECT_EQ(resources->LoadString(104), u"") << row.why;
  }
}

TEST(PeResources, RowsThatAreCutOffAreEmpty) {
  const std::string good = German();
  const std::size_t directory = Layout(good).Directory(good);
  const std::size_t ids = directory + (Get(good, directory + 16 + 2 * 8 + 4) & 0x7FFFFFFF);
  const std::size_t languages = directory + (Get(good, ids + 16 + 4) & 0x7FFFFFFF);
  const std::size_t leaf = directory + Get(good, languages + 16 + 4);
  std::string bytes = good;
  Put(bytes, leaf + 4, 8 + 2 + 2 * 8);  // four empty rows and "Velandoc"
  EXPECT_EQ(PeResources::Read(bytes)->LoadString(100), u"Velandoc");
  EXPECT_EQ(PeResources::Read(bytes)->LoadString(101), u"");
  Put(bytes, leaf + 4, 8 + 2 + 2 * 8 - 1);
  EXPECT_EQ(PeResources::Read(bytes)->LoadString(100), u"");
}

TEST(PeResources, EveryCutIsSurvived) {
  const std::string good = German();
  std::size_t read = 0;
  for (std::size_t size = 0; size < good.size(); ++size) read += ReadAll(good.substr(0, size)) != 0;
  EXPECT_LT(read, good.size());
  EXPECT_NE(ReadAll(good), 0U);
}

TEST(PeResources, EveryByteMayBeWrong) {
  const std::string good = German();
  std::size_t sum = 0;
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (const char wrong : {'\0', '\x7F', '\xFF'}) {
      std::string bytes = good;
      bytes[at] = wrong;
      sum += ReadAll(bytes);
    }
  }
  EXPECT_NE(sum, 0U);
}

}  // namespace
}  // namespace velandoc
