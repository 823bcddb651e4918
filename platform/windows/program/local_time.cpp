#include "platform/local_time.h"

#include <windows.h>

namespace velandoc {

std::optional<int> LocalMinutesAhead(std::int64_t fileTime) {
  ULARGE_INTEGER wanted{};
  wanted.QuadPart = static_cast<ULONGLONG>(fileTime);
  const FILETIME utc = {wanted.LowPart, wanted.HighPart};
  SYSTEMTIME utcParts{};
  SYSTEMTIME localParts{};
  FILETIME local{};
  FILETIME utcAgain{};
  // By way of the parts, which drop what is below a millisecond; hence both ends of the difference.
  if (!FileTimeToSystemTime(&utc, &utcParts) ||
      !SystemTimeToTzSpecificLocalTime(nullptr, &utcParts, &localParts) ||
      !SystemTimeToFileTime(&localParts, &local) || !SystemTimeToFileTime(&utcParts, &utcAgain)) {
    return std::nullopt;
  }
  const auto number = [](const FILETIME& time) {
    ULARGE_INTEGER value{};
    value.LowPart = time.dwLowDateTime;
    value.HighPart = time.dwHighDateTime;
    return static_cast<std::int64_t>(value.QuadPart);
  };
  constexpr std::int64_t kUnitsAMinute = 600'000'000;
  return static_cast<int>((number(local) - number(utcAgain)) / kUnitsAMinute);
}

}  // namespace velandoc
