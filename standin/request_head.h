// Reading the head of a request.
#pragma once

#include "standin/input_buffer.h"
#include "standin/request.h"

namespace velandoc::standin {

enum class HeadResult {
  kComplete,
  kEnd,        // The client left before a head was complete.
  kMalformed,  // request.head holds what came.
  kTooLong,
};

// Strict on purpose: a line feed without a carriage return, a blank before a colon or a folded line
// is a mistake of the client, and a tolerant server would hide it.
HeadResult ReadHead(InputBuffer& input, Request& request);

}  // namespace velandoc::standin
