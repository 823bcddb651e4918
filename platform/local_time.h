// The user's time zone.
#pragma once

#include <cstdint>
#include <optional>

namespace velandoc {

/// How many minutes the system's local time is ahead of UTC at `fileTime` (units of 100 ns since
/// the beginning of 1601, UTC), with the rules that the system has for that day. Nothing for a time
/// that the system cannot convert.
std::optional<int> LocalMinutesAhead(std::int64_t fileTime);

}  // namespace velandoc
