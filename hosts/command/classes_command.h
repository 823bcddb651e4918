// velandoc classes.
#pragma once

#include "hosts/command/options.h"

namespace velandoc {

/// Prints where each of the component's classes is registered, for this user and for all, and which
/// library that registration points to; returns the exit code. Nothing is loaded.
int RunClasses(const Options& options);

}  // namespace velandoc
