// The process's environment.
#pragma once

namespace velandoc {

/// Sets the variable for this process and for the libraries that it loads; `name` and `value` are
/// ASCII. For use before any other thread runs.
void SetEnvironment(const char* name, const char* value);

}  // namespace velandoc
