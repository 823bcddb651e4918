#include "platform/posix/wininet/credentials.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace velandoc::wininet {
namespace {

// A process talks to few servers; the oldest login is asked for again beyond this many.
constexpr std::size_t kMaxCredentials = 256;

struct Store {
  std::mutex mutex;
  std::vector<Credential> credentials;  // the newest last
};

// Never destroyed: other threads may still send while the program ends.
Store& TheStore() {
  static Store& store = *new Store;
  return store;
}

bool IsSamePlace(const Credential& a, const Credential& b) {
  return a.forProxy == b.forProxy && a.endpoint == b.endpoint && a.realm == b.realm;
}

}  // namespace

void CredentialCache::Store(Credential credential) {
  auto& [mutex, credentials] = TheStore();
  const std::lock_guard lock(mutex);
  std::erase_if(credentials, [&](const Credential& old) { return IsSamePlace(old, credential); });
  if (credentials.size() == kMaxCredentials) credentials.erase(credentials.begin());
  credentials.push_back(std::move(credential));
}

std::optional<Credential> CredentialCache::Find(bool forProxy, const http::Endpoint& endpoint,
                                                const std::string* realm) {
  auto& [mutex, credentials] = TheStore();
  const std::lock_guard lock(mutex);
  const auto found =
      std::find_if(credentials.rbegin(), credentials.rend(), [&](const Credential& known) {
        return known.forProxy == forProxy && known.endpoint == endpoint &&
               (realm == nullptr || known.realm == *realm);
      });
  if (found == credentials.rend()) return std::nullopt;
  return *found;
}

void CredentialCache::Forget(const Credential& credential) {
  auto& [mutex, credentials] = TheStore();
  const std::lock_guard lock(mutex);
  std::erase_if(credentials, [&](const Credential& old) {
    return IsSamePlace(old, credential) && old.login.user == credential.login.user &&
           old.login.password == credential.login.password &&
           old.login.scheme == credential.login.scheme;
  });
}

void CredentialCache::ForgetAll() {
  auto& [mutex, credentials] = TheStore();
  const std::lock_guard lock(mutex);
  credentials.clear();
}

}  // namespace velandoc::wininet
