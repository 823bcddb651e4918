// MFC's file objects, as far as a response body needs them: a local file that is made anew, and a
// file in memory. Who writes to one does not see which it is.
//
// Failures come as a CFileException, by pointer; no memory comes as std::bad_alloc.
#pragma once

#include <string>

#include "platform/mfc/exceptions.h"

/// A write or a close that failed.
class CFileException final : public CException {
 public:
  explicit CFileException(LONG error) : m_lOsError(error) {}

  /// The system's text of m_lOsError.
  BOOL GetErrorMessage(LPWSTR buffer, UINT size, UINT* helpContext = nullptr) override;

  LONG m_lOsError;
};

/// A local file, over the FileSystem port.
class CFile {
 public:
  enum OpenFlags : UINT {
    modeReadWrite = 0x0002,
    shareExclusive = 0x0010,
    modeCreate = 0x1000,
  };

  CFile() = default;
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;
  /// Closes; that this fails is lost. Who has written closes with Close.
  virtual ~CFile();

  /// FALSE if it can't be opened. The three flags together are the one mode there is; FALSE for any
  /// other, too. A file that was open is closed.
  virtual BOOL Open(LPCWSTR name, UINT flags);
  /// `count` may be 0. Raises CFileException, also if no file is open.
  virtual void Write(const void* bytes, UINT count);
  /// Twice is once. Raises CFileException; the file is closed all the same.
  virtual void Close();

 private:
  HANDLE m_hFile = nullptr;
};

/// A file in memory, as large as what is written to it. It is open from the beginning.
class CMemFile final : public CFile {
 public:
  /// Room is made in multiples of `growBytes`.
  explicit CMemFile(UINT growBytes = 1024) : m_growBytes(growBytes) {}

  /// Not for this kind: FALSE.
  BOOL Open(LPCWSTR name, UINT flags) override;
  void Write(const void* bytes, UINT count) override;
  /// Nothing to do; what was written stays readable.
  void Close() override {}

  const std::string& GetContent() const { return m_content; }

 private:
  std::string m_content;
  const UINT m_growBytes;
};
