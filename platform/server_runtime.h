// The ServerRuntime port: what the system's COM offers a library that serves classes and is about
// to be registered, loaded or unloaded. The names, arguments and results are the system's.
//
// On Linux there are no apartments, so no proxies: the Ndr operations say so. A type library is
// registered there by the keys alone.
#pragma once

#include <span>

#include "platform/com.h"
#include "platform/port.h"
#include "platform/text.h"

namespace velandoc {

/// An interface that the type library declares for automation.
struct TypeLibraryInterface {
  const IID* id;
  LPCOLESTR name;
};

/// A type library in resource TYPELIB 1 of `path`. Windows reads it there. Linux has no reader of
/// compiled type libraries and takes the rest from here.
struct TypeLibrary {
  WideString path;
  const GUID* id;
  WORD major;
  WORD minor;
  LCID lcid;
  LPCOLESTR helpString;
  std::span<const TypeLibraryInterface> interfaces;
};

class ServerRuntime {
 public:
  virtual ~ServerRuntime() = default;

  virtual LCID GetThreadLocale() = 0;
  virtual BOOL SetThreadLocale(LCID lcid) = 0;

  /// Keeps others from registering or unregistering until UnlockRegistration, which the same thread
  /// calls: the scripts remove keys and make them again, and two at once would take each other's
  /// away. On Linux it is the lock of the user's or the machine's file, and what is changed there
  /// in between appears at once, at the end. Null if it can't be had: on Linux the changes then go
  /// into the file one by one, and the first tells why it can't; on Windows they are made all the
  /// same once another process has kept the lock for a minute.
  virtual HANDLE LockRegistration(bool forUser) = 0;
  /// The end. On Linux the file's error as HRESULT_FROM_WIN32 if it can't be written; nothing is
  /// changed then. Null is nothing to unlock.
  virtual HRESULT UnlockRegistration(HANDLE lock) = 0;

  /// HRESULTs of the system: those of LoadTypeLib and of the registry.
  virtual HRESULT RegisterTypeLib(const TypeLibrary& library) = 0;
  /// A library that is not registered: TYPE_E_REGISTRYACCESS.
  virtual HRESULT UnRegisterTypeLib(const TypeLibrary& library) = 0;
  /// Whether "OLEAUT32.DLL" has the two ForUser operations, which need Windows Vista SP1. Call them
  /// only then.
  virtual bool OffersTypeLibForUser() = 0;
  virtual HRESULT RegisterTypeLibForUser(const TypeLibrary& library) = 0;
  virtual HRESULT UnRegisterTypeLibForUser(const TypeLibrary& library) = 0;

  /// The library whose proxies the next four operations are about.
  virtual void SetProxyModule(HINSTANCE module) = 0;
  virtual HRESULT NdrDllCanUnloadNow() = 0;
  /// CLASS_E_CLASSNOTAVAILABLE for whatever is not the proxies' factory, E_INVALIDARG for a null
  /// `object`.
  virtual HRESULT NdrDllGetClassObject(REFCLSID rclsid, REFIID riid, void** object) = 0;
  virtual HRESULT NdrDllRegisterProxy() = 0;
  virtual HRESULT NdrDllUnregisterProxy() = 0;
};

template <>
ServerRuntime& SystemPort<ServerRuntime>();

}  // namespace velandoc
