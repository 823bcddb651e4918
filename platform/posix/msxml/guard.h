// Where exceptions of the implementation end: at its interfaces.
#pragma once

#include <new>
#include <string_view>
#include <utility>

#include "platform/posix/com/com.h"
#include "platform/posix/msxml/text_encoding.h"

namespace velandoc::dom {

/// Runs one operation of an interface; an exception becomes its result.
template <class Operation>
HRESULT Guarded(Operation&& operation) noexcept {
  try {
    return std::forward<Operation>(operation)();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const _com_error& error) {
    return error.Error();
  }
}

/// Stores `value` where the caller asked for it.
template <class Value>
HRESULT Give(Value* out, Value value) {
  if (out == nullptr) return E_INVALIDARG;
  *out = value;
  return S_OK;
}

/// "Nothing there": null and S_FALSE.
template <class Object>
HRESULT GiveNothing(Object** out) {
  if (out == nullptr) return E_INVALIDARG;
  *out = nullptr;
  return S_FALSE;
}

/// A new BSTR for the caller.
inline HRESULT GiveText(BSTR* out, std::string_view utf8) {
  if (out == nullptr) return E_INVALIDARG;
  *out = nullptr;
  return Guarded([&] {
    *out = Decode(utf8);
    return S_OK;
  });
}

inline HRESULT GiveText(VARIANT* out, std::string_view utf8) {
  if (out == nullptr) return E_INVALIDARG;
  VariantInit(out);
  return Guarded([&] {
    out->bstrVal = Decode(utf8);
    out->vt = VT_BSTR;
    return S_OK;
  });
}

}  // namespace velandoc::dom
