// Permissions as WebHDFS takes them.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// True for exactly three digits from 0 to 7. Empty text is none; who may leave the permissions out
/// tests for that first.
bool IsValidOctalPermissions(WideView text);

}  // namespace velandoc
