// Values of a script as VARIANTs and back.
#pragma once

#include <duktape.h>

#include "platform/com.h"
#include "platform/owners.h"

namespace velandoc {

/// Must run once before the others.
void InstallVariantValues(duk_context* ctx);

/// The value at `index` as an argument:
///   undefined VT_EMPTY; null VT_NULL; a boolean VT_BOOL; a string VT_BSTR; a number VT_I4 where it
///   is a whole one that fits (negative zero does not), else VT_R8; a Date VT_DATE in local time; a
///   COM object VT_DISPATCH, or VT_UNKNOWN if it is one that can only be passed on.
/// Anything else raises a type mismatch, and so does a Date that is no date.
Variant ToVariant(duk_context* ctx, duk_idx_t index);

/// Pushes the value that a script sees:
///   VT_EMPTY undefined; VT_NULL and no object null; VT_BOOL a boolean; numbers a number, where it
///   is 64-bit and not exact as one its decimal text; VT_CY a number; VT_BSTR a string; VT_DATE a
///   Date that shows the same figures in local time; VT_DISPATCH and VT_UNKNOWN objects; VT_ERROR
///   its number, or undefined for an argument left out.
/// What is behind VT_BYREF counts. Other types raise ScriptError with DISP_E_BADVARTYPE.
void PushVariant(duk_context* ctx, const VARIANT& variant);

}  // namespace velandoc
