// The schemes that a URL is looked up in. A URL's scheme index is its row here.
#pragma once

#include <array>
#include <cstdint>

#include "platform/text.h"

namespace velandoc {

struct SchemeRow {
  WideView name;  // lower case; compared without regard to case
  std::uint16_t defaultPort;
};

inline constexpr std::array<SchemeRow, 8> kSchemes = {{
    {OLESTR("ftp"), 21},
    {OLESTR("gopher"), 70},
    {OLESTR("http"), 80},
    {OLESTR("https"), 443},
    {OLESTR("file"), 0},
    {OLESTR("news"), 0},
    {OLESTR("mailto"), 0},
    {OLESTR("socks"), 1080},
}};

inline constexpr std::int32_t kUnknownScheme = -1;
inline constexpr std::int32_t kHttpScheme = 2;
inline constexpr std::int32_t kHttpsScheme = 3;
inline constexpr std::int32_t kFileScheme = 4;
inline constexpr std::int32_t kNewsScheme = 5;
inline constexpr std::int32_t kMailtoScheme = 6;

}  // namespace velandoc
