// The life of a VARIANT: what it owns is a BSTR or a reference, and nothing by VT_BYREF.
#include "platform/posix/com/automation.h"
#include "platform/posix/com/variant_types.h"

namespace velandoc {

bool IsServedType(VARTYPE type) {
  if ((type & ~(VT_BYREF | VT_TYPEMASK)) != 0) return false;
  const bool isByRef = (type & VT_BYREF) != 0;
  switch (type & VT_TYPEMASK) {
    case VT_EMPTY:
    case VT_NULL:
      return !isByRef;
    case VT_VARIANT:
      return isByRef;
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_I8:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UI8:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
    case VT_ERROR:
    case VT_BOOL:
      return true;
    default:
      return false;
  }
}

namespace {

/// A second owner of what `variant` holds, for one that was copied bit by bit.
HRESULT Duplicate(VARIANT& variant) {
  if (variant.vt == VT_BSTR) {
    if (variant.bstrVal == nullptr) return S_OK;
    variant.bstrVal = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(variant.bstrVal),
                                            SysStringByteLen(variant.bstrVal));
    return variant.bstrVal != nullptr ? S_OK : E_OUTOFMEMORY;
  }
  if (variant.vt == VT_DISPATCH || variant.vt == VT_UNKNOWN) {
    if (variant.punkVal != nullptr) variant.punkVal->AddRef();
  }
  return S_OK;
}

/// The value that a VT_BYREF points at, without ownership.
HRESULT Dereference(const VARIANT& source, VARIANT& value) {
  VariantInit(&value);
  if (source.byref == nullptr) return E_INVALIDARG;
  const auto type = static_cast<VARTYPE>(source.vt & ~VT_BYREF);
  switch (type) {
    case VT_VARIANT:
      // One level only: a reference to a reference of a VARIANT is not a value.
      if (source.pvarVal->vt == (VT_BYREF | VT_VARIANT)) return E_INVALIDARG;
      if ((source.pvarVal->vt & VT_BYREF) != 0) return Dereference(*source.pvarVal, value);
      value = *source.pvarVal;
      return IsServedType(value.vt) ? S_OK : E_INVALIDARG;
    case VT_I1:
    case VT_UI1:
      value.bVal = *source.pbVal;
      break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      value.iVal = *source.piVal;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_ERROR:
    case VT_R4:
      value.lVal = *source.plVal;
      break;
    case VT_BSTR:
      value.bstrVal = *source.pbstrVal;
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      value.punkVal = *source.ppunkVal;
      break;
    default:
      value.llVal = *source.pllVal;
  }
  value.vt = type;
  return S_OK;
}

HRESULT CopyInto(VARIANT* target, VARIANT value) {
  if (const HRESULT result = VariantClear(target); FAILED(result)) return result;
  if (const HRESULT result = Duplicate(value); FAILED(result)) return result;
  *target = value;
  return S_OK;
}

}  // namespace
}  // namespace velandoc

STDAPI_(void) VariantInit(VARIANT* variant) { *variant = VARIANT{}; }

STDAPI VariantClear(VARIANT* variant) {
  if (variant == nullptr) return E_INVALIDARG;
  if (!velandoc::IsServedType(variant->vt)) return DISP_E_BADVARTYPE;
  // Empty before the reference goes: a destructor that comes back here finds nothing to release
  // again.
  const VARIANT held = *variant;
  variant->vt = VT_EMPTY;
  if (held.vt == VT_BSTR) SysFreeString(held.bstrVal);
  if ((held.vt == VT_DISPATCH || held.vt == VT_UNKNOWN) && held.punkVal != nullptr) {
    held.punkVal->Release();
  }
  return S_OK;
}

STDAPI VariantCopy(VARIANT* target, const VARIANT* source) {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  if (!velandoc::IsServedType(source->vt)) return DISP_E_BADVARTYPE;
  if (target == source) return S_OK;
  return velandoc::CopyInto(target, *source);
}

STDAPI VariantCopyInd(VARIANT* target, const VARIANT* source) {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  if (!velandoc::IsServedType(source->vt)) return DISP_E_BADVARTYPE;
  if ((source->vt & VT_BYREF) == 0) return VariantCopy(target, source);
  VARIANT value;
  if (const HRESULT result = velandoc::Dereference(*source, value); FAILED(result)) return result;
  return velandoc::CopyInto(target, value);
}
