// The Digest scheme: MD5 with qop=auth (RFC 2617).
#pragma once

#include <string>
#include <string_view>

#include "standin/authentication.h"

namespace velandoc::standin {

enum class DigestResult {
  kRight,
  kWrong,
  kStale,  // Right, but for a nonce that this server did not give out.
};

// The value of the challenge header, with a new nonce.
std::string DigestChallenge(const std::string& realm, bool isStale);

// `parameters` is what follows "Digest" in the client's header.
DigestResult CheckDigest(const Request& request, const AuthDemand& demand,
                         std::string_view parameters);

}  // namespace velandoc::standin
