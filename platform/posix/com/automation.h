// OLE Automation: BSTR, VARIANT and its conversions, the arguments of IDispatch::Invoke, the
// thread's error object.
#pragma once

#include "platform/posix/com/interfaces.h"
#include "platform/posix/com/types.h"

enum VARENUM : VARTYPE {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_HRESULT = 25,
  VT_STREAM = 66,
  VT_BYREF = 0x4000,
  VT_TYPEMASK = 0xFFF,
};

/// The two pointers of VT_RECORD, which is not served here: they give VARIANT its size.
struct VariantRecord {
  void* first;
  void* second;
};

struct tagVARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONGLONG llVal;
    LONG lVal;
    BYTE bVal;
    SHORT iVal;
    FLOAT fltVal;
    DOUBLE dblVal;
    VARIANT_BOOL boolVal;
    SCODE scode;
    CY cyVal;
    DATE date;
    BSTR bstrVal;
    IUnknown* punkVal;
    IDispatch* pdispVal;
    BYTE* pbVal;
    SHORT* piVal;
    LONG* plVal;
    LONGLONG* pllVal;
    FLOAT* pfltVal;
    DOUBLE* pdblVal;
    VARIANT_BOOL* pboolVal;
    SCODE* pscode;
    CY* pcyVal;
    DATE* pdate;
    BSTR* pbstrVal;
    IUnknown** ppunkVal;
    IDispatch** ppdispVal;
    tagVARIANT* pvarVal;
    void* byref;
    CHAR cVal;
    USHORT uiVal;
    ULONG ulVal;
    ULONGLONG ullVal;
    INT intVal;
    UINT uintVal;
    INT* pintVal;
    UINT* puintVal;
    USHORT* puiVal;
    ULONG* pulVal;
    ULONGLONG* pullVal;
    VariantRecord record;
  };
};
static_assert(sizeof(VARIANT) == 24);

struct DISPPARAMS {
  VARIANTARG* rgvarg;  // last argument first
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
};

struct EXCEPINFO {
  WORD wCode;
  WORD wReserved;
  BSTR bstrSource;
  BSTR bstrDescription;
  BSTR bstrHelpFile;
  DWORD dwHelpContext;
  void* pvReserved;
  HRESULT(STDMETHODCALLTYPE* pfnDeferredFillIn)(EXCEPINFO*);
  SCODE scode;
};

inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr WORD DISPATCH_PROPERTYGET = 2;
inline constexpr WORD DISPATCH_PROPERTYPUT = 4;
inline constexpr WORD DISPATCH_PROPERTYPUTREF = 8;
inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;

inline constexpr LCID LOCALE_USER_DEFAULT = 0x400;
inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x800;

/// A null BSTR stands for empty text in every function; its length is 0. Allocation failure gives
/// null.
STDAPI_(BSTR) COM_EXPORT SysAllocString(const OLECHAR* text);
STDAPI_(BSTR) COM_EXPORT SysAllocStringLen(const OLECHAR* text, UINT length);
STDAPI_(BSTR) COM_EXPORT SysAllocStringByteLen(LPCSTR bytes, UINT length);
STDAPI_(void) COM_EXPORT SysFreeString(BSTR text);
STDAPI_(UINT) COM_EXPORT SysStringLen(BSTR text);
STDAPI_(UINT) COM_EXPORT SysStringByteLen(BSTR text);

STDAPI_(void) COM_EXPORT VariantInit(VARIANT* variant);
STDAPI COM_EXPORT VariantClear(VARIANT* variant);
/// The target is cleared first; on failure it is empty.
STDAPI COM_EXPORT VariantCopy(VARIANT* target, const VARIANT* source);
/// As VariantCopy, with VT_BYREF resolved.
STDAPI COM_EXPORT VariantCopyInd(VARIANT* target, const VARIANT* source);
/// How VariantChangeType goes about: no default property of an object; "True" and "False" for a
/// VT_BOOL as text.
inline constexpr USHORT VARIANT_NOVALUEPROP = 0x01;
inline constexpr USHORT VARIANT_ALPHABOOL = 0x02;
inline constexpr USHORT VARIANT_LOCALBOOL = 0x10;
/// Target and source may be one; on failure the target is unchanged. Text is US English, whatever
/// `lcid` says. Arrays, records and decimals are DISP_E_BADVARTYPE.
STDAPI COM_EXPORT VariantChangeType(VARIANT* target, const VARIANT* source, USHORT flags,
                                    VARTYPE type);
STDAPI COM_EXPORT VariantChangeTypeEx(VARIANT* target, const VARIANT* source, LCID lcid,
                                      USHORT flags, VARTYPE type);

/// A date, a time, or both, as US English writes them, whatever `lcid` says; `flags` are not looked
/// at. What is read: date_reader.h. A date without a year is one of the current year. Else
/// DISP_E_TYPEMISMATCH, with 0 in `date`; for a null text with nothing in it.
STDAPI COM_EXPORT VarDateFromStr(const OLECHAR* text, LCID lcid, ULONG flags, DATE* date);

/// The calling thread's error object. GetErrorInfo hands it over and clears it; S_FALSE and null if
/// there is none.
STDAPI COM_EXPORT SetErrorInfo(ULONG reserved, IErrorInfo* info);
STDAPI COM_EXPORT GetErrorInfo(ULONG reserved, IErrorInfo** info);
STDAPI COM_EXPORT CreateErrorInfo(ICreateErrorInfo** info);
