// velandoc doc show|meta|status|fields|set|edit|checkout|checkin|undo TARGET
#pragma once

#include "hosts/command/options.h"

namespace velandoc {

/// Opens the document, does what was asked and prints what came of it; returns the exit code. COM
/// must be up on this thread.
int RunDoc(const Options& options);

}  // namespace velandoc
