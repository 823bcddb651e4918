// Text between the script engine and COM.
//
// The engine keeps a string as bytes: each 16-bit unit encoded by itself as UTF-8 would encode a
// character, so that a surrogate takes three bytes, and a NUL one. Bytes that came from outside may
// also hold characters of four bytes.
#pragma once

#include <duktape.h>

#include <string_view>

#include "platform/text.h"

namespace velandoc {

/// The text of the string at `index`; empty if there is no string.
WideString GetWide(duk_context* ctx, duk_idx_t index);
/// Pushes a string of these units, paired or not.
void PushWide(duk_context* ctx, WideView text);

/// The two encodings by themselves. A byte that fits nowhere becomes U+FFFD.
WideString WideFromEngine(std::string_view bytes);
std::string EngineFromWide(WideView text);

}  // namespace velandoc
