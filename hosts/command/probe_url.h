// What the command demands of a URL before anything is sent.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velandoc {

/// Why `url` cannot be probed and what to type instead, as one line without a full stop; nothing if
/// it can be. Needed are UTF-8, the scheme http or https in any case, "://" and a host. `done` is
/// the word for what the caller would do with it.
std::optional<std::string> FindUrlProblem(std::string_view url, std::string_view done = "probed");

/// The port that is written in `url` if it is not the scheme's own; nothing if there is none, or if
/// FindUrlProblem finds a problem. The component asks the server at the scheme's default port,
/// whatever the URL says.
std::optional<std::string> FindUnusedPort(std::string_view url);

}  // namespace velandoc
