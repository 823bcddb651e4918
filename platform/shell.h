// The Shell port: the operations that turn a path into the place that it stands for, and tell where
// the user's folders are, under the system's names, with its arguments and results. Sizes are in
// characters.
#pragma once

#include "platform/com.h"
#include "platform/port.h"

// The one number that is needed of shlobj.h, which brings along much of the shell.
#ifndef CSIDL_INTERNET_CACHE
inline constexpr int CSIDL_INTERNET_CACHE = 0x20;
#endif

namespace velandoc {

class Shell {
 public:
  virtual ~Shell() = default;

  /// Splits `path` into drive ("Z:"), folder with its last separator, name, and extension with its
  /// dot; "\" and "/" both separate. 0; or ERANGE, with all four texts empty, if one of them does
  /// not fit its buffer.
  virtual int _wsplitpath_s(LPCWSTR path, LPWSTR drive, std::size_t driveSize, LPWSTR folder,
                            std::size_t folderSize, LPWSTR name, std::size_t nameSize,
                            LPWSTR extension, std::size_t extensionSize) = 0;

  /// The UNC name behind a drive such as "Z:". ERROR_SUCCESS; else an error, `remoteName` being as
  /// it was: ERROR_NOT_CONNECTED for a drive with none, ERROR_BAD_DEVICE for what is no drive,
  /// ERROR_MORE_DATA with the size needed in `*size`.
  virtual DWORD WNetGetConnectionW(LPCWSTR localName, LPWSTR remoteName, DWORD* size) = 0;

  /// The URL of a UNC name on a WebDAV share, "\\server[@SSL][@port]\...". `*size` is the buffer's
  /// size, then that of the text with its terminator. ERROR_SUCCESS; else an error, `url` being as
  /// it was: ERROR_INVALID_PARAMETER for any other text, ERROR_INSUFFICIENT_BUFFER.
  ///
  /// On Linux the path of a file below a WebDAV mount has a URL too, and the pseudo share
  /// DavWWWRoot does not become a part of it.
  virtual DWORD DavGetHTTPFromUNCPath(LPCWSTR uncPath, LPWSTR url, DWORD* size) = 0;

  /// The path of one of the user's folders, into a buffer of MAX_PATH (260) characters. FALSE, with
  /// the buffer as it was or empty, if there is none. `create` makes one that is missing.
  ///
  /// Linux has CSIDL_INTERNET_CACHE: the folder velandoc in XDG_CACHE_HOME of the environment if
  /// that is an absolute path, else in .cache of HOME. It is made, for the user alone, whether
  /// asked for or not: a new user has none until the first program makes it.
  virtual BOOL SHGetSpecialFolderPathW(HWND owner, LPWSTR path, int folder, BOOL create) = 0;
};

template <>
Shell& SystemPort<Shell>();

}  // namespace velandoc
