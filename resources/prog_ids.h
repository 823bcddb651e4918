// The names by which scripts create the component's classes, for finding them where nothing is
// registered. Registration writes the same names through the registry scripts.
#pragma once

#include "platform/com.h"

namespace velandoc {

struct ComponentProgId {
  LPCOLESTR progId;
  CLSID clsid;
};

inline constexpr CLSID kClientClass = {
    0x6884BC45, 0x2A7D, 0x4747, {0xAF, 0x48, 0xA5, 0xEE, 0xCC, 0x5B, 0xF9, 0xA9}};
inline constexpr CLSID kServerCheckClass = {
    0x1D477FCE, 0x048A, 0x4657, {0xBF, 0xDF, 0x6D, 0xD1, 0x65, 0x04, 0x3E, 0x36}};
inline constexpr CLSID kHdfsClientClass = {
    0x5EBD1685, 0xDEAC, 0x437B, {0xA0, 0x90, 0x84, 0x6F, 0x57, 0x8C, 0x2F, 0x99}};
inline constexpr CLSID kHdfsClientWinHttpClass = {
    0x4A45908C, 0xEF4C, 0x4D12, {0x95, 0x1B, 0x95, 0x95, 0xD9, 0xCC, 0x20, 0x8B}};

/// Of each class the name with its version comes first: it is the one that its identifier is turned
/// into.
inline constexpr ComponentProgId kComponentProgIds[] = {
    {OLESTR("Velandoc.Client.1"), kClientClass},
    {OLESTR("Velandoc.Client"), kClientClass},
    {OLESTR("Velandoc.ServerCheck.1"), kServerCheckClass},
    {OLESTR("Velandoc.ServerCheck"), kServerCheckClass},
    {OLESTR("Velantrica.HdfsClient.1"), kHdfsClientClass},
    {OLESTR("Velantrica.HdfsClient"), kHdfsClientClass},
    {OLESTR("Velantrica.HdfsWinHttpClient.1"), kHdfsClientWinHttpClass},
    {OLESTR("Velantrica.HdfsWinHttpClient"), kHdfsClientWinHttpClass},
};

}  // namespace velandoc
