// JSON as the command prints it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace velandoc {

/// Indented, with a line feed at its end. What could steer a terminal stands as \uNNNN, which means
/// the same to every reader of JSON.
std::string JsonText(const nlohmann::ordered_json& json);

}  // namespace velandoc
