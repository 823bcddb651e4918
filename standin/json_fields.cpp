#include "standin/json_fields.h"

#include <algorithm>

namespace velandoc::standin {

using nlohmann::json;

void CheckKeys(const json& object, std::string_view what,
               std::initializer_list<std::string_view> known) {
  if (!object.is_object()) throw std::invalid_argument(std::string(what) + " has to be an object");
  for (const auto& [key, value] : object.items())
    if (std::find(known.begin(), known.end(), key) == known.end())
      throw std::invalid_argument(std::string(what) + " has no \"" + key + "\"");
}

template <>
std::optional<std::uint64_t> Optional<std::uint64_t>(const json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return std::nullopt;
  if (!found->is_number_unsigned())
    throw std::invalid_argument(std::string(key) + " has to be a number from 0 on");
  return found->get<std::uint64_t>();
}

std::uint64_t Number(const json& object, const char* key, std::uint64_t otherwise) {
  return Optional<std::uint64_t>(object, key).value_or(otherwise);
}

}  // namespace velandoc::standin
