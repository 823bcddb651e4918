// Text as a string literal of a script.
#pragma once

#include <string>

#include "platform/text.h"

namespace velandoc {

/// With its quotes, in 7-bit characters: everything but letters and digits goes out as \uXXXX, so
/// the text comes back unit by unit, whatever it holds.
std::string ScriptLiteral(WideView text);

}  // namespace velandoc
