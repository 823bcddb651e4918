#include "tests/support/variant_text.h"

#include <charconv>
#include <cstdint>
#include <cstdio>

namespace velandoc::testing {
namespace {

std::string Hex(std::uint32_t value) {
  char digits[9];
  std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned>(value));
  return digits;
}

/// The shortest text that gives the number back.
template <class Number>
std::string Shortest(Number value) {
  char text[64];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

std::string DescribePointer(const char* type, const void* pointer) {
  return std::string(type) + (pointer == nullptr ? " null" : " object");
}

std::string DescribeValue(const VARIANT& v) {
  switch (v.vt) {
    case VT_EMPTY:
      return "EMPTY";
    case VT_NULL:
      return "NULL";
    case VT_I1:
      return "I1 " + std::to_string(static_cast<signed char>(v.cVal));
    case VT_UI1:
      return "UI1 " + std::to_string(v.bVal);
    case VT_I2:
      return "I2 " + std::to_string(v.iVal);
    case VT_UI2:
      return "UI2 " + std::to_string(v.uiVal);
    case VT_I4:
      return "I4 " + std::to_string(v.lVal);
    case VT_UI4:
      return "UI4 " + std::to_string(v.ulVal);
    case VT_INT:
      return "INT " + std::to_string(v.intVal);
    case VT_UINT:
      return "UINT " + std::to_string(v.uintVal);
    case VT_I8:
      return "I8 " + std::to_string(v.llVal);
    case VT_UI8:
      return "UI8 " + std::to_string(v.ullVal);
    case VT_CY:
      return "CY " + std::to_string(v.cyVal.int64);
    case VT_R4:
      return "R4 " + Shortest(v.fltVal);
    case VT_R8:
      return "R8 " + Shortest(v.dblVal);
    case VT_DATE:
      return "DATE " + Shortest(v.date);
    case VT_BOOL:
      return "BOOL " + std::to_string(v.boolVal);
    case VT_ERROR:
      return "ERROR " + Hex(static_cast<std::uint32_t>(v.scode));
    case VT_BSTR:
      return "BSTR '" + DescribeText(WideView(v.bstrVal, SysStringLen(v.bstrVal))) + "'";
    case VT_DISPATCH:
      return DescribePointer("DISPATCH", v.pdispVal);
    case VT_UNKNOWN:
      return DescribePointer("UNKNOWN", v.punkVal);
    default:
      return "VT " + std::to_string(v.vt);
  }
}

struct NamedResult {
  HRESULT result;
  const char* name;
};
const NamedResult kNames[] = {
    {S_OK, "S_OK"},
    {S_FALSE, "S_FALSE"},
    {E_POINTER, "E_POINTER"},
    {E_FAIL, "E_FAIL"},
    {E_NOTIMPL, "E_NOTIMPL"},
    {E_INVALIDARG, "E_INVALIDARG"},
    {DISP_E_TYPEMISMATCH, "DISP_E_TYPEMISMATCH"},
    {DISP_E_OVERFLOW, "DISP_E_OVERFLOW"},
    {DISP_E_BADVARTYPE, "DISP_E_BADVARTYPE"},
    {DISP_E_BADPARAMCOUNT, "DISP_E_BADPARAMCOUNT"},
    {DISP_E_PARAMNOTFOUND, "DISP_E_PARAMNOTFOUND"},
    {DISP_E_PARAMNOTOPTIONAL, "DISP_E_PARAMNOTOPTIONAL"},
    {DISP_E_MEMBERNOTFOUND, "DISP_E_MEMBERNOTFOUND"},
    {DISP_E_UNKNOWNNAME, "DISP_E_UNKNOWNNAME"},
    {DISP_E_EXCEPTION, "DISP_E_EXCEPTION"},
};

}  // namespace

std::string DescribeVariant(const VARIANT& variant) {
  if ((variant.vt & VT_BYREF) == 0) return DescribeValue(variant);
  VARIANT value;
  VariantInit(&value);
  if (FAILED(VariantCopyInd(&value, const_cast<VARIANT*>(&variant)))) return "BYREF";
  std::string text = DescribeValue(value);
  VariantClear(&value);
  return text.insert(text.find(' ') == text.npos ? text.size() : text.find(' '), "*");
}

std::string DescribeResult(HRESULT result) {
  for (const NamedResult& known : kNames) {
    if (known.result == result) return known.name;
  }
  return Hex(static_cast<std::uint32_t>(result));
}

std::string DescribeText(WideView text) {
  std::string narrow;
  for (const OLECHAR unit : text) {
    if (unit >= ' ' && unit < 0x7F) {
      narrow += static_cast<char>(unit);
    } else {
      narrow += "\\u" + Hex(unit).substr(4);
    }
  }
  return narrow;
}

}  // namespace velandoc::testing
