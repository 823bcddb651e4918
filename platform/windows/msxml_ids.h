// Identifiers of MSXML 6 that the cross compiler's headers and libraries lack.
#pragma once

#include <windows.h>
// Behind windows.h, which it needs.
#include <msxml2.h>

inline constexpr CLSID CLSID_DOMDocument60 = {
    0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
