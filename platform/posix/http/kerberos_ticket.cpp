#include "platform/posix/http/kerberos_ticket.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

namespace velandoc::http {

bool MayHoldTicket() {
  std::string cache;
  if (const char* name = std::getenv("KRB5CCNAME"); name != nullptr && *name != '\0') {
    cache = name;
    const std::size_t colon = cache.find(':');
    if (colon != std::string::npos && cache.front() != '/') {
      const std::string kind = cache.substr(0, colon);
      if (kind != "FILE" && kind != "DIR") return true;
      cache.erase(0, colon + 1);
    }
  } else {
    cache = "/tmp/krb5cc_";
    cache += std::to_string(getuid());
  }
  return access(cache.c_str(), R_OK) == 0;
}

}  // namespace velandoc::http
