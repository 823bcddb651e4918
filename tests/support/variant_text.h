// VARIANTs in readable form, for tables of expectations.
#pragma once

#include <string>

#include "platform/text.h"

namespace velandoc::testing {

/// "I4 70000", "BSTR 'text'", "BOOL -1", "EMPTY", "ERROR 80020004", "I4* 5" for a VT_BYREF,
/// "DISPATCH null".
std::string DescribeVariant(const VARIANT& variant);

/// "DISP_E_OVERFLOW" where the result has a name here, else its digits.
std::string DescribeResult(HRESULT result);

/// Text of ASCII only; other units as \uXXXX.
std::string DescribeText(WideView text);

}  // namespace velandoc::testing
