#include "platform/name_overrides.h"

namespace velandoc {

bool OverrideNames(const char* /*list*/) { return false; }

}  // namespace velandoc
