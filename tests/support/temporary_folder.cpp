#include "tests/support/temporary_folder.h"

#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace velandoc::testing {

TemporaryFolder::TemporaryFolder() {
  std::random_device random;
  for (int attempt = 0; attempt < 100; ++attempt) {
    m_path = std::filesystem::temp_directory_path() / ("velandoc-test-" + std::to_string(random()));
    if (std::filesystem::create_directory(m_path)) return;
  }
  throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

}  // namespace velandoc::testing
