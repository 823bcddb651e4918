// An ErrorServices port over another one, in which the N-th operation fails.
#pragma once

#include "platform/error_services.h"

namespace velandoc::testing {

/// Counts the operations that can fail and makes one of them fail without reaching the port below.
/// Freeing a text and writing to the debugger always go through.
class FaultErrorServices : public ErrorServices {
 public:
  /// `failAt` counts from 1; 0 never fails.
  FaultErrorServices(ErrorServices& below, int failAt) : m_below(below), m_failAt(failAt) {}

  bool Failed() const { return m_failAt != 0 && m_count >= m_failAt; }

  DWORD FormatMessageW(DWORD flags, LPCVOID source, DWORD code, DWORD language, LPWSTR buffer,
                       DWORD size, va_list* arguments) override {
    if (!Fails()) {
      return m_below.FormatMessageW(flags, source, code, language, buffer, size, arguments);
    }
    *reinterpret_cast<LPWSTR*>(buffer) = nullptr;
    return 0;
  }
  void LocalFree(void* memory) override { m_below.LocalFree(memory); }
  HMODULE GetModuleHandleW(LPCWSTR name) override {
    return Fails() ? nullptr : m_below.GetModuleHandleW(name);
  }
  HRESULT CreateErrorInfo(ICreateErrorInfo** info) override {
    return Fails() ? E_OUTOFMEMORY : m_below.CreateErrorInfo(info);
  }
  void OutputDebugStringW(LPCWSTR text) override { m_below.OutputDebugStringW(text); }

 private:
  bool Fails() { return ++m_count == m_failAt; }

  ErrorServices& m_below;
  int m_failAt;
  int m_count = 0;
};

}  // namespace velandoc::testing
