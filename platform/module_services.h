// The ModuleServices port: where a module's file lies, which languages the user wants, and the
// resource files beside it. The names, arguments and results are the system's.
//
// A handle is a module's (GetModuleInstance in platform/module_path.h) or what LoadLibraryExW gave.
#pragma once

#include "platform/com.h"
#include "platform/port.h"

#ifndef _WIN32
inline constexpr DWORD MUI_LANGUAGE_NAME = 0x8;
inline constexpr DWORD MUI_MERGE_SYSTEM_FALLBACK = 0x10;
inline constexpr DWORD MUI_MERGE_USER_FALLBACK = 0x20;
inline constexpr DWORD LOAD_LIBRARY_AS_IMAGE_RESOURCE = 0x20;
inline constexpr DWORD LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE = 0x40;
#endif

namespace velandoc {

class ModuleServices {
 public:
  virtual ~ModuleServices() = default;

  /// The module's full path into `path`, a buffer of `size` characters. Its length; `size` if the
  /// path was cut to fit (it ends in a terminator all the same); 0 for no module, `path` being as
  /// it was.
  virtual DWORD GetModuleFileNameW(HINSTANCE module, LPWSTR path, DWORD size) = 0;

  /// The user's languages, best first, as names ("de-DE") that each end in a null, behind the last
  /// one another null. `flags` are MUI_LANGUAGE_NAME and the two merges. `*size` is the room in
  /// `names` and becomes what is used; `*count` becomes the number of names. FALSE, `names` being
  /// as it was, if they don't fit.
  ///
  /// On Linux the environment tells them (platform/posix/preferred_languages.h), and the merges are
  /// always made.
  virtual BOOL GetThreadPreferredUILanguages(DWORD flags, ULONG* count, LPWSTR names,
                                             ULONG* size) = 0;

  /// Whether a file or a folder of this name exists.
  virtual BOOL PathFileExistsW(LPCWSTR path) = 0;

  /// Opens a file of the system's executable format for its resources; none of its code runs.
  /// `flags` are LOAD_LIBRARY_AS_IMAGE_RESOURCE and LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE. Null on
  /// failure. To be given back with FreeLibrary.
  ///
  /// On Linux the same files are read (platform/posix/pe_resources.h), into memory.
  virtual HINSTANCE LoadLibraryExW(LPCWSTR path, HANDLE reserved, DWORD flags) = 0;
  virtual BOOL FreeLibrary(HINSTANCE module) = 0;

  /// Row `id` of the string table, cut to `size` characters with the terminator. The length that
  /// was stored; 0 if there is no such row, or it is empty.
  virtual int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int size) = 0;
};

template <>
ModuleServices& SystemPort<ModuleServices>();

}  // namespace velandoc
