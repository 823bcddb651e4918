// Puts an answer on the wire.
#pragma once

#include "standin/answer_stream.h"
#include "standin/response.h"

namespace velandoc::standin {

// Sends the whole answer; without its body when the request was HEAD or the status has none. False
// once the connection cannot be used any more.
bool WriteResponse(AnswerStream& stream, const Response& response, bool isHeadRequest);

}  // namespace velandoc::standin
