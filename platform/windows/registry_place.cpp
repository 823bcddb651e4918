#include "platform/registry_place.h"

namespace velandoc {

std::string RegistryPlace(HKEY) { return {}; }

}  // namespace velandoc
