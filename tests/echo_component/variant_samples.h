// VARIANTs of every type that an automation object may hand to a script, by name.
#pragma once

#include "platform/owners.h"

namespace velandoc::test {

/// False for an unknown name. `object` is what "dispatch" and "unknown" hold.
bool MakeSample(WideView name, IDispatch* object, Variant& sample);

/// "VT_I4 5", "VT_BSTR <text, what is not printable ASCII as \uXXXX>", "VT_DISPATCH".
WideString Describe(const VARIANT& variant);

}  // namespace velandoc::test
