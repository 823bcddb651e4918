// Base64 as HTTP's authentication headers use it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velandoc::standin {

std::string EncodeBase64(std::string_view bytes);
// Nothing for text that is no Base64; white space is not skipped.
std::optional<std::string> DecodeBase64(std::string_view text);

}  // namespace velandoc::standin
