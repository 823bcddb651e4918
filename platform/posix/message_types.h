// The numbers of FormatMessage, as its public documentation gives them.
#pragma once

#include "platform/posix/com/com.h"

inline constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x0100;
inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x0200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_HMODULE = 0x0800;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;

inline constexpr WORD LANG_NEUTRAL = 0;
inline constexpr WORD SUBLANG_DEFAULT = 1;

constexpr DWORD MAKELANGID(WORD primary, WORD sub) {
  return static_cast<DWORD>(sub << 10 | primary);
}

inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_MR_MID_NOT_FOUND = 317;
