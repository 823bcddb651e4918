// The UTF-8 conversions of request and response bodies. An unpaired surrogate and an ill-formed
// sequence become U+FFFD.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// UTF-8 of a null-ended text; empty for null, for empty text, and if the conversion fails.
NarrowString ToUtf8(LPCWSTR text);

/// Text of null-ended UTF-8; empty for null, for empty text, and if the conversion fails.
WideString FromUtf8(LPCSTR text);

}  // namespace velandoc
