// The plain text-to-integer conversion of ports and status codes.
#pragma once

#include <cstdint>

#include "platform/text.h"

namespace velandoc {

/// Leading blanks, one sign, then decimal digits up to the first other character; 0 if there are
/// none. A number that 32 bits do not hold gives the nearest one that they do.
std::int32_t TextToInteger(WideView text);

}  // namespace velandoc
