// How objects come into being: class ids, ProgIDs, class objects, the libraries that serve them.
#pragma once

#include "platform/posix/com/interfaces.h"
#include "platform/posix/com/types.h"

inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;
inline constexpr DWORD CLSCTX_INPROC_HANDLER = 2;
inline constexpr DWORD CLSCTX_LOCAL_SERVER = 4;
inline constexpr DWORD CLSCTX_REMOTE_SERVER = 16;
inline constexpr DWORD CLSCTX_ALL = 23;
inline constexpr DWORD COINIT_APARTMENTTHREADED = 2;
inline constexpr DWORD COINIT_MULTITHREADED = 0;
inline constexpr DWORD REGCLS_MULTIPLEUSE = 1;

/// Counted per thread, and without further effect: objects are called on the thread that made them.
STDAPI COM_EXPORT CoInitialize(LPVOID reserved);
STDAPI COM_EXPORT CoInitializeEx(LPVOID reserved, DWORD model);
STDAPI_(void) COM_EXPORT CoUninitialize();

STDAPI_(LPVOID) COM_EXPORT CoTaskMemAlloc(SIZE_T size);
STDAPI_(LPVOID) COM_EXPORT CoTaskMemRealloc(LPVOID memory, SIZE_T size);
STDAPI_(void) COM_EXPORT CoTaskMemFree(LPVOID memory);

/// Class objects are looked for in this order: those registered in the process, the classes of the
/// runtime itself (DOMDocument60), the library that the registry names (user before machine), and
/// the component's library beside the program, in ../lib of its folder, or beside the runtime.
/// REGDB_E_CLASSNOTREG when none of them serves the class.
STDAPI COM_EXPORT CoGetClassObject(REFCLSID clsid, DWORD context, LPVOID reserved, REFIID riid,
                                   LPVOID* object);
STDAPI COM_EXPORT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID riid,
                                   LPVOID* object);
STDAPI COM_EXPORT CoRegisterClassObject(REFCLSID clsid, IUnknown* object, DWORD context,
                                        DWORD flags, DWORD* cookie);
STDAPI COM_EXPORT CoRevokeClassObject(DWORD cookie);
/// Unloads the libraries whose DllCanUnloadNow says S_OK.
STDAPI_(void) COM_EXPORT CoFreeUnusedLibraries();
/// For objects that have a state to enter before they are used; without effect here.
STDAPI COM_EXPORT OleRun(IUnknown* object);

/// CO_E_CLASSSTRING for an unknown ProgID; a ProgID with only CurVer is followed one step. The
/// component's own ProgIDs are known without registration.
STDAPI COM_EXPORT CLSIDFromProgID(LPCOLESTR progId, CLSID* clsid);
STDAPI COM_EXPORT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* progId);
/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in either case, or a ProgID; CO_E_CLASSSTRING
/// otherwise. A null text gives the null identifier.
STDAPI COM_EXPORT CLSIDFromString(LPCOLESTR text, CLSID* clsid);
/// As CLSIDFromString without the ProgIDs; CO_E_IIDSTRING for another text.
STDAPI COM_EXPORT IIDFromString(LPCOLESTR text, IID* iid);
/// Writes capitals and a terminator: 39 characters; 0 if `capacity` is less.
STDAPI_(int) COM_EXPORT StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity);

/// The text of StringFromGUID2, to be freed with CoTaskMemFree.
STDAPI COM_EXPORT StringFromCLSID(REFCLSID clsid, LPOLESTR* text);

/// A stream over a file, for one thread at a time. `mode` is an access (STGM_READ, STGM_WRITE,
/// STGM_READWRITE), a share mode, which has no effect here, and STGM_CREATE or not: with it the
/// file is made or emptied; without it, it must be there if `create` is FALSE and must not be there
/// if `create` is TRUE. Failures to open are Windows error numbers as HRESULTs (0x80070002 no file,
/// 0x80070005 no access, 0x80070050 there already); E_INVALIDARG for any other mode.
///
/// Up to 64 KiB of small writes are gathered and go out when that is full, with Commit, Seek, Read,
/// SetSize, Stat and the last Release. A failure (STG_E_MEDIUMFULL, STG_E_WRITEFAULT) is told by
/// the call that met it; what could not be written is kept and tried again by the next. Only Commit
/// tells of the last bytes: Release can't. Read returns S_OK and fewer bytes at the file's end.
STDAPI COM_EXPORT SHCreateStreamOnFileEx(LPCWSTR file, DWORD mode, DWORD attributes, BOOL create,
                                         IStream* reserved, IStream** stream);
