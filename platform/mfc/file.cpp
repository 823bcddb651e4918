#include "platform/mfc/file.h"

#include <algorithm>
#include <utility>

#include "platform/error_services.h"
#include "platform/file_system.h"
#include "platform/text.h"

using velandoc::CurrentPort;
using velandoc::ErrorServices;
using velandoc::FileSystem;

BOOL CFileException::GetErrorMessage(LPWSTR buffer, UINT size, UINT* helpContext) {
  CException::GetErrorMessage(buffer, size, helpContext);
  if (buffer == nullptr || size == 0) return FALSE;
  constexpr DWORD kLanguage = 0x400;
  ErrorServices& services = CurrentPort<ErrorServices>();
  LPWSTR text = nullptr;
  services.FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
      nullptr, static_cast<DWORD>(m_lOsError), kLanguage, reinterpret_cast<LPWSTR>(&text), 0,
      nullptr);
  velandoc::WideView view = velandoc::ViewOf(text);
  while (!view.empty() && (view.back() == '\r' || view.back() == '\n')) view.remove_suffix(1);
  buffer[view.copy(buffer, size - 1)] = 0;
  services.LocalFree(text);
  return *buffer != 0 ? TRUE : FALSE;
}

CFile::~CFile() {
  if (m_hFile != nullptr) CurrentPort<FileSystem>().CloseHandle(m_hFile);
}

BOOL CFile::Open(LPCWSTR name, UINT flags) {
  CFile::Close();
  if (flags != (modeCreate | modeReadWrite | shareExclusive)) return FALSE;
  m_hFile = CurrentPort<FileSystem>().CreateFileExclusive(name);
  return m_hFile != nullptr ? TRUE : FALSE;
}

void CFile::Write(const void* bytes, UINT count) {
  if (m_hFile == nullptr) throw new CFileException(ERROR_INVALID_HANDLE);
  FileSystem& files = CurrentPort<FileSystem>();
  if (files.WriteFile(m_hFile, bytes, count)) return;
  throw new CFileException(static_cast<LONG>(files.GetLastError()));
}

void CFile::Close() {
  const HANDLE file = std::exchange(m_hFile, nullptr);
  if (file == nullptr) return;
  FileSystem& files = CurrentPort<FileSystem>();
  if (files.CloseHandle(file)) return;
  throw new CFileException(static_cast<LONG>(files.GetLastError()));
}

BOOL CMemFile::Open(LPCWSTR, UINT) { return FALSE; }

void CMemFile::Write(const void* bytes, UINT count) {
  const std::size_t needed = m_content.size() + count;
  if (needed > m_content.capacity()) {
    // Never less than half as much again: steps alone would copy a large text over and over.
    const std::size_t steps = (needed + m_growBytes - 1) / m_growBytes * m_growBytes;
    m_content.reserve(std::max(steps, m_content.capacity() + m_content.capacity() / 2));
  }
  m_content.append(static_cast<const char*>(bytes), count);
}
