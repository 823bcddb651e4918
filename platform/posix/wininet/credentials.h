// The logins of this process: given once, they serve every later request to the same server or
// proxy, on any thread, until it refuses them. They are held in memory only.
#pragma once

#include <optional>
#include <string>

#include "platform/posix/http/endpoint.h"
#include "platform/posix/http/transfer.h"

namespace velandoc::wininet {

struct Credential {
  bool forProxy = false;
  http::Endpoint endpoint;
  std::string realm;
  http::Login login;
};

class CredentialCache {
 public:
  /// Replaces the one for the same endpoint and realm.
  static void Store(Credential credential);
  /// The newest for this endpoint; with `realm`, the newest of that realm.
  static std::optional<Credential> Find(bool forProxy, const http::Endpoint& endpoint,
                                        const std::string* realm = nullptr);
  /// Drops exactly this one; a newer one of the same realm with other words stays.
  static void Forget(const Credential& credential);
  static void ForgetAll();
};

}  // namespace velandoc::wininet
