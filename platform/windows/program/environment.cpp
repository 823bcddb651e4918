#include "platform/environment.h"

#include <windows.h>

namespace velandoc {

void SetEnvironment(const char* name, const char* value) { SetEnvironmentVariableA(name, value); }

}  // namespace velandoc
