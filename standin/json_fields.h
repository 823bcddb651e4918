// Reading the members of JSON objects strictly: a typing error in a rule or a site would otherwise
// turn a test into one that tests nothing.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velandoc::standin {

// Throws std::invalid_argument, which names `what`, if `object` is none or has another key.
void CheckKeys(const nlohmann::json& object, std::string_view what,
               std::initializer_list<std::string_view> known);

// Nothing for a missing key and for null. Throws std::exception for a value of another type.
template <typename Value>
std::optional<Value> Optional(const nlohmann::json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return std::nullopt;
  return found->get<Value>();
}

// json converts a negative number to a huge one without a word.
template <>
std::optional<std::uint64_t> Optional<std::uint64_t>(const nlohmann::json& object, const char* key);

std::uint64_t Number(const nlohmann::json& object, const char* key, std::uint64_t otherwise);

}  // namespace velandoc::standin
