// COM and OLE Automation, as both homes declare them: the system's headers on Windows, ours on
// Linux.
//
// The binary layout is COM's in both: 16-byte GUIDs, 24-byte VARIANTs, length-prefixed BSTRs of
// 16-bit units, interfaces as tables of virtual functions. Only the calling code page differs:
// OLECHAR is wchar_t on Windows and char16_t on Linux, so OLESTR("...") is the one way to write a
// literal.
#pragma once

#ifdef _WIN32
#include <windows.h>
// Behind windows.h, which they need.
#include <comdef.h>
#include <ole2.h>
#include <oleauto.h>
#else
#include "platform/posix/com/com.h"
#endif
