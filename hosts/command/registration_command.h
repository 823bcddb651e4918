// velandoc register and velandoc unregister.
#pragma once

#include "hosts/command/options.h"

namespace velandoc {

/// Calls the exports of the component's library that regsvr32 would call, and prints what was done
/// where; returns the exit code. COM must be up on this thread.
int RunRegistration(const Options& options);

}  // namespace velandoc
