// A CodePage port over another one, in which the N-th conversion fails.
#pragma once

#include <new>

#include "platform/code_page.h"

namespace velandoc::testing {

class FaultCodePage : public CodePage {
 public:
  /// `failAt` counts from 1; 0 never fails.
  FaultCodePage(CodePage& below, int failAt) : m_below(below), m_failAt(failAt) {}

  int Count() const { return m_count; }
  bool Failed() const { return m_failAt != 0 && m_count >= m_failAt; }

  int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int size, LPSTR bytes,
                          int capacity, LPCSTR defaultChar, BOOL* usedDefaultChar) override {
    if (++m_count == m_failAt) return 0;
    return m_below.WideCharToMultiByte(codePage, flags, wide, size, bytes, capacity, defaultChar,
                                       usedDefaultChar);
  }
  int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int size, LPWSTR wide,
                          int capacity) override {
    if (++m_count == m_failAt) return 0;
    return m_below.MultiByteToWideChar(codePage, flags, bytes, size, wide, capacity);
  }

 private:
  CodePage& m_below;
  int m_failAt;
  int m_count = 0;
};

/// A CodePage port whose texts find no memory.
class ExhaustedCodePage : public CodePage {
 public:
  int WideCharToMultiByte(UINT, DWORD, LPCWSTR, int, LPSTR, int, LPCSTR, BOOL*) override {
    throw std::bad_alloc();
  }
  int MultiByteToWideChar(UINT, DWORD, LPCSTR, int, LPWSTR, int) override {
    throw std::bad_alloc();
  }
};

}  // namespace velandoc::testing
