#include "connection/text_to_integer.h"

#include <algorithm>
#include <limits>

namespace velandoc {

std::int32_t TextToInteger(WideView text) {
  auto at = text.begin();
  while (at != text.end() && (*at == ' ' || (*at >= '\t' && *at <= '\r'))) ++at;
  bool negative = false;
  if (at != text.end() && (*at == '-' || *at == '+')) negative = *at++ == '-';

  using Limits = std::numeric_limits<std::int32_t>;
  // One more than the largest positive number: the magnitude of the smallest negative one.
  constexpr std::int64_t ceiling = std::int64_t{Limits::max()} + 1;
  std::int64_t magnitude = 0;
  for (; at != text.end() && *at >= '0' && *at <= '9'; ++at) {
    magnitude = std::min(magnitude * 10 + (*at - '0'), ceiling);
  }
  const std::int64_t value = negative ? -magnitude : magnitude;
  return static_cast<std::int32_t>(std::min(value, std::int64_t{Limits::max()}));
}

}  // namespace velandoc
