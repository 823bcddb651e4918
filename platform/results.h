// Results in automation's types.
#pragma once

#include "platform/text.h"

namespace velandoc {

constexpr VARIANT_BOOL AutomationBool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

/// A new BSTR for the caller. E_POINTER for a null `copy`, E_OUTOFMEMORY with a null `*copy`.
inline HRESULT CopyText(WideView text, BSTR* copy) {
  if (copy == nullptr) return E_POINTER;
  *copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return *copy != nullptr ? S_OK : E_OUTOFMEMORY;
}

}  // namespace velandoc
