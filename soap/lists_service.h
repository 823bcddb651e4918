// The operations of the lists service, as free functions.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// Asks the server of `url`, at its root and on its scheme's default port, for its lists, on a
/// connection of its own. True if it answered with a result, be that empty; false for everything
/// else, errors included. Raises no `_com_error`.
bool GetListCollection(LPCWSTR url);

}  // namespace velandoc
