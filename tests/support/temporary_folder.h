// A folder of a test's own, gone at the end of its scope.
#pragma once

#include <filesystem>

namespace velandoc::testing {

class TemporaryFolder {
 public:
  /// Fails the test program if the system gives no folder.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::filesystem::path& Path() const { return m_path; }

 private:
  std::filesystem::path m_path;
};

}  // namespace velandoc::testing
