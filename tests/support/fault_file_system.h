// A FileSystem port over another one, in which the N-th operation fails.
#pragma once

#include "platform/file_system.h"

namespace velandoc::testing {

/// Counts the operations that can fail and makes one of them fail without reaching the port below,
/// but for closing, which takes the handle in any case. Deleting and asking for the last error
/// always go through.
class FaultFileSystem : public FileSystem {
 public:
  /// `failAt` counts from 1; 0 never fails.
  FaultFileSystem(FileSystem& below, int failAt, DWORD error)
      : m_below(below), m_failAt(failAt), m_error(error) {}

  bool Failed() const { return m_failAt != 0 && m_count >= m_failAt; }

  HANDLE CreateFileExclusive(LPCWSTR name) override {
    return Fails() ? nullptr : m_below.CreateFileExclusive(name);
  }
  BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD size) override {
    return !Fails() && m_below.WriteFile(file, buffer, size);
  }
  BOOL CloseHandle(HANDLE file) override {
    const bool fails = Fails();
    return m_below.CloseHandle(file) && !fails;
  }
  BOOL DeleteFileW(LPCWSTR name) override { return m_below.DeleteFileW(name); }
  DWORD GetTempPathW(DWORD capacity, LPWSTR buffer) override {
    return Fails() ? 0 : m_below.GetTempPathW(capacity, buffer);
  }
  UINT GetTempFileNameW(LPCWSTR folder, LPCWSTR prefix, LPWSTR name) override {
    return Fails() ? 0 : m_below.GetTempFileNameW(folder, prefix, name);
  }
  HRESULT SHCreateStreamOnFileEx(LPCWSTR name, DWORD mode, IStream** stream) override {
    *stream = nullptr;
    return Fails() ? HRESULT_FROM_WIN32(m_error)
                   : m_below.SHCreateStreamOnFileEx(name, mode, stream);
  }
  DWORD GetLastError() override { return m_count == m_failAt ? m_error : m_below.GetLastError(); }

 private:
  bool Fails() { return ++m_count == m_failAt; }

  FileSystem& m_below;
  int m_failAt;
  DWORD m_error;
  int m_count = 0;
};

}  // namespace velandoc::testing
