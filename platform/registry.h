// The Registry port: the system's registry functions, under their names, with their arguments and
// results. Windows has its registry; on Linux two text files are read and written
// (platform/posix/com/registry.h).
//
// Every operation returns 0 (ERROR_SUCCESS) or an error number; nothing is stored on failure but
// where it is told. Keys come from RegCreateKeyExW and RegOpenKeyExW and are closed once with
// RegCloseKey; the three roots need no closing. Names of keys and values are compared without
// regard to case and keep the spelling with which they were made; a null or empty value name is the
// key's default value. Sizes of data are bytes, lengths of names are characters.
#pragma once

#include "platform/com.h"
#include "platform/port.h"

#ifndef _WIN32
#include "platform/posix/com/registry.h"
#endif

namespace velandoc {

class Registry {
 public:
  virtual ~Registry() = default;

  /// Opens `subKey` (levels parted by "\") or makes it with every missing level above it.
  /// `security`, `keyClass` null.
  /// `*disposition`, unless null, is REG_CREATED_NEW_KEY or REG_OPENED_EXISTING_KEY.
  virtual LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass,
                               DWORD options, REGSAM access, SECURITY_ATTRIBUTES* security,
                               HKEY* result, DWORD* disposition) = 0;
  /// ERROR_FILE_NOT_FOUND if there is no such key. A null or empty `subKey` opens the key itself
  /// again.
  virtual LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access,
                             HKEY* result) = 0;
  virtual LONG RegCloseKey(HKEY key) = 0;
  /// For REG_SZ `size` counts the terminator, which is stored with the text.
  virtual LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size) = 0;
  /// `*size` is the room in `data` and becomes the size of the value, also with a null `data`.
  /// ERROR_MORE_DATA stores the size needed; ERROR_FILE_NOT_FOUND if there is no such value.
  virtual LONG RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data,
                                DWORD* size) = 0;
  virtual LONG RegDeleteValueW(HKEY key, LPCWSTR name) = 0;
  /// ERROR_ACCESS_DENIED for a key that has subkeys, ERROR_FILE_NOT_FOUND for one that isn't there.
  virtual LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey) = 0;
  /// Deletes `subKey` with all below it; with a null one, everything below `key` and its values.
  virtual LONG RegDeleteTreeW(HKEY key, LPCWSTR subKey) = 0;
  /// `*nameLength` is the room in `name` with the terminator and becomes the length without it.
  /// ERROR_NO_MORE_ITEMS behind the last subkey. The order is fixed as long as no key is added or
  /// deleted.
  virtual LONG RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved,
                             LPWSTR keyClass, DWORD* classLength, FILETIME* lastWrite) = 0;
  /// As RegEnumKeyExW for values, with the type and data as RegQueryValueExW gives them.
  virtual LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved,
                             DWORD* type, BYTE* data, DWORD* size) = 0;
};

template <>
Registry& SystemPort<Registry>();

}  // namespace velandoc
