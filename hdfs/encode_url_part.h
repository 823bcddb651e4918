// The escaping of HDFS paths and values. It is not the escaping of a connection's URL.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// Copies letters, digits, ".", "/" and ":"; every other unit below 128 becomes "%" and its value
/// in lower-case hexadecimal, with no padding: a hyphen is "%2d", a tab "%9". The single digit is
/// what name nodes have always been sent.
///
/// A unit of 128 or above is copied with `keepNonAscii`. Without it each unit, a surrogate by
/// itself too, becomes its UTF-8 bytes read in the ANSI code page, unescaped: a value is converted
/// twice on purpose.
WideString EncodeUrlPart(WideView text, bool keepNonAscii);

}  // namespace velandoc
