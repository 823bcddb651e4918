// How WebHDFS answers are told from others: by a few bytes of theirs, not as JSON.
#pragma once

#include <string_view>

namespace velandoc {

/// The answer to GETHOMEDIRECTORY. At the very start: one that begins with a blank is none of a
/// name node's.
constexpr bool IsHomeDirectory(std::string_view body) { return body.starts_with("{\"Path\""); }

/// The answer to a change that was made, wherever in it the word stands.
constexpr bool SaysTrue(std::string_view body) {
  return body.find("true") != std::string_view::npos;
}

}  // namespace velandoc
