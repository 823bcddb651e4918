#include "platform/posix/pe_resources.h"

#include <utility>

namespace velandoc {
namespace {

constexpr WORD kStringTable = 6;
constexpr WORD kRowsInBlock = 16;

constexpr std::uint32_t kFileHeaderSize = 24;  // with the signature
constexpr std::uint32_t kSectionHeaderSize = 40;
constexpr std::uint32_t kDirectorySize = 16;
constexpr std::uint32_t kEntrySize = 8;
constexpr std::uint32_t kMaxSections = 96;  // the system's own bound
constexpr std::uint32_t kResourceDirectory = 2;
/// Says of an entry's offset that it leads to another directory, of its number that it is a name.
constexpr std::uint32_t kHighBit = 0x80000000;

/// A number of `size` bytes at `offset`, the lowest byte first; nothing beyond the end.
std::optional<std::uint32_t> Number(std::string_view bytes, std::uint64_t offset,
                                    std::uint32_t size) {
  if (offset > bytes.size() || bytes.size() - offset < size) return std::nullopt;
  std::uint32_t number = 0;
  for (std::uint32_t i = size; i > 0; --i) {
    number = number << 8 | static_cast<unsigned char>(bytes[offset + i - 1]);
  }
  return number;
}
std::optional<std::uint32_t> Word(std::string_view bytes, std::uint64_t offset) {
  return Number(bytes, offset, 2);
}
std::optional<std::uint32_t> Double(std::string_view bytes, std::uint64_t offset) {
  return Number(bytes, offset, 4);
}

/// Where the data directories begin, behind the optional header's beginning, and their count before
/// them; 0 for a header that is neither of the two kinds.
std::uint32_t DirectoriesOffset(std::uint32_t magic) {
  switch (magic) {
    case 0x10B:  // 32-bit
      return 96;
    case 0x20B:  // 64-bit
      return 112;
    default:
      return 0;
  }
}

}  // namespace

std::optional<PeResources> PeResources::Read(std::string bytes) {
  if (bytes.size() > kMaxResourceFile || !bytes.starts_with("MZ")) return std::nullopt;
  const std::optional<std::uint32_t> header = Double(bytes, 0x3C);
  if (!header || Double(bytes, *header) != 0x00004550) return std::nullopt;  // "PE", 0, 0
  const std::optional<std::uint32_t> sections = Word(bytes, std::uint64_t{*header} + 6);
  const std::optional<std::uint32_t> optionalSize = Word(bytes, std::uint64_t{*header} + 20);
  if (!sections || *sections > kMaxSections || !optionalSize) return std::nullopt;

  const std::uint64_t optional = std::uint64_t{*header} + kFileHeaderSize;
  const std::uint32_t directories = DirectoriesOffset(Word(bytes, optional).value_or(0));
  if (directories == 0) return std::nullopt;
  const std::optional<std::uint32_t> count = Double(bytes, optional + directories - 4);
  if (!count || *count <= kResourceDirectory) return std::nullopt;
  const std::optional<std::uint32_t> rva =
      Double(bytes, optional + directories + std::uint64_t{8} * kResourceDirectory);
  if (rva.value_or(0) == 0) return std::nullopt;

  for (std::uint32_t i = 0; i < *sections; ++i) {
    const std::uint64_t entry = optional + *optionalSize + std::uint64_t{i} * kSectionHeaderSize;
    const std::optional<std::uint32_t> sectionRva = Double(bytes, entry + 12);
    const std::optional<std::uint32_t> size = Double(bytes, entry + 16);
    const std::optional<std::uint32_t> offset = Double(bytes, entry + 20);
    if (!offset) return std::nullopt;  // the last of the three in the file
    if (*rva < *sectionRva || *rva - *sectionRva >= *size) continue;
    if (std::uint64_t{*offset} + *size > bytes.size()) return std::nullopt;
    const std::uint32_t directory = *offset + (*rva - *sectionRva);
    return PeResources(std::move(bytes), {*sectionRva, *size, *offset}, directory);
  }
  return std::nullopt;
}

/// The offset field of the directory's entry with this number, or of its first entry for none.
std::optional<std::uint32_t> PeResources::FindEntry(std::uint32_t directory,
                                                    std::optional<std::uint32_t> number) const {
  const std::optional<std::uint32_t> named = Word(m_bytes, std::uint64_t{directory} + 12);
  const std::optional<std::uint32_t> numbered = Word(m_bytes, std::uint64_t{directory} + 14);
  if (!numbered) return std::nullopt;
  // Entries with names stand before those with numbers.
  const std::uint32_t first = number ? *named : 0;
  for (std::uint32_t i = first; i < *named + *numbered; ++i) {
    const std::uint64_t entry =
        std::uint64_t{directory} + kDirectorySize + std::uint64_t{i} * kEntrySize;
    const std::optional<std::uint32_t> offset = Double(m_bytes, entry + 4);
    if (!offset) return std::nullopt;
    if (!number || Double(m_bytes, entry) == number) return offset;
  }
  return std::nullopt;
}

std::optional<std::string_view> PeResources::Find(WORD type, WORD id) const {
  std::uint32_t directory = m_directory;
  for (const std::uint32_t number : {std::uint32_t{type}, std::uint32_t{id}}) {
    const std::optional<std::uint32_t> below = FindEntry(directory, number);
    if (!below || (*below & kHighBit) == 0) return std::nullopt;
    const std::uint64_t next = std::uint64_t{m_directory} + (*below & ~kHighBit);
    if (next >= m_bytes.size()) return std::nullopt;
    directory = static_cast<std::uint32_t>(next);
  }
  const std::optional<std::uint32_t> leaf = FindEntry(directory, std::nullopt);
  if (!leaf || (*leaf & kHighBit) != 0) return std::nullopt;
  const std::uint64_t data = std::uint64_t{m_directory} + *leaf;
  const std::optional<std::uint32_t> rva = Double(m_bytes, data);
  const std::optional<std::uint32_t> size = Double(m_bytes, data + 4);
  if (!size || *rva < m_section.rva) return std::nullopt;
  const std::uint32_t offset = *rva - m_section.rva;
  if (offset > m_section.size || m_section.size - offset < *size) return std::nullopt;
  return std::string_view(m_bytes).substr(m_section.fileOffset + offset, *size);
}

WideString PeResources::LoadString(WORD id) const {
  // The table is kept in blocks of sixteen rows, each its length and so many units.
  const auto block = static_cast<WORD>(id / kRowsInBlock + 1);
  const std::optional<std::string_view> rows = Find(kStringTable, block);
  if (!rows) return {};
  std::uint64_t offset = 0;
  for (WORD row = 0; row < id % kRowsInBlock; ++row) {
    const std::optional<std::uint32_t> length = Word(*rows, offset);
    if (!length) return {};
    offset += 2 + std::uint64_t{2} * *length;
  }
  const std::optional<std::uint32_t> length = Word(*rows, offset);
  if (!length || rows->size() - offset - 2 < std::uint64_t{2} * *length) return {};
  WideString text(*length, u'\0');
  for (std::uint32_t i = 0; i < *length; ++i) {
    text[i] = static_cast<OLECHAR>(*Word(*rows, offset + 2 + std::uint64_t{2} * i));
  }
  return text;
}

}  // namespace velandoc
