#include "platform/posix/http/deadlines.h"

#include <charconv>
#include <cstdlib>
#include <cstring>

namespace velandoc::http {

Deadlines CurrentDeadlines() {
  Deadlines deadlines;
  const char* text = std::getenv("VELANDOC_TIMEOUT_SECONDS");
  if (text == nullptr) return deadlines;
  double seconds = 0;
  const char* end = text + std::strlen(text);
  const auto [rest, error] = std::from_chars(text, end, seconds);
  constexpr double kDay = 86400;
  if (error != std::errc() || rest != end || !(seconds > 0) || seconds > kDay) return deadlines;
  const auto limit = std::chrono::milliseconds(static_cast<long>(seconds * 1000) + 1);
  return {limit, limit};
}

}  // namespace velandoc::http
