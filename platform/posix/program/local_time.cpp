#include "platform/local_time.h"

#include <ctime>

namespace velandoc {

std::optional<int> LocalMinutesAhead(std::int64_t fileTime) {
  constexpr std::int64_t kUnitsASecond = 10'000'000;
  constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
  const auto seconds = static_cast<std::time_t>(fileTime / kUnitsASecond - kSecondsFrom1601To1970);
  std::tm local{};
  tzset();  // localtime_r need not look at TZ
  if (localtime_r(&seconds, &local) == nullptr) return std::nullopt;
  return static_cast<int>(local.tm_gmtoff / 60);
}

}  // namespace velandoc
