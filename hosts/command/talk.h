// What the command says to the user, beside its data.
#pragma once

#include <string>
#include <string_view>

#include "platform/com.h"

namespace velandoc {

/// Writes "velandoc: ", `line` and a line feed to the error stream.
void Talk(std::string_view line);

/// "0x80004005".
std::string ResultText(HRESULT result);

}  // namespace velandoc
