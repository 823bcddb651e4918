// The five functions that the library exports, by these names; host/velandoc.def and
// host/velandoc.map list them for the linkers. None of them lets an exception out.
#pragma once

#include "platform/exports.h"

/// S_OK if neither the proxies, nor MFC, nor an object, class factory client or server lock holds
/// the library.
STDAPI_EXPORT DllCanUnloadNow();

/// The class object of a coclass or of the merged proxies. CLASS_E_CLASSNOTAVAILABLE for any other
/// `rclsid`; E_POINTER for a null `object`, which is null on every failure.
STDAPI_EXPORT DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* object);

/// Writes the AppID, the classes, the type library and the proxies into the registry, in this
/// order. The first failure is the result, and what was written before it stays.
STDAPI_EXPORT DllRegisterServer();

/// Takes the classes, the type library, the AppID and the proxies out again, in this order. The
/// first failure ends it.
STDAPI_EXPORT DllUnregisterServer();

/// With the command line "user", in any case and with nothing behind it, this call and all later
/// ones of the process register for the current user alone. A failed registration is taken back;
/// its failure is the result.
STDAPI_EXPORT DllInstall(BOOL install, LPCWSTR commandLine);
