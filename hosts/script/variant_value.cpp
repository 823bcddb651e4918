#include "hosts/script/variant_value.h"

#include <cmath>
#include <string>

#include "hosts/script/dispatch_object.h"
#include "hosts/script/errors.h"
#include "hosts/script/script_text.h"

namespace velandoc {
namespace {

constexpr char kStashDates[] = "dates";

// In the script's language, because only there the time zone's rules are known. The local figures
// of a date travel as milliseconds: those that Date.UTC gives for them.
constexpr char kDateFunctions[] = R"((function () {
  var describe = Object.prototype.toString, DateObject = Date;
  return {
    isDate: function (value) { return describe.call(value) === '[object Date]'; },
    figures: function (date) {
      var at = new DateObject(0);
      at.setUTCFullYear(date.getFullYear(), date.getMonth(), date.getDate());
      at.setUTCHours(date.getHours(), date.getMinutes(), date.getSeconds(), date.getMilliseconds());
      return at.getTime();
    },
    date: function (figures) {
      var at = new DateObject(figures);
      return new DateObject(at.getUTCFullYear(), at.getUTCMonth(), at.getUTCDate(), at.getUTCHours(),
                            at.getUTCMinutes(), at.getUTCSeconds(), at.getUTCMilliseconds());
    }
  };
})())";

constexpr double kMillisecondsPerDay = 86400000.0;
/// 30 December 1899, day 0 of a DATE, lies this many days before 1 January 1970.
constexpr double kDaysToEpoch = 25569.0;
/// The whole numbers up to this one are exact as a script's number.
constexpr LONGLONG kMaxExact = 9007199254740992;

/// In front of day 0 a DATE's time of day counts forwards although the number is negative: -1.25 is
/// six o'clock on the day before.
double DaysFromDate(DATE date) {
  if (date >= 0) return date;
  const double day = std::ceil(date);
  return day + (day - date);
}

DATE DateFromDays(double days) {
  if (days >= 0) return days;
  const double day = std::floor(days);
  return day - (days - day);
}

/// Pushes what the named date function makes of the value on top of the stack, which goes.
void CallDateFunction(duk_context* ctx, const char* name) {
  duk_push_global_stash(ctx);
  duk_get_prop_string(ctx, -1, kStashDates);
  duk_get_prop_string(ctx, -1, name);
  duk_replace(ctx, -3);
  duk_pop(ctx);
  duk_insert(ctx, -2);
  CallScript(ctx, 1);
}

bool IsDate(duk_context* ctx, duk_idx_t index) {
  duk_dup(ctx, index);
  CallDateFunction(ctx, "isDate");
  const bool is = duk_get_boolean_default(ctx, -1, false);
  duk_pop(ctx);
  return is;
}

Variant VariantFromDate(duk_context* ctx, duk_idx_t index) {
  duk_dup(ctx, index);
  CallDateFunction(ctx, "figures");
  const double figures = duk_get_number_default(ctx, -1, NAN);
  duk_pop(ctx);
  if (!std::isfinite(figures)) throw TypeMismatch();
  Variant variant;
  variant.Get().vt = VT_DATE;
  variant.Get().date = DateFromDays(figures / kMillisecondsPerDay + kDaysToEpoch);
  return variant;
}

Variant VariantFromNumber(double number) {
  Variant variant;
  // Comparing first keeps the conversion in range, NaN included.
  const bool fits = number >= -2147483648.0 && number <= 2147483647.0 &&
                    number == std::trunc(number) && !(number == 0 && std::signbit(number));
  if (fits) {
    variant.Get().vt = VT_I4;
    variant.Get().lVal = static_cast<LONG>(number);
  } else {
    variant.Get().vt = VT_R8;
    variant.Get().dblVal = number;
  }
  return variant;
}

Variant VariantFromReference(const Reference& reference) {
  Variant variant;
  if (reference.dispatch) {
    variant.Get().pdispVal = ComPtr<IDispatch>(reference.dispatch).Detach();
    variant.Get().vt = VT_DISPATCH;
  } else {
    variant.Get().punkVal = ComPtr<IUnknown>(reference.object).Detach();
    variant.Get().vt = VT_UNKNOWN;
  }
  return variant;
}

void PushDate(duk_context* ctx, DATE date) {
  const double figures = (DaysFromDate(date) - kDaysToEpoch) * kMillisecondsPerDay;
  duk_push_number(ctx, std::round(figures));
  CallDateFunction(ctx, "date");
}

void PushSigned(duk_context* ctx, LONGLONG value) {
  if (value >= -kMaxExact && value <= kMaxExact) {
    duk_push_number(ctx, static_cast<double>(value));
  } else {
    duk_push_string(ctx, std::to_string(value).c_str());
  }
}

void PushUnsigned(duk_context* ctx, ULONGLONG value) {
  if (value <= static_cast<ULONGLONG>(kMaxExact)) {
    duk_push_number(ctx, static_cast<double>(value));
  } else {
    duk_push_string(ctx, std::to_string(value).c_str());
  }
}

void PushErrorCode(duk_context* ctx, SCODE code) {
  if (code == DISP_E_PARAMNOTFOUND) {
    duk_push_undefined(ctx);
  } else {
    duk_push_int(ctx, code);
  }
}

}  // namespace

void InstallVariantValues(duk_context* ctx) {
  duk_push_global_stash(ctx);
  duk_compile_string(ctx, DUK_COMPILE_EVAL, kDateFunctions);
  duk_call(ctx, 0);
  duk_put_prop_string(ctx, -2, kStashDates);
  duk_pop(ctx);
}

Variant ToVariant(duk_context* ctx, duk_idx_t index) {
  const duk_idx_t at = duk_normalize_index(ctx, index);
  Variant variant;
  switch (duk_get_type(ctx, at)) {
    case DUK_TYPE_UNDEFINED:
      return variant;
    case DUK_TYPE_NULL:
      variant.Get().vt = VT_NULL;
      return variant;
    case DUK_TYPE_BOOLEAN:
      variant.Get().vt = VT_BOOL;
      variant.Get().boolVal = duk_get_boolean(ctx, at) ? VARIANT_TRUE : VARIANT_FALSE;
      return variant;
    case DUK_TYPE_NUMBER:
      return VariantFromNumber(duk_get_number(ctx, at));
    case DUK_TYPE_STRING:
      if (duk_is_symbol(ctx, at)) break;
      return Variant(WideView(GetWide(ctx, at)));
    case DUK_TYPE_OBJECT:
      if (const Reference* reference = GetReference(ctx, at))
        return VariantFromReference(*reference);
      if (IsDate(ctx, at)) return VariantFromDate(ctx, at);
      break;
    default:
      break;
  }
  throw TypeMismatch();
}

void PushVariant(duk_context* ctx, const VARIANT& variant) {
  if ((variant.vt & VT_BYREF) != 0) {
    Variant value;
    CheckResult(VariantCopyInd(value.Receive(), &variant));
    return PushVariant(ctx, value.Get());
  }
  switch (variant.vt) {
    case VT_EMPTY:
      return duk_push_undefined(ctx);
    case VT_NULL:
      return duk_push_null(ctx);
    case VT_BOOL:
      return duk_push_boolean(ctx, variant.boolVal != VARIANT_FALSE);
    case VT_I1:
      return duk_push_int(ctx, static_cast<signed char>(variant.cVal));
    case VT_UI1:
      return duk_push_uint(ctx, variant.bVal);
    case VT_I2:
      return duk_push_int(ctx, variant.iVal);
    case VT_UI2:
      return duk_push_uint(ctx, variant.uiVal);
    case VT_I4:
    case VT_INT:
      return duk_push_int(ctx, variant.lVal);
    case VT_UI4:
    case VT_UINT:
      return duk_push_uint(ctx, variant.ulVal);
    case VT_I8:
      return PushSigned(ctx, variant.llVal);
    case VT_UI8:
      return PushUnsigned(ctx, variant.ullVal);
    case VT_R4:
      return duk_push_number(ctx, static_cast<double>(variant.fltVal));
    case VT_R8:
      return duk_push_number(ctx, variant.dblVal);
    case VT_CY:
      return duk_push_number(ctx, static_cast<double>(variant.cyVal.int64) / 10000.0);
    case VT_DATE:
      return PushDate(ctx, variant.date);
    case VT_BSTR:
      return PushWide(ctx, {variant.bstrVal, SysStringLen(variant.bstrVal)});
    case VT_DISPATCH:
      return PushDispatch(ctx, variant.pdispVal);
    case VT_UNKNOWN:
      return PushOpaque(ctx, variant.punkVal);
    case VT_ERROR:
      return PushErrorCode(ctx, variant.scode);
    default:
      throw ScriptError{DISP_E_BADVARTYPE, {}, false};
  }
}

}  // namespace velandoc
