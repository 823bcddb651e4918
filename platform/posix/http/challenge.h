// What a server or proxy asks for in WWW-Authenticate or Proxy-Authenticate.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velandoc::http {

struct Challenge {
  unsigned long schemes = 0;  // CURLAUTH bits of those that can be answered
  std::string realm;          // of the first challenge that names one
};

/// Reads one or more header values, each of which may carry several challenges.
Challenge ParseChallenges(const std::vector<std::string_view>& values);

/// The scheme to answer with when user and password are known: NTLM before Digest before Basic.
/// Negotiate is left out, since libcurl would try it without a ticket for ever. 0 if none serves.
unsigned long PasswordScheme(unsigned long offered);

}  // namespace velandoc::http
