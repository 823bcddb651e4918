#include "platform/posix/http/name_override.h"

#include <algorithm>
#include <cstdlib>

#include "platform/posix/http/ascii_case.h"

namespace velandoc::http {

std::optional<std::string> FindOverride(std::string_view list, std::string_view host) {
  while (!list.empty()) {
    const std::string_view entry = list.substr(0, list.find(','));
    list.remove_prefix(std::min(entry.size() + 1, list.size()));
    const std::size_t equals = entry.find('=');
    if (equals == entry.npos || equals + 1 == entry.size()) continue;
    if (EqualNoCase(entry.substr(0, equals), host)) return std::string(entry.substr(equals + 1));
  }
  return std::nullopt;
}

std::optional<std::string> ConnectToText(std::string_view host) {
  const char* list = std::getenv("VELANDOC_RESOLVE");
  if (list == nullptr) return std::nullopt;
  const std::optional<std::string> address = FindOverride(list, host);
  if (!address) return std::nullopt;
  // A colon within brackets is the address's own.
  const std::size_t bracket = address->find(']');
  const bool hasPort = address->find(':', bracket == address->npos ? 0 : bracket) != address->npos;
  return "::" + *address + (hasPort ? "" : ":");
}

}  // namespace velandoc::http
