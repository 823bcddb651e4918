// Text of which nothing is known but its bytes.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// The bytes read in the ANSI code page of the process, NULs and all; empty if they don't convert.
WideString FromAnsi(const NarrowString& bytes);

/// The same in the ANSI code page of the calling thread's locale, which a host may have changed.
WideString FromThreadAnsi(const NarrowString& bytes);

}  // namespace velandoc
