// What the server knows of a document's list row.
#pragma once

#include <functional>
#include <map>

#include "platform/text.h"

namespace velandoc {

/// The attributes of one list row as the server names them ("ows_ID", "ows_CheckoutUser"), in the
/// order of their code units.
using RowAttributes = std::map<WideString, WideString, std::less<>>;

}  // namespace velandoc
