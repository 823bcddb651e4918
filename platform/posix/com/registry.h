// The registry of the Linux home: two text files, one of the machine and one of the user, read and
// written through the functions that Windows has for its own.
//
// The files are UTF-8 text in the form of an exported registry ("Windows Registry Editor
// Version 5.00"):
//   machine: /var/lib/velandoc/registry/machine.reg                              HKEY_LOCAL_MACHINE
//   user:    ${XDG_CONFIG_HOME:-~/.config}/velandoc/registry/user.reg            HKEY_CURRENT_USER
// The environment variable VELANDOC_REGISTRY_DIR names a folder that holds both instead.
// HKEY_CLASSES_ROOT reads `Software\Classes` of the user before that of the machine, key by key and
// value by value, and writes to the machine's.
//
// Every change is on disk when its function returns: it is made under a lock (flock on a `.lock`
// file beside the file) and by renaming a finished new file into place, so readers need no lock and
// see the state before or after. Any thread may call. A missing file is an empty registry.
#pragma once

#include "platform/posix/com/types.h"

struct HKEY__;
using HKEY = HKEY__*;
using REGSAM = DWORD;
using LSTATUS = LONG;

inline const HKEY HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t{0x80000000});
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});

inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_SET_VALUE = 0x0002;
inline constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
inline constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_MULTI_SZ = 7;

inline constexpr DWORD ERROR_BUSY = 170;
/// A registry file that can't be understood, or that passes a limit. It is left as it is.
inline constexpr DWORD ERROR_BADDB = 1009;
/// A registry file that is there but can't be read.
inline constexpr DWORD ERROR_CANTREAD = 1012;
inline constexpr DWORD ERROR_CANTWRITE = 1013;
/// The key was deleted after it was opened.
inline constexpr DWORD ERROR_KEY_DELETED = 1018;

struct SECURITY_ATTRIBUTES;

STDAPI_(LONG)
COM_EXPORT
RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options,
                REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* result, DWORD* disposition);
STDAPI_(LONG)
COM_EXPORT RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, HKEY* result);
STDAPI_(LONG) COM_EXPORT RegCloseKey(HKEY key);
STDAPI_(LONG)
COM_EXPORT RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                          DWORD size);
STDAPI_(LONG)
COM_EXPORT
RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size);
STDAPI_(LONG) COM_EXPORT RegDeleteValueW(HKEY key, LPCWSTR name);
STDAPI_(LONG) COM_EXPORT RegDeleteKeyW(HKEY key, LPCWSTR subKey);
STDAPI_(LONG) COM_EXPORT RegDeleteTreeW(HKEY key, LPCWSTR subKey);
STDAPI_(LONG)
COM_EXPORT RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved,
                         LPWSTR keyClass, DWORD* classLength, FILETIME* lastWrite);
STDAPI_(LONG)
COM_EXPORT RegEnumValueW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved,
                         DWORD* type, BYTE* data, DWORD* size);
