// COM objects as values of a script.
//
// An automation object is a Proxy: reading a member asks the object for the property at once; a
// member that cannot be read without arguments (a method, or a property with arguments) comes as a
// function that calls it. Names are resolved by the object, so their case is the object's affair. A
// member that the object does not know reads as undefined.
//
// Limits, beside JScript: `object.Property(argument) = value` is no ECMAScript, so a property with
// arguments can be read but not set; a property without arguments is read without parentheses; two
// values may stand for one object and then compare as different.
#pragma once

#include <duktape.h>

#include "hosts/script/reference_table.h"
#include "platform/com.h"

namespace velandoc {

/// Must run once before any of the others. The references go into `references`, which outlives the
/// engine.
void InstallDispatchObjects(duk_context* ctx, ReferenceTable& references);

/// Push a value that holds one reference more to the object; null for null. An opaque object has no
/// members: a script can only pass it on.
void PushDispatch(duk_context* ctx, IDispatch* dispatch);
void PushOpaque(duk_context* ctx, IUnknown* object);

/// The reference behind the value at `index`; null if it stands for no COM object.
const Reference* GetReference(duk_context* ctx, duk_idx_t index);

}  // namespace velandoc
