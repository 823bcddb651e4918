#include "platform/registry_place.h"

#include "platform/posix/com/registry_file.h"

namespace velandoc {

std::string RegistryPlace(HKEY root) {
  return HivePath(root == HKEY_CURRENT_USER ? Hive::kUser : Hive::kMachine);
}

}  // namespace velandoc
