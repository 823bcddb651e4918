#include "hosts/command/spooled_input.h"

#include <array>
#include <fstream>
#include <vector>

#include "hosts/command/local_path.h"
#include "hosts/text_encoding.h"
#include "platform/file_system.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

constexpr std::size_t kPieceSize = std::size_t{256} * 1024;
constexpr DWORD kPathCapacity = 260;  // what GetTempFileNameW asks for

/// An empty file of a name of its own; empty if there can be none.
std::filesystem::path MakeTemporaryFile() {
  FileSystem& files = CurrentPort<FileSystem>();
  std::array<OLECHAR, kPathCapacity> folder{};
  std::array<OLECHAR, kPathCapacity> name{};
  if (files.GetTempPathW(kPathCapacity, folder.data()) == 0 || folder[0] == 0) return {};
  if (files.GetTempFileNameW(folder.data(), OLESTR("hdf"), name.data()) == 0) return {};
  return PathOf(Utf8FromWide(ViewOf(name.data())));
}

}  // namespace

SpooledInput::~SpooledInput() {
  std::error_code ignored;
  if (!m_path.empty()) std::filesystem::remove(m_path, ignored);
}

std::optional<std::string> SpooledInput::Read(std::uint64_t limit) {
  m_path = MakeTemporaryFile();
  if (m_path.empty()) return "no temporary file can be made";
  std::ofstream file(m_path, std::ios::binary);
  std::vector<char> piece(kPieceSize);
  std::uint64_t total = 0;
  while (true) {
    const std::ptrdiff_t count = ReadBytes(piece.data(), piece.size());
    if (count < 0) return "the standard input cannot be read";
    if (count == 0) break;
    total += static_cast<std::uint64_t>(count);
    if (total > limit) return "it is longer than " + std::to_string(limit) + " bytes";
    file.write(piece.data(), count);
  }
  file.close();
  if (!file) return "its copy '" + Utf8Of(m_path) + "' cannot be written: is the disk full?";
  return std::nullopt;
}

}  // namespace velandoc
