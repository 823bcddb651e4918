// The resources of a file in the format of Windows' executables: what makes a satellite that was
// built for Windows serve Linux too. It is read like any other data; nothing of it is mapped for
// execution, relocated or run.
//
//   "MZ" ... [3C] -> "PE" header, section table
//   data directory 2 -> resource directory: type -> number -> language -> RVA and size of the bytes
//
// Nothing in the file is trusted: every offset is held against the file's size, the directory has
// its three levels and no more, and a search takes as many steps as there are entries in three
// directories.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text.h"

namespace velandoc {

/// Largest file that is read. The component's own satellite has some 4 KiB.
inline constexpr std::size_t kMaxResourceFile = std::size_t{16} << 20;

class PeResources {
 public:
  /// Nothing if `bytes` is no executable for Windows, 32-bit or 64-bit, or has no resources.
  static std::optional<PeResources> Read(std::string bytes);

  /// The bytes of resource `id` of the numbered `type`, in the first of its languages: a satellite
  /// has one. Nothing if there is none or it lies outside of the file. They live as long as this
  /// object.
  std::optional<std::string_view> Find(WORD type, WORD id) const;

  /// Row `id` of the string table; empty if there is none.
  WideString LoadString(WORD id) const;

 private:
  struct Section {
    std::uint32_t rva = 0;
    std::uint32_t size = 0;
    std::uint32_t fileOffset = 0;
  };

  PeResources(std::string bytes, const Section& section, std::uint32_t directory)
      : m_bytes(std::move(bytes)), m_section(section), m_directory(directory) {}

  std::optional<std::uint32_t> FindEntry(std::uint32_t directory,
                                         std::optional<std::uint32_t> number) const;

  std::string m_bytes;
  /// The section that holds the resource directory and all it leads to.
  Section m_section;
  std::uint32_t m_directory;  // of the first level, from the file's beginning
};

}  // namespace velandoc
