// Where a server is connected to in place of the address that its name resolves to.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velandoc::http {

/// The address for `host` in a list "NAME=ADDRESS,...", none if it has no such name. Names compare
/// without regard to case; the first that fits counts.
std::optional<std::string> FindOverride(std::string_view list, std::string_view host);

/// The same in the environment variable VELANDOC_RESOLVE, as libcurl's option CONNECT_TO takes it:
/// "::ADDRESS:" or "::ADDRESS:PORT".
std::optional<std::string> ConnectToText(std::string_view host);

}  // namespace velandoc::http
