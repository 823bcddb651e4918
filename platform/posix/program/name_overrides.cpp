#include "platform/name_overrides.h"

#include "platform/environment.h"

namespace velandoc {

bool OverrideNames(const char* list) {
  SetEnvironment("VELANDOC_RESOLVE", list);
  return true;
}

}  // namespace velandoc
