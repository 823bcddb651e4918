// Owners for what COM hands out: counted references, BSTRs, VARIANTs.
#pragma once

#include <utility>

#include "platform/com.h"
#include "platform/text.h"

namespace velandoc {

/// Raises `_com_error` for a failing result; a success code passes. The thread's error object is
/// not taken along.
inline void CheckResult(HRESULT result) {
  if (FAILED(result)) _com_issue_error(result);
}

/// A counted reference. Using a null one through -> raises `_com_error` with E_POINTER: that is how
/// a missing node ends an operation.
template <class Interface>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(std::nullptr_t) noexcept {}
  /// Adds a reference.
  ComPtr(Interface* object) noexcept : m_object(object) {
    if (m_object != nullptr) m_object->AddRef();
  }
  ComPtr(const ComPtr& other) noexcept : ComPtr(other.m_object) {}
  ComPtr(ComPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
  ~ComPtr() { Reset(); }
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(m_object, other.m_object);
    return *this;
  }

  /// Takes over a reference that the caller holds.
  static ComPtr Adopt(Interface* object) noexcept {
    ComPtr owner;
    owner.m_object = object;
    return owner;
  }

  Interface* Get() const noexcept { return m_object; }
  explicit operator bool() const noexcept { return m_object != nullptr; }
  Interface* operator->() const {
    if (m_object == nullptr) _com_issue_error(E_POINTER);
    return m_object;
  }
  Interface& operator*() const { return *operator->(); }

  void Reset() noexcept {
    if (Interface* object = std::exchange(m_object, nullptr)) object->Release();
  }
  /// Gives the reference to the caller.
  Interface* Detach() noexcept { return std::exchange(m_object, nullptr); }
  /// For an out argument: what was held is released first.
  Interface** Receive() noexcept {
    Reset();
    return &m_object;
  }
  void** ReceiveVoid() noexcept { return reinterpret_cast<void**>(Receive()); }

 private:
  Interface* m_object = nullptr;
};

/// Owns a BSTR. Allocation failure raises `_com_error` with E_OUTOFMEMORY.
class Bstr {
 public:
  Bstr() noexcept = default;
  explicit Bstr(WideView text)
      : m_text(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
    if (m_text == nullptr) _com_issue_error(E_OUTOFMEMORY);
  }
  Bstr(Bstr&& other) noexcept : m_text(std::exchange(other.m_text, nullptr)) {}
  Bstr& operator=(Bstr&& other) noexcept {
    std::swap(m_text, other.m_text);
    return *this;
  }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(m_text); }

  BSTR Get() const noexcept { return m_text; }
  WideView View() const noexcept {
    return m_text != nullptr ? WideView(m_text, SysStringLen(m_text)) : WideView();
  }
  WideString Text() const { return WideString(View()); }
  BSTR Detach() noexcept { return std::exchange(m_text, nullptr); }
  BSTR* Receive() noexcept {
    SysFreeString(std::exchange(m_text, nullptr));
    return &m_text;
  }

 private:
  BSTR m_text = nullptr;
};

/// Owns a VARIANT and what it holds.
class Variant {
 public:
  Variant() noexcept { VariantInit(&m_variant); }
  explicit Variant(WideView text) : Variant() {
    m_variant.bstrVal = Bstr(text).Detach();
    m_variant.vt = VT_BSTR;
  }
  explicit Variant(INT value, VARTYPE type) noexcept : Variant() {
    m_variant.vt = type;
    m_variant.intVal = value;
  }
  Variant(Variant&& other) noexcept : m_variant(other.m_variant) { VariantInit(&other.m_variant); }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(m_variant, other.m_variant);
    return *this;
  }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&m_variant); }

  const VARIANT& Get() const noexcept { return m_variant; }
  VARIANT& Get() noexcept { return m_variant; }
  VARIANT* Receive() noexcept {
    VariantClear(&m_variant);
    return &m_variant;
  }

 private:
  VARIANT m_variant;
};

}  // namespace velandoc
