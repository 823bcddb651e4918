// velandoc probe URL...
#pragma once

#include "hosts/command/options.h"

namespace velandoc {

/// Asks about each URL in the order given and prints the answers; returns the exit code. COM must
/// be up on this thread. Lines are written as the answers come, JSON once all are there.
int RunProbe(const Options& options);

}  // namespace velandoc
