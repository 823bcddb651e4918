// Answers in JSON, as WebHDFS gives them.
#pragma once

#include <nlohmann/json.hpp>

#include "standin/response.h"

namespace velandoc::standin {

// No blanks and no line feed behind, as clients look for `{"Path"` at the very start.
inline Response HdfsJson(int status, const nlohmann::json& value) {
  return TextAnswer(status, "application/json;charset=utf-8", value.dump());
}

}  // namespace velandoc::standin
