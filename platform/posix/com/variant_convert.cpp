// VariantChangeType: which type turns into which, by OLE Automation's rules.
//
// A value is first brought to one of four forms (a whole number, a floating one, currency, text)
// and from there to the type that is asked for. Fractions are rounded half to even everywhere. One
// rule looks odd and is the system's: between a signed and an unsigned type of the same size the
// bits are taken over and nothing overflows.
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "platform/ascii_case.h"
#include "platform/owners.h"
#include "platform/posix/com/automation.h"
#include "platform/posix/com/date_reader.h"
#include "platform/posix/com/date_text.h"
#include "platform/posix/com/number_text.h"
#include "platform/posix/com/variant_types.h"

namespace velandoc {
namespace {

constexpr double kCurrencyScale = 10000;
// What a single and a double precision number keep as decimal digits.
constexpr int kFloatDigits = 7;
constexpr int kDoubleDigits = 15;

/// A whole number of any of the ten types: sign and magnitude, so that none needs a case of its
/// own.
struct Whole {
  bool isNegative;
  std::uint64_t magnitude;
};

Whole FromSigned(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? Whole{true, 0 - bits} : Whole{false, bits};
}

bool IsWholeType(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_I8:
    case VT_INT:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UI8:
    case VT_UINT:
      return true;
    default:
      return false;
  }
}

std::size_t SizeOfWhole(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
      return 2;
    case VT_I8:
    case VT_UI8:
      return 8;
    default:
      return 4;
  }
}

Whole WholeOf(const VARIANT& source) {
  switch (source.vt) {
    case VT_I1:
      return FromSigned(static_cast<std::int8_t>(source.cVal));
    case VT_I2:
    case VT_BOOL:
      return FromSigned(source.iVal);
    case VT_I4:
    case VT_INT:
      return FromSigned(source.lVal);
    case VT_I8:
      return FromSigned(source.llVal);
    case VT_UI1:
      return {false, source.bVal};
    case VT_UI2:
      return {false, source.uiVal};
    case VT_UI4:
    case VT_UINT:
      return {false, source.ulVal};
    case VT_UI8:
      return {false, source.ullVal};
    default:
      return {false, 0};
  }
}

/// Stores the number as a whole one of the type; DISP_E_OVERFLOW if it does not fit.
template <class Integer>
HRESULT StoreInteger(Whole value, Integer& target) {
  using Limits = std::numeric_limits<Integer>;
  const auto max = static_cast<std::uint64_t>(Limits::max());
  const std::uint64_t limit = value.isNegative ? (Limits::is_signed ? max + 1 : 0) : max;
  if (value.magnitude > limit) return DISP_E_OVERFLOW;
  target = static_cast<Integer>(value.isNegative ? 0 - value.magnitude : value.magnitude);
  return S_OK;
}

HRESULT StoreWhole(Whole value, VARTYPE type, VARIANT& target) {
  switch (type) {
    case VT_I1: {
      std::int8_t stored = 0;
      const HRESULT result = StoreInteger(value, stored);
      target.cVal = static_cast<CHAR>(stored);
      return result;
    }
    case VT_I2:
      return StoreInteger(value, target.iVal);
    case VT_I4:
    case VT_INT:
      return StoreInteger(value, target.lVal);
    case VT_I8:
      return StoreInteger(value, target.llVal);
    case VT_UI1:
      return StoreInteger(value, target.bVal);
    case VT_UI2:
      return StoreInteger(value, target.uiVal);
    case VT_UI4:
    case VT_UINT:
      return StoreInteger(value, target.ulVal);
    default:
      return StoreInteger(value, target.ullVal);
  }
}

/// Rounds to a whole number; DISP_E_OVERFLOW for what has none in 64 bits.
HRESULT Round(double value, Whole& whole) {
  // The default rounding mode of the floating unit is the one that is wanted: half to even.
  const double rounded = std::nearbyint(value);
  if (!(std::fabs(rounded) < 18446744073709551616.0)) return DISP_E_OVERFLOW;
  whole = {rounded < 0, static_cast<std::uint64_t>(std::fabs(rounded))};
  return S_OK;
}

Whole RoundCurrency(LONGLONG value) {
  const Whole scaled = FromSigned(value);
  const std::uint64_t rest = scaled.magnitude % 10000;
  std::uint64_t quotient = scaled.magnitude / 10000;
  if (rest > 5000 || (rest == 5000 && quotient % 2 != 0)) ++quotient;
  return {scaled.isNegative && quotient != 0, quotient};
}

double DoubleOf(const VARIANT& source) {
  switch (source.vt) {
    case VT_R4:
      return static_cast<double>(source.fltVal);
    case VT_R8:
    case VT_DATE:
      return source.dblVal;
    case VT_CY:
      return static_cast<double>(source.cyVal.int64) / kCurrencyScale;
    default: {
      const Whole whole = WholeOf(source);
      const auto magnitude = static_cast<double>(whole.magnitude);
      return whole.isNegative ? -magnitude : magnitude;
    }
  }
}

HRESULT StoreDouble(double value, VARTYPE type, VARIANT& target) {
  switch (type) {
    case VT_R4:
      if (std::isfinite(value) ? std::fabs(value) > std::numeric_limits<float>::max()
                               : std::isinf(value)) {
        return DISP_E_OVERFLOW;
      }
      target.fltVal = static_cast<float>(value);
      return S_OK;
    case VT_R8:
      target.dblVal = value;
      return S_OK;
    case VT_DATE:
      if (!IsValidDate(value)) return DISP_E_OVERFLOW;
      target.date = value;
      return S_OK;
    case VT_BOOL:
      target.boolVal = value != 0 ? VARIANT_TRUE : VARIANT_FALSE;
      return S_OK;
    case VT_CY: {
      Whole whole{};
      if (const HRESULT result = Round(value * kCurrencyScale, whole); FAILED(result))
        return result;
      return StoreInteger(whole, target.cyVal.int64);
    }
    default: {
      Whole whole{};
      if (const HRESULT result = Round(value, whole); FAILED(result)) return result;
      return StoreWhole(whole, type, target);
    }
  }
}

/// From a number of any kind to a number of any kind.
HRESULT NumberToNumber(const VARIANT& source, VARTYPE type, VARIANT& target) {
  if (source.vt == VT_CY && IsWholeType(type)) {
    return StoreWhole(RoundCurrency(source.cyVal.int64), type, target);
  }
  const bool isFloating = source.vt == VT_R4 || source.vt == VT_R8 || source.vt == VT_DATE;
  if (isFloating || source.vt == VT_CY) return StoreDouble(DoubleOf(source), type, target);
  const Whole whole = WholeOf(source);
  if (IsWholeType(type)) {
    if (IsWholeType(source.vt) && SizeOfWhole(source.vt) == SizeOfWhole(type)) {
      target.ullVal = source.ullVal;
      return S_OK;
    }
    // VARIANT_TRUE is all bits set, and stays so in an unsigned number.
    if (source.vt == VT_BOOL) {
      target.llVal = source.boolVal;
      return S_OK;
    }
    return StoreWhole(whole, type, target);
  }
  if (type == VT_CY) {
    if (whole.magnitude > std::numeric_limits<std::uint64_t>::max() / 10000) return DISP_E_OVERFLOW;
    return StoreInteger(Whole{whole.isNegative, whole.magnitude * 10000}, target.cyVal.int64);
  }
  return StoreDouble(DoubleOf(source), type, target);
}

std::optional<VARIANT_BOOL> TruthOf(WideView text) {
  if (EqualsIgnoringAsciiCase(text, OLESTR("true")) || text == OLESTR("#TRUE#"))
    return VARIANT_TRUE;
  if (EqualsIgnoringAsciiCase(text, OLESTR("false")) || text == OLESTR("#FALSE#"))
    return VARIANT_FALSE;
  return std::nullopt;
}

HRESULT TextToNumber(WideView text, VARTYPE type, VARIANT& target) {
  if (type == VT_DATE) {
    return ReadDateText(text, CurrentYear(), target.date) ? S_OK : DISP_E_TYPEMISMATCH;
  }
  if (type == VT_BOOL) {
    if (const std::optional<VARIANT_BOOL> truth = TruthOf(text)) {
      target.boolVal = *truth;
      return S_OK;
    }
  }
  ParsedNumber number;
  if (const HRESULT result = ParseNumber(text, number); FAILED(result)) return result;
  if (IsWholeType(type)) {
    std::uint64_t magnitude = 0;
    if (const HRESULT result = ToMagnitude(number, 0, magnitude); FAILED(result)) return result;
    // A bit pattern fills a signed type up to its sign bit.
    if (number.isBitPattern && magnitude >> (8 * SizeOfWhole(type) - 1) == 1) {
      target.ullVal = magnitude;
      return S_OK;
    }
    return StoreWhole({number.isNegative && magnitude != 0, magnitude}, type, target);
  }
  if (type == VT_CY) {
    std::uint64_t magnitude = 0;
    if (const HRESULT result = ToMagnitude(number, 4, magnitude); FAILED(result)) return result;
    return StoreInteger(Whole{number.isNegative, magnitude}, target.cyVal.int64);
  }
  double value = 0;
  if (const HRESULT result = ToDouble(number, value); FAILED(result)) return result;
  return StoreDouble(value, type, target);
}

HRESULT NumberToText(const VARIANT& source, USHORT flags, WideString& text) {
  switch (source.vt) {
    case VT_EMPTY:
      text.clear();
      return S_OK;
    case VT_R4:
      text = FormatDouble(static_cast<double>(source.fltVal), kFloatDigits);
      return S_OK;
    case VT_R8:
      text = FormatDouble(source.dblVal, kDoubleDigits);
      return S_OK;
    case VT_CY:
      text = FormatCurrency(source.cyVal.int64);
      return S_OK;
    case VT_DATE:
      return FormatDate(source.date, text) ? S_OK : E_INVALIDARG;
    case VT_BOOL:
      if ((flags & (VARIANT_ALPHABOOL | VARIANT_LOCALBOOL)) != 0) {
        text = source.boolVal != VARIANT_FALSE ? OLESTR("True") : OLESTR("False");
        return S_OK;
      }
      break;
    default:
      break;
  }
  const Whole whole = WholeOf(source);
  const std::string digits = (whole.isNegative ? "-" : "") + std::to_string(whole.magnitude);
  text.assign(digits.begin(), digits.end());
  return S_OK;
}

/// The value of the object's default property.
HRESULT DefaultValue(IDispatch* object, LCID lcid, VARIANT& value) {
  if (object == nullptr) return DISP_E_BADVARTYPE;
  DISPPARAMS none{};
  const HRESULT result = object->Invoke(DISPID_VALUE, IID_NULL, lcid, DISPATCH_PROPERTYGET, &none,
                                        &value, nullptr, nullptr);
  return FAILED(result) ? DISP_E_TYPEMISMATCH : S_OK;
}

HRESULT ObjectToObject(const VARIANT& source, VARTYPE type, VARIANT& target) {
  target.punkVal = nullptr;
  if (source.punkVal == nullptr) return S_OK;
  const IID& iid = type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown;
  const HRESULT result =
      source.punkVal->QueryInterface(iid, reinterpret_cast<void**>(&target.punkVal));
  return FAILED(result) ? DISP_E_TYPEMISMATCH : S_OK;
}

/// `source` has no VT_BYREF. `target` comes in empty and owns the result; its type is set by the
/// caller.
HRESULT Convert(const VARIANT& source, LCID lcid, USHORT flags, VARTYPE type, VARIANT& target) {
  const bool isObject = source.vt == VT_DISPATCH || source.vt == VT_UNKNOWN;
  if (source.vt == VT_ERROR) return DISP_E_TYPEMISMATCH;
  if (type == VT_NULL) return S_OK;
  if (source.vt == VT_NULL) return DISP_E_TYPEMISMATCH;
  if (type == VT_EMPTY) return S_OK;
  if (type == VT_ERROR) return DISP_E_TYPEMISMATCH;
  if (type == VT_DISPATCH || type == VT_UNKNOWN) {
    return isObject ? ObjectToObject(source, type, target) : DISP_E_TYPEMISMATCH;
  }
  if (isObject) {
    if (source.vt == VT_UNKNOWN || (flags & VARIANT_NOVALUEPROP) != 0) return DISP_E_TYPEMISMATCH;
    Variant value;
    if (const HRESULT result = DefaultValue(source.pdispVal, lcid, value.Get()); FAILED(result)) {
      return result;
    }
    // An object whose value is an object again is not asked a second time.
    return VariantChangeTypeEx(&target, &value.Get(), lcid,
                               static_cast<USHORT>(flags | VARIANT_NOVALUEPROP), type);
  }
  if (type == VT_BSTR) {
    WideString text;
    if (const HRESULT result = NumberToText(source, flags, text); FAILED(result)) return result;
    target.bstrVal = Bstr(text).Detach();
    return S_OK;
  }
  if (source.vt == VT_BSTR) {
    return TextToNumber(WideView(source.bstrVal, SysStringLen(source.bstrVal)), type, target);
  }
  return NumberToNumber(source, type, target);
}

}  // namespace
}  // namespace velandoc

STDAPI VariantChangeTypeEx(VARIANT* target, const VARIANT* source, LCID lcid, USHORT flags,
                           VARTYPE type) try {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  if (!velandoc::IsServedType(source->vt)) return DISP_E_BADVARTYPE;
  if ((type & VT_BYREF) != 0 || type == VT_VARIANT) return DISP_E_TYPEMISMATCH;
  if (!velandoc::IsServedType(type)) return DISP_E_BADVARTYPE;
  velandoc::Variant value;
  if (const HRESULT result = VariantCopyInd(&value.Get(), source); FAILED(result)) return result;
  if (value.Get().vt != type) {
    velandoc::Variant converted;
    const HRESULT result = velandoc::Convert(value.Get(), lcid, flags, type, converted.Get());
    if (FAILED(result)) return result;
    converted.Get().vt = type;
    value = std::move(converted);
  }
  if (const HRESULT result = VariantClear(target); FAILED(result)) return result;
  *target = value.Get();
  VariantInit(&value.Get());  // the target owns it now
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
} catch (const _com_error& error) {
  return error.Error();
}

STDAPI VariantChangeType(VARIANT* target, const VARIANT* source, USHORT flags, VARTYPE type) {
  return VariantChangeTypeEx(target, source, LOCALE_USER_DEFAULT, flags, type);
}
