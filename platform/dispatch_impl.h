// IDispatchImpl: the four IDispatch operations of a dual interface.
//
//   class CServerCheck : public IDispatchImpl<IServerCheck, &IID_IServerCheck, &LIBID_VelandocLib,
//   1, 0>, ...
//
// Windows reads the type library that lies in the module's own resources, so nothing needs to be
// registered. Linux reads the interface's table in resources/dispatch_tables.h. What a caller sees
// is the same, with two exceptions: on Linux GetTypeInfoCount says 0, since there is no ITypeInfo,
// and an argument of type VARIANT is never VT_BYREF, as the value behind the reference is passed.
#pragma once

#ifdef _WIN32
#include "platform/windows/dispatch_impl.h"
#else
#include "platform/posix/dispatch_impl.h"
#endif
