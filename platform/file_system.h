// The FileSystem port: the local files that a download makes and an upload reads. The operations
// have the names of the Windows functions behind them, and of their arguments those that vary here.
//
// A BOOL, a handle or a count that says failure leaves the reason for GetLastError.
#pragma once

#include "platform/com.h"
#include "platform/port.h"

namespace velandoc {

/// What stands between the parts of a path in this home.
#ifdef _WIN32
inline constexpr OLECHAR kPathSeparator = L'\\';
#else
inline constexpr OLECHAR kPathSeparator = u'/';
#endif

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Makes a regular file for reading and writing that nobody else may open while the handle
  /// stands; one that exists is emptied. Null on failure. (CreateFileW with CREATE_ALWAYS and no
  /// sharing. On Linux only those who ask are kept out: the file is locked.)
  virtual HANDLE CreateFileExclusive(LPCWSTR name) = 0;
  /// FALSE if not all of `size` bytes were taken. On Linux small writes are gathered, so the lack
  /// of room may be told by a later write or by CloseHandle.
  virtual BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD size) = 0;
  /// The handle is gone in any case. FALSE: what was written may not be in the file.
  virtual BOOL CloseHandle(HANDLE file) = 0;
  virtual BOOL DeleteFileW(LPCWSTR name) = 0;
  /// The folder for temporary files with its final separator, into a buffer of `capacity`
  /// characters. The length without the terminator; more than `capacity` if there is no room; 0 on
  /// failure. On Linux it is the environment's TMPDIR, else /tmp.
  virtual DWORD GetTempPathW(DWORD capacity, LPWSTR buffer) = 0;
  /// Makes an empty file of a name of its own in `folder`, beginning with the first three
  /// characters of `prefix`, null for none, and ending in ".tmp"; the path goes to `name`, a buffer
  /// of MAX_PATH (260) characters. 0, with `name` as it was, on failure, on Linux also for an empty
  /// folder's name. (The number of the Windows function is always 0.)
  virtual UINT GetTempFileNameW(LPCWSTR folder, LPCWSTR prefix, LPWSTR name) = 0;
  /// A stream over the file, which exists, read from its first byte; `mode` is of STGM_*. The
  /// result is the system's, and `*stream` null on failure.
  virtual HRESULT SHCreateStreamOnFileEx(LPCWSTR name, DWORD mode, IStream** stream) = 0;

  virtual DWORD GetLastError() = 0;
};

template <>
FileSystem& SystemPort<FileSystem>();

}  // namespace velandoc
