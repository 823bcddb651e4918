#include "platform/environment.h"

#include <cstdlib>

namespace velandoc {

void SetEnvironment(const char* name, const char* value) { setenv(name, value, /*overwrite=*/1); }

}  // namespace velandoc
