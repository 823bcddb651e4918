// The escaping of a whole URL before it is cracked. Other protocols of this component escape by
// other rules; this one is the connections'.
#pragma once

#include "platform/text.h"

namespace velandoc {

/// The most characters that an escaped URL may have.
inline constexpr std::size_t kMaxEscapedUrl = 2082;

/// Escapes up to the first "?" or "#" what may not stand in a URL, as UTF-8 in lower-case
/// hexadecimal; from there on nothing is changed but the encoding: each byte of its UTF-8 becomes
/// one character. A percent sign stays as it is, so escaped text passes through. False if the
/// result would have more than kMaxEscapedUrl characters or the text does not convert; `escaped` is
/// then left as it was.
bool EscapeUrl(WideView url, WideString& escaped);

}  // namespace velandoc
