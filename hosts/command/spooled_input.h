// The standard input as a file: an upload has to say its length before its first byte, which a pipe
// does not know.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace velandoc {

/// A file in the folder for temporary files, readable by this user alone, deleted in the end.
class SpooledInput {
 public:
  SpooledInput() = default;
  SpooledInput(const SpooledInput&) = delete;
  SpooledInput& operator=(const SpooledInput&) = delete;
  ~SpooledInput();

  /// Reads the standard input up to its end. What is wrong, if it cannot be read, if there is no
  /// room, or if it has more than `limit` bytes.
  std::optional<std::string> Read(std::uint64_t limit);

  const std::filesystem::path& Path() const { return m_path; }

 private:
  std::filesystem::path m_path;
};

}  // namespace velandoc
