// The base types of COM with their Windows sizes: DWORD and HRESULT are 32 bits, OLECHAR is a
// 16-bit unit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// What the interface compiler's headers are written in.
#define interface struct
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define WINAPI
#define CALLBACK
#define MIDL_INTERFACE(iid) struct
#define DECLSPEC_UUID(iid)
#define DECLSPEC_NOVTABLE
#define FORCEINLINE inline
#define __RPC_USER
#define CONST_VTBL const
#define BEGIN_INTERFACE
#define END_INTERFACE
#define OLESTR(text) u##text
/// Exported from the COM runtime's shared library.
#define COM_EXPORT __attribute__((visibility("default")))
#define STDAPI extern "C" HRESULT
#define STDAPI_(type) extern "C" type
#define STDMETHODIMP HRESULT STDMETHODCALLTYPE
#define STDMETHODIMP_(type) type STDMETHODCALLTYPE

using BYTE = std::uint8_t;
using CHAR = char;
using WORD = std::uint16_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using INT = std::int32_t;
using UINT = std::uint32_t;
using BOOL = std::int32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using LONG_PTR = std::intptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using FLOAT = float;
using DOUBLE = double;

using WCHAR = char16_t;
using OLECHAR = WCHAR;
using LPSTR = char*;
using LPCSTR = const char*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;
using LPVOID = void*;
using LPCVOID = const void*;

using HANDLE = void*;
using HWND = void*;
using HMODULE = void*;
using HINSTANCE = void*;

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

using LCID = std::uint32_t;
using LANGID = std::uint16_t;
using DISPID = std::int32_t;
using MEMBERID = DISPID;
using SCODE = std::int32_t;
using HRESULT = std::int32_t;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

/// A time of the calendar, of whatever zone.
struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;      // 1 to 12
  WORD wDayOfWeek;  // 0 for Sunday
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};

union LARGE_INTEGER {
  struct {
    DWORD LowPart;
    LONG HighPart;
  } u;
  LONGLONG QuadPart;
};

union ULARGE_INTEGER {
  struct {
    DWORD LowPart;
    DWORD HighPart;
  } u;
  ULONGLONG QuadPart;
};

union CY {
  LONGLONG int64;
};

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];

  friend bool operator==(const GUID& a, const GUID& b) {
    return std::memcmp(&a, &b, sizeof(GUID)) == 0;
  }
};
static_assert(sizeof(GUID) == 16);

using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

/// The interface compiler's identifiers: constants of each translation unit, so no object file of
/// them is needed.
#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) \
  [[maybe_unused]] inline constexpr GUID name = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}

/// The identifier of an interface, by its type. The interface compiler's headers give it with the
/// macro.
template <class Interface>
struct UuidOf;
// Those headers are inside an extern "C" block where they use it.
#define __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)         \
  extern "C++" template <>                                                       \
  struct UuidOf<type> {                                                          \
    static constexpr GUID value = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}; \
  };

inline constexpr GUID GUID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
inline constexpr IID IID_NULL = GUID_NULL;

inline bool IsEqualGUID(REFGUID a, REFGUID b) { return a == b; }
inline bool IsEqualIID(REFIID a, REFIID b) { return a == b; }
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) { return a == b; }

constexpr HRESULT MakeResult(std::uint32_t code) { return static_cast<HRESULT>(code); }

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = MakeResult(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = MakeResult(0x80004002);
inline constexpr HRESULT E_POINTER = MakeResult(0x80004003);
inline constexpr HRESULT E_ABORT = MakeResult(0x80004004);
inline constexpr HRESULT E_FAIL = MakeResult(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = MakeResult(0x8000FFFF);
inline constexpr HRESULT E_ACCESSDENIED = MakeResult(0x80070005);
inline constexpr HRESULT E_HANDLE = MakeResult(0x80070006);
inline constexpr HRESULT E_OUTOFMEMORY = MakeResult(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = MakeResult(0x80070057);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = MakeResult(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = MakeResult(0x80040111);
inline constexpr HRESULT REGDB_E_READREGDB = MakeResult(0x80040150);
inline constexpr HRESULT REGDB_E_KEYMISSING = MakeResult(0x80040152);
inline constexpr HRESULT REGDB_E_INVALIDVALUE = MakeResult(0x80040153);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = MakeResult(0x80040154);
inline constexpr HRESULT CO_E_NOTINITIALIZED = MakeResult(0x800401F0);
inline constexpr HRESULT CO_E_CLASSSTRING = MakeResult(0x800401F3);
inline constexpr HRESULT CO_E_IIDSTRING = MakeResult(0x800401F4);
inline constexpr HRESULT CO_E_DLLNOTFOUND = MakeResult(0x800401F8);
inline constexpr HRESULT CO_E_ERRORINDLL = MakeResult(0x800401F9);
inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = MakeResult(0x80020001);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = MakeResult(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = MakeResult(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = MakeResult(0x80020005);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = MakeResult(0x80020006);
inline constexpr HRESULT DISP_E_NONAMEDARGS = MakeResult(0x80020007);
inline constexpr HRESULT DISP_E_BADVARTYPE = MakeResult(0x80020008);
inline constexpr HRESULT DISP_E_EXCEPTION = MakeResult(0x80020009);
inline constexpr HRESULT DISP_E_OVERFLOW = MakeResult(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = MakeResult(0x8002000B);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = MakeResult(0x8002000D);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = MakeResult(0x8002000E);
inline constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = MakeResult(0x8002000F);
inline constexpr HRESULT TYPE_E_ELEMENTNOTFOUND = MakeResult(0x8002802B);
inline constexpr HRESULT STG_E_INVALIDFUNCTION = MakeResult(0x80030001);
inline constexpr HRESULT STG_E_FILENOTFOUND = MakeResult(0x80030002);
inline constexpr HRESULT STG_E_PATHNOTFOUND = MakeResult(0x80030003);
inline constexpr HRESULT STG_E_ACCESSDENIED = MakeResult(0x80030005);
inline constexpr HRESULT STG_E_INVALIDPOINTER = MakeResult(0x80030009);
inline constexpr HRESULT STG_E_SEEKERROR = MakeResult(0x80030019);
inline constexpr HRESULT STG_E_WRITEFAULT = MakeResult(0x8003001D);
inline constexpr HRESULT STG_E_READFAULT = MakeResult(0x8003001E);
inline constexpr HRESULT STG_E_FILEALREADYEXISTS = MakeResult(0x80030050);
inline constexpr HRESULT STG_E_MEDIUMFULL = MakeResult(0x80030070);

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_INVALID_DATA = 13;
inline constexpr DWORD ERROR_WRITE_FAULT = 29;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_NOT_SUPPORTED = 50;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
inline constexpr DWORD ERROR_CANCELLED = 1223;

constexpr HRESULT HRESULT_FROM_WIN32(DWORD error) {
  return error == 0 ? S_OK : MakeResult((error & 0xFFFFU) | 0x80070000U);
}

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_THREAD_ACP = 3;
inline constexpr UINT CP_UTF8 = 65001;
