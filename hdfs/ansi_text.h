// Text of a server's answer that nothing is known of.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// The bytes read in the ANSI code page, NULs and all; empty if they don't convert.
WideString FromAnsi(const NarrowString& bytes);

}  // namespace velandoc
