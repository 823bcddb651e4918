#include "hosts/command/remote_exception.h"

#include <nlohmann/json.hpp>

namespace velandoc {
namespace {

std::string TextOf(const nlohmann::json& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

}  // namespace

std::optional<RemoteException> FindRemoteException(std::string_view answer) {
  const nlohmann::json json = nlohmann::json::parse(answer, nullptr, /*allow_exceptions=*/false);
  if (!json.is_object()) return std::nullopt;
  const auto found = json.find("RemoteException");
  if (found == json.end() || !found->is_object()) return std::nullopt;
  return RemoteException{TextOf(*found, "exception"), TextOf(*found, "javaClassName"),
                         TextOf(*found, "message")};
}

}  // namespace velandoc
