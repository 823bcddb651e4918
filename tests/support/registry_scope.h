// On Linux the registry's files of one test lie in a folder of its own; Windows tests work on their
// prefix's registry.
#pragma once

#include <cstdlib>

#include "tests/support/temporary_folder.h"

namespace velandoc::testing {

class RegistryScope {
 public:
#ifdef _WIN32
  // User-provided: the scope has an effect elsewhere, and is not to be called unused.
  RegistryScope() {}
  ~RegistryScope() {}
#else
  RegistryScope() { setenv("VELANDOC_REGISTRY_DIR", m_folder.Path().c_str(), 1); }
  ~RegistryScope() { unsetenv("VELANDOC_REGISTRY_DIR"); }

  const std::filesystem::path& Folder() const { return m_folder.Path(); }

 private:
  TemporaryFolder m_folder;
#endif
};

}  // namespace velandoc::testing
