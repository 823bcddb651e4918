// The body of a FrontPage RPC request.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velandoc::standin {

struct RpcParameter {
  std::string name;
  std::string value;  // UTF-8
};

// Reads "name=value&name=value" strictly: letters, digits and - . _ ~ stand for themselves, "+" for
// a blank, and a percent sign with two lower-case digits for a byte; nothing else may occur. A
// single digit, which clients write for a control character, counts where no second one follows. A
// client that writes a character beyond U+00FF with three or four digits gets what it gets from
// real servers: the first two are a byte, the rest is text.
//
// Bytes that are no UTF-8 are read as Latin-1, since %e9 and %c3%a9 both come for the same letter.
// Nothing, and the reason in `problem`, for what breaks these rules.
std::optional<std::vector<RpcParameter>> ParseRpcForm(std::string_view body, std::string& problem);

}  // namespace velandoc::standin
