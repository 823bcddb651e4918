// The types and numbers of windows that the dialog port and MFC's classes speak in, as their public
// documentation gives them.
#pragma once

#include "platform/posix/com/com.h"

using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LRESULT = std::intptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;

struct POINT {
  LONG x;
  LONG y;
};

/// `right` and `bottom` are the first pixels outside.
struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};

inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT SIZE_RESTORED = 0;
inline constexpr UINT SIZE_MINIMIZED = 1;
inline constexpr UINT SIZE_MAXIMIZED = 2;

inline constexpr UINT SWP_NOSIZE = 0x0001;
inline constexpr UINT SWP_NOZORDER = 0x0004;
inline constexpr UINT SWP_NOACTIVATE = 0x0010;

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;

inline constexpr DISPID DISPID_CLICK = -600;
