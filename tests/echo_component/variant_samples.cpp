#include "tests/echo_component/variant_samples.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace velandoc::test {
namespace {

WideString Widened(const std::string& ascii) { return WideString(ascii.begin(), ascii.end()); }

struct NumberSample {
  WideView name;
  VARTYPE type;
  LONGLONG value;  // its low bytes are the VARIANT's
};
constexpr NumberSample kNumbers[] = {
    {OLESTR("empty"), VT_EMPTY, 0},
    {OLESTR("null"), VT_NULL, 0},
    {OLESTR("true"), VT_BOOL, -1},
    {OLESTR("false"), VT_BOOL, 0},
    {OLESTR("oddTrue"), VT_BOOL, 1},
    {OLESTR("i1"), VT_I1, -128},
    {OLESTR("ui1"), VT_UI1, 255},
    {OLESTR("i2"), VT_I2, -32768},
    {OLESTR("ui2"), VT_UI2, 65535},
    {OLESTR("i4"), VT_I4, -2147483647 - 1},
    {OLESTR("ui4"), VT_UI4, 4294967295},
    {OLESTR("int"), VT_INT, -7},
    {OLESTR("uint"), VT_UINT, 4000000000},
    {OLESTR("i8"), VT_I8, -5000000000},
    {OLESTR("i8exact"), VT_I8, 9007199254740992},
    {OLESTR("i8large"), VT_I8, 9007199254740993},
    {OLESTR("i8least"), VT_I8, -9223372036854775807 - 1},
    {OLESTR("ui8"), VT_UI8, 5000000000},
    {OLESTR("ui8most"), VT_UI8, -1},
    {OLESTR("cy"), VT_CY, 12345678},
    {OLESTR("error"), VT_ERROR, E_ACCESSDENIED},
    {OLESTR("leftOut"), VT_ERROR, DISP_E_PARAMNOTFOUND},
    {OLESTR("nullText"), VT_BSTR, 0},
    {OLESTR("nullDispatch"), VT_DISPATCH, 0},
    {OLESTR("nullUnknown"), VT_UNKNOWN, 0},
};

struct RealSample {
  WideView name;
  VARTYPE type;
  double value;
};
constexpr RealSample kReals[] = {
    {OLESTR("r4"), VT_R4, 0.5},
    {OLESTR("r8"), VT_R8, -1.0e300},
    {OLESTR("date"), VT_DATE, 40000.75},                        // 6 July 2009, 18:00
    {OLESTR("earlyDate"), VT_DATE, -1.25},                      // 29 December 1899, 6:00
    {OLESTR("firstDate"), VT_DATE, 0.0},                        // 30 December 1899, 0:00
    {OLESTR("secondsDate"), VT_DATE, 25569.0 + 1.0 / 86400.0},  // 1 January 1970, 0:00:01
};

struct TextSample {
  WideView name;
  WideView text;
};
constexpr TextSample kTexts[] = {
    {OLESTR("text"), OLESTR("text")},          {OLESTR("emptyText"), OLESTR("")},
    {OLESTR("nulText"), {OLESTR("a\0b"), 3}},  {OLESTR("pairText"), OLESTR("\xD83D\xDE00")},
    {OLESTR("loneText"), OLESTR("a\xD83Dz")},  {OLESTR("swappedText"), OLESTR("\xDE00\xD83D")},
    {OLESTR("latinText"), OLESTR("\xE9\xFF")},
};

WideString TextDescription(const VARIANT& variant) {
  std::string text = "VT_BSTR ";
  const UINT length = SysStringLen(variant.bstrVal);
  for (UINT i = 0; i < length; ++i) {
    const unsigned unit = variant.bstrVal[i];
    if (unit >= 0x20 && unit < 0x7F) {
      text.push_back(static_cast<char>(unit));
    } else {
      char escaped[8] = {};
      std::snprintf(escaped, sizeof escaped, "\\u%04X", unit & 0xFFFF);
      text += escaped;
    }
  }
  return Widened(text);
}

WideString NumberDescription(const char* type, double value) {
  char text[64] = {};
  std::snprintf(text, sizeof text, "%s %.10g", type, value);
  return Widened(text);
}

}  // namespace

bool MakeSample(WideView name, IDispatch* object, Variant& sample) {
  VARIANT& variant = *sample.Receive();
  for (const NumberSample& number : kNumbers) {
    if (number.name != name) continue;
    variant.vt = number.type;
    std::memcpy(&variant.llVal, &number.value, sizeof number.value);
    return true;
  }
  for (const RealSample& real : kReals) {
    if (real.name != name) continue;
    variant.vt = real.type;
    if (real.type == VT_R4) {
      variant.fltVal = static_cast<float>(real.value);
    } else {
      variant.dblVal = real.value;
    }
    return true;
  }
  for (const TextSample& text : kTexts) {
    if (text.name != name) continue;
    sample = Variant(text.text);
    return true;
  }
  if (name == OLESTR("dispatch") || name == OLESTR("unknown")) {
    object->AddRef();
    variant.vt = name == OLESTR("dispatch") ? VT_DISPATCH : VT_UNKNOWN;
    variant.pdispVal = object;
    return true;
  }
  return false;
}

WideString Describe(const VARIANT& variant) {
  switch (variant.vt) {
    case VT_EMPTY:
      return OLESTR("VT_EMPTY");
    case VT_NULL:
      return OLESTR("VT_NULL");
    case VT_BOOL:
      return NumberDescription("VT_BOOL", variant.boolVal);
    case VT_I4:
      return NumberDescription("VT_I4", variant.lVal);
    case VT_R8:
      return NumberDescription("VT_R8", variant.dblVal);
    case VT_DATE:
      return NumberDescription("VT_DATE", variant.date);
    case VT_BSTR:
      return TextDescription(variant);
    case VT_DISPATCH:
      return variant.pdispVal != nullptr ? OLESTR("VT_DISPATCH") : OLESTR("VT_DISPATCH null");
    case VT_UNKNOWN:
      return variant.punkVal != nullptr ? OLESTR("VT_UNKNOWN") : OLESTR("VT_UNKNOWN null");
    default:
      return NumberDescription("type", variant.vt);
  }
}

}  // namespace velandoc::test
