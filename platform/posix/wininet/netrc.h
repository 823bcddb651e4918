// The user's .netrc: logins that need no asking.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velandoc::wininet {

struct NetrcLogin {
  std::string user;
  std::string password;
};

/// The first entry for this host, or "default", in the text of a .netrc. Words may stand in double
/// quotes; macro definitions are passed over. An entry without a login name does not count.
std::optional<NetrcLogin> FindInNetrc(std::string_view text, std::string_view host);

/// From the file that the environment variable NETRC names, else from ~/.netrc. None if there is no
/// such file.
std::optional<NetrcLogin> NetrcLoginFor(std::string_view host);

}  // namespace velandoc::wininet
