#include "platform/resources.h"

#include "platform/posix/embedded_resources.h"

namespace velandoc {

std::optional<std::string_view> FindModuleResource(LPCWSTR type, WORD id) {
  for (const EmbeddedResource& resource : EmbeddedResources()) {
    if (resource.id == id && resource.type == type) return resource.bytes;
  }
  return std::nullopt;
}

}  // namespace velandoc
