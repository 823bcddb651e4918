// _com_error, the exception that a failing COM call is turned into.
#pragma once

#include <string>
#include <utility>

#include "platform/posix/com/automation.h"

/// The text that _com_error gives out: owns a BSTR.
class _bstr_t {
 public:
  _bstr_t() noexcept = default;
  /// With `copy` false the text is taken over from the caller.
  _bstr_t(BSTR text, bool copy) : m_text(copy && text != nullptr ? Copy(text) : text) {}
  _bstr_t(const _bstr_t& other) : _bstr_t(other.m_text, true) {}
  _bstr_t(_bstr_t&& other) noexcept : m_text(std::exchange(other.m_text, nullptr)) {}
  _bstr_t& operator=(_bstr_t other) noexcept {
    std::swap(m_text, other.m_text);
    return *this;
  }
  ~_bstr_t() { SysFreeString(m_text); }

  /// Null for no text.
  operator const OLECHAR*() const noexcept { return m_text; }
  unsigned int length() const noexcept { return SysStringLen(m_text); }
  bool operator!() const noexcept { return m_text == nullptr; }

 private:
  static BSTR Copy(BSTR text);

  BSTR m_text = nullptr;
};

/// Holds an HRESULT and, if there is one, a counted reference to the error object that came with
/// it.
class _com_error {
 public:
  /// With `addRef` false the reference is taken over from the caller.
  explicit _com_error(HRESULT result, IErrorInfo* info = nullptr, bool addRef = false) noexcept
      : m_result(result), m_info(info) {
    if (m_info != nullptr && addRef) m_info->AddRef();
  }
  _com_error(const _com_error& other) noexcept : m_result(other.m_result), m_info(other.m_info) {
    if (m_info != nullptr) m_info->AddRef();
  }
  _com_error& operator=(_com_error other) noexcept {
    m_result = other.m_result;
    std::swap(m_info, other.m_info);
    m_message.clear();
    return *this;
  }
  virtual ~_com_error() {
    if (m_info != nullptr) m_info->Release();
  }

  HRESULT Error() const noexcept { return m_result; }
  /// A new reference that the caller releases, or null.
  IErrorInfo* ErrorInfo() const noexcept {
    if (m_info != nullptr) m_info->AddRef();
    return m_info;
  }

  /// What the error object says; no text without one.
  _bstr_t Description() const { return TextOf(&IErrorInfo::GetDescription); }
  _bstr_t Source() const { return TextOf(&IErrorInfo::GetSource); }
  _bstr_t HelpFile() const { return TextOf(&IErrorInfo::GetHelpFile); }
  DWORD HelpContext() const noexcept {
    DWORD context = 0;
    return m_info != nullptr && SUCCEEDED(m_info->GetHelpContext(&context)) ? context : 0;
  }

  /// The result in words, if the system has any; otherwise "IDispatch error #1" for 0x80040201 and
  /// on to 0x8004FFFF, "Unknown error 0x80040200" for every other. Lives as long as this object.
  const OLECHAR* ErrorMessage() const {
    if (m_message.empty()) m_message = MessageOf(m_result);
    return m_message.c_str();
  }

 private:
  _bstr_t TextOf(HRESULT (IErrorInfo::*get)(BSTR*)) const {
    BSTR text = nullptr;
    if (m_info == nullptr || FAILED((m_info->*get)(&text))) return _bstr_t();
    return _bstr_t(text, false);
  }
  COM_EXPORT static std::basic_string<OLECHAR> MessageOf(HRESULT result);

  HRESULT m_result;
  IErrorInfo* m_info;
  mutable std::basic_string<OLECHAR> m_message;
};

[[noreturn]] inline void _com_issue_error(HRESULT result) { throw _com_error(result); }

/// Takes over the reference to the error object.
[[noreturn]] inline void _com_raise_error(HRESULT result, IErrorInfo* info = nullptr) {
  throw _com_error(result, info, false);
}

/// For a failing call of `object`: with the thread's error object if the object says that its
/// interface provides one.
[[noreturn]] COM_EXPORT void _com_issue_errorex(HRESULT result, IUnknown* object, REFIID riid);

inline BSTR _bstr_t::Copy(BSTR text) {
  const BSTR copy = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(text), SysStringByteLen(text));
  if (copy == nullptr) _com_issue_error(E_OUTOFMEMORY);
  return copy;
}
