// Where texts for a debugger go on Linux, which has no channel of the system's for them.
#pragma once

#include "platform/com.h"

namespace velandoc {

/// Writes `text` where the environment variable VELANDOC_DEBUG says: "stderr", or the path of a
/// file that is made (for its owner alone) if it is not there and appended to if it is. Without the
/// variable, with an empty one, in a set-user-id program and for a null text nothing is written.
///
/// Each text is one line of UTF-8 in one write, so the lines of several threads and processes don't
/// mix: a line end is added, and control characters, which a server's words may bring along, go out
/// as blanks. What cannot be written is dropped. The last error is left alone.
void WriteToDebugChannel(LPCWSTR text);

}  // namespace velandoc
