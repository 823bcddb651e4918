// Paths and URLs between the ports, which speak UTF-16, and the system, which speaks UTF-8.
#pragma once

#include <string>

#include "platform/text.h"

namespace velandoc {

/// What is ill-formed becomes U+FFFD in both directions.
std::string PathToUtf8(WideView text);
WideString PathFromUtf8(const std::string& bytes);

}  // namespace velandoc
