// _com_error, the exception that a failing COM call is turned into.
#pragma once

#include "platform/posix/com/automation.h"

/// Holds an HRESULT and, if there is one, a counted reference to the error object that came with it.
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
  _com_error& operator=(const _com_error& other) noexcept {
    if (other.m_info != nullptr) other.m_info->AddRef();
    if (m_info != nullptr) m_info->Release();
    m_result = other.m_result;
    m_info = other.m_info;
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

 private:
  HRESULT m_result;
  IErrorInfo* m_info;
};

[[noreturn]] inline void _com_issue_error(HRESULT result) { throw _com_error(result); }
